#include "keys.h"

#include <algorithm>

namespace
{

constexpr int LONGEST_INPUT = 200;
constexpr int FIRST_PRINTABLE = ' ';

struct Letter {
    char key;
    CommandKind command; ///< at once, unless there is a prompt
    Prompt prompt;
};

constexpr Letter LETTERS[] = {
    {'p', CommandKind::Pause, Prompt::None},
    {'q', CommandKind::Quit, Prompt::None},
    {'w', CommandKind::Write, Prompt::Write},
    {'s', CommandKind::Station, Prompt::Station},
};

CommandKind commandOf(Prompt prompt)
{
    for (const Letter& letter : LETTERS)
        if (letter.prompt == prompt)
            return letter.command;
    return CommandKind::None;
}

void scroll(Keys* keys, int rows)
{
    keys->firstRow = std::max(0, keys->firstRow + rows);
}

Command browse(Keys* keys, int key, int pageRows)
{
    switch (key) {
    case KEY_CODE_UP:
        scroll(keys, -1);
        return {};
    case KEY_CODE_DOWN:
        scroll(keys, 1);
        return {};
    case KEY_CODE_PAGE_UP:
        scroll(keys, -pageRows);
        return {};
    case KEY_CODE_PAGE_DOWN:
        scroll(keys, pageRows);
        return {};
    default:
        break;
    }
    for (const Letter& letter : LETTERS) {
        if (letter.key != key)
            continue;
        keys->message.clear();
        keys->prompt = letter.prompt;
        return letter.prompt == Prompt::None ? Command{letter.command, {}} : Command();
    }
    return {};
}

Command edit(Keys* keys, int key)
{
    const Prompt prompt = keys->prompt;
    if (key == KEY_CODE_BACKSPACE) {
        keys->input.chop(1);
    } else if (key == KEY_CODE_ENTER || key == KEY_CODE_ESCAPE) {
        keys->prompt = Prompt::None;
        const QString input = keys->input.trimmed();
        keys->input.clear();
        if (key == KEY_CODE_ENTER && !input.isEmpty())
            return {commandOf(prompt), input};
    } else if (key >= FIRST_PRINTABLE && key < KEY_CODE_ENTER &&
               keys->input.size() < LONGEST_INPUT) {
        const auto character = static_cast<uint>(key);
        keys->input += QString::fromUcs4(&character, 1);
    }
    return {};
}

} // namespace

Command pressKey(Keys* keys, int key, int pageRows)
{
    return keys->prompt == Prompt::None ? browse(keys, key, pageRows) : edit(keys, key);
}

QString promptLine(const Keys& keys)
{
    switch (keys.prompt) {
    case Prompt::Write:
        return QStringLiteral("write NAME=VALUE: ") + keys.input;
    case Prompt::Station:
        return QStringLiteral("switch station off or on, its number: ") + keys.input;
    default:
        return keys.message.isEmpty()
                   ? QStringLiteral("p pause   w write   s station off/on   q quit   arrows scroll")
                   : keys.message;
    }
}
