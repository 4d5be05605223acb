#include "display.h"

#include "commands.h"
#include "screen.h"

#include <algorithm>
#include <cstdio>
#include <poll.h>
#include <unistd.h>

namespace
{

constexpr Micros REDRAW_PERIOD = MICROS_PER_SECOND / 5;
constexpr Micros LINE_PERIOD = MICROS_PER_SECOND;
constexpr int EVENTS_KEPT = 50;

void printLine(const QByteArray& line)
{
    std::printf("%s\n", line.constData());
}

QString eventLine(const Event& event)
{
    return QStringLiteral("%1 s  %2").arg(secondsText(event.at), 8).arg(event.text);
}

void printRecords(Display* display, Panel* panel)
{
    const QList<QByteArray> records = changeRecords(&display->recorder, panel);
    for (const QByteArray& record : records)
        printLine(record);
    if (!records.isEmpty())
        std::fflush(stdout);
}

void printEvents(Panel* panel)
{
    for (const Event& event : panel->events)
        printLine(eventLine(event).toUtf8());
    if (!panel->events.isEmpty())
        std::fflush(stdout);
    panel->events.clear();
}

bool isDue(Display* display, Micros now, Micros period)
{
    if (display->shownAt != NEVER && now - display->shownAt < period)
        return false;
    display->shownAt = now;
    return true;
}

void printText(Display* display, Panel* panel)
{
    printEvents(panel);
    const Micros now = panel->clock();
    if (display->output == Output::Events || !isDue(display, now, LINE_PERIOD))
        return;
    const QStringList parts = QStringList(statusLine(*panel, now)) + stationTexts(*panel, now) +
                              QStringList(compactLine(*panel, now));
    printLine(parts.join(QLatin1String(" | ")).toUtf8());
    std::fflush(stdout);
}

bool takeKeys(Display* display, Panel* panel)
{
    bool quit = false;
    Keys* keys = &display->view.keys;
    for (int key = takeKey(); key != KEY_CODE_NONE; key = takeKey()) {
        const int page = tableRows(*panel, screenSize(), panel->clock());
        quit = applyCommand(pressKey(keys, key, page), keys, panel) || quit;
        keys->firstRow = std::min(keys->firstRow, lastFirstRow(*panel, page));
        display->shownAt = NEVER;
    }
    return quit;
}

void drawScreen(Display* display, Panel* panel)
{
    View& view = display->view;
    for (const Event& event : panel->events)
        view.recent << eventLine(event);
    panel->events.clear();
    while (view.recent.size() > EVENTS_KEPT)
        view.recent.removeFirst();
    const Micros now = panel->clock();
    view.tagRates.resize(panel->tags.size());
    for (int i = 0; i < panel->tags.size(); ++i)
        updateRate(&view.tagRates[i], panel->states[i].reads, now);
    if (isDue(display, now, REDRAW_PERIOD))
        draw(picture(*panel, &view, screenSize(), now));
}

} // namespace

QString openDisplay(Display* display, const Panel& panel, qint64 startedAtMs)
{
    display->recorder.startedAtMs = startedAtMs;
    display->view.tagRates.resize(panel.tags.size());
    return display->output == Output::Screen ? openScreen() : QString();
}

bool updateDisplay(Display* display, Panel* panel)
{
    switch (display->output) {
    case Output::Json:
        printRecords(display, panel);
        return std::ferror(stdout) != 0 || readerGone();
    case Output::Text:
    case Output::Events:
        printText(display, panel);
        return std::ferror(stdout) != 0 || readerGone();
    default:
        break;
    }
    const bool quit = takeKeys(display, panel);
    drawScreen(display, panel);
    return quit;
}

// Noticed without a write, too: a run without changes would never end else.
bool readerGone()
{
    pollfd output = {STDOUT_FILENO, 0, 0};
    return poll(&output, 1, 0) > 0 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

void closeDisplay(Display* display, Panel* panel)
{
    if (display->output == Output::Screen)
        closeScreen();
    else
        updateDisplay(display, panel);
}
