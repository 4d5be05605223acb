// What the keys mean: single letters while the table is looked at, a line of input after those that
// need one.
#pragma once

#include <QString>

enum class Prompt { None, Write, Station };

struct Keys {
    Prompt prompt = Prompt::None;
    QString input;
    QString message;  ///< what came of the last command
    int firstRow = 0; ///< of the table, as far as it was scrolled
};

/// Keys without a character of their own. Others are passed as their character.
enum SpecialKey {
    KEY_CODE_NONE = 0,
    KEY_CODE_ENTER = 0x110000, // beyond the characters
    KEY_CODE_ESCAPE,
    KEY_CODE_BACKSPACE,
    KEY_CODE_UP,
    KEY_CODE_DOWN,
    KEY_CODE_PAGE_UP,
    KEY_CODE_PAGE_DOWN
};

enum class CommandKind { None, Pause, Write, Station, Quit };

struct Command {
    CommandKind kind = CommandKind::None;
    QString text; ///< the line of input
};

/// @param pageRows rows that a page key scrolls
Command pressKey(Keys* keys, int key, int pageRows);

/// The line below the table: the input, the last command's message, or the keys that there are.
QString promptLine(const Keys& keys);
