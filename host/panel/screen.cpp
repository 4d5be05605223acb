#include "screen.h"

#include <clocale>
#include <cstdio>
#include <unistd.h>

// Last, since its macros take common names.
#define NCURSES_WIDECHAR 1
#include <curses.h>

namespace
{

constexpr int ALERT_COLOURS = 1;
constexpr int DEFAULT_COLOUR = -1;
constexpr int ESCAPE_DELAY_MS = 25; // an arrow key begins with an escape too
constexpr int ASCII_ESCAPE = 27, ASCII_BACKSPACE = 8, ASCII_DELETE = 127;

attr_t attributesOf(Emphasis emphasis)
{
    switch (emphasis) {
    case Emphasis::Heading:
        return A_BOLD;
    case Emphasis::Alert:
        return static_cast<attr_t>(COLOR_PAIR(ALERT_COLOURS));
    default:
        return A_NORMAL;
    }
}

int specialKey(wint_t key)
{
    switch (key) {
    case KEY_UP:
        return KEY_CODE_UP;
    case KEY_DOWN:
        return KEY_CODE_DOWN;
    case KEY_PPAGE:
        return KEY_CODE_PAGE_UP;
    case KEY_NPAGE:
        return KEY_CODE_PAGE_DOWN;
    case KEY_BACKSPACE:
        return KEY_CODE_BACKSPACE;
    case KEY_ENTER:
        return KEY_CODE_ENTER;
    default:
        return KEY_CODE_NONE;
    }
}

int characterKey(wint_t key)
{
    switch (key) {
    case L'\n':
    case L'\r':
        return KEY_CODE_ENTER;
    case ASCII_ESCAPE:
        return KEY_CODE_ESCAPE;
    case ASCII_BACKSPACE:
    case ASCII_DELETE:
        return KEY_CODE_BACKSPACE;
    default:
        return static_cast<int>(key);
    }
}

} // namespace

bool isTerminal()
{
    return isatty(STDOUT_FILENO) != 0 && isatty(STDIN_FILENO) != 0;
}

QString openScreen()
{
    // The program's own locale but for numbers, which stay as the tag file writes them.
    std::setlocale(LC_ALL, "");
    std::setlocale(LC_NUMERIC, "C");
    // Not initscr(), which ends the program on a terminal that it does not know.
    if (newterm(nullptr, stdout, stdin) == nullptr)
        return QStringLiteral("the terminal is of no known kind, see TERM; --format text does "
                              "without a screen");
    cbreak();
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    set_escdelay(ESCAPE_DELAY_MS);
    curs_set(0);
    if (has_colors()) {
        start_color();
        use_default_colors();
        init_pair(ALERT_COLOURS, COLOR_RED, DEFAULT_COLOUR);
    }
    return QString();
}

void closeScreen()
{
    endwin();
}

ScreenSize screenSize()
{
    return {getmaxy(stdscr), getmaxx(stdscr)};
}

int takeKey()
{
    wint_t key = 0;
    switch (get_wch(&key)) {
    case KEY_CODE_YES:
        return specialKey(key);
    case OK:
        return characterKey(key);
    default:
        return KEY_CODE_NONE;
    }
}

void draw(const QVector<PictureLine>& lines)
{
    // All at first: behind a line as wide as the terminal the cursor is not where it ends.
    erase();
    for (int row = 0; row < lines.size(); ++row) {
        const PictureLine& line = lines[row];
        attrset(static_cast<int>(attributesOf(line.emphasis)));
        mvaddstr(row, 0, line.text.toUtf8().constData());
    }
    attrset(A_NORMAL);
    refresh();
}
