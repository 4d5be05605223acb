// Every option with its unit, default and range, for the parser and for --help.
#pragma once

enum class OptionKind { Flag, Text, Number };

struct OptionRow {
    const char* name;
    OptionKind kind;
    const char* unit; ///< of the value, in capitals; of a flag none
    const char* preset;
    int lowest, highest; ///< of a number
    const char* meaning;
};

// clang-format off
inline constexpr OptionRow OPTIONS[] = {
    {"serial",   OptionKind::Text,   "DEVICE",    "", 0, 0, "Serial device or pseudo-terminal"},
    {"baud",     OptionKind::Number, "BAUD",      "19200", 300, 4000000, "Speed of the line, in bits a second; of the line behind the server with --tcp"},
    {"parity",   OptionKind::Text,   "LETTER",    "E", 0, 0, "N, E or O"},
    {"stop",     OptionKind::Number, "BITS",      "1", 1, 2, "Stop bits"},
    {"tcp",      OptionKind::Text,   "HOST:PORT", "", 0, 0, "Serial device server, or any peer that carries the bytes of the serial line"},
    {"timeout",  OptionKind::Number, "MS",        "300", 1, 60000, "Reply time-out in milliseconds, beside the time that the bytes take on the line"},
    {"delay",    OptionKind::Number, "MS",        "0", 0, 60000, "Pause after each reply in milliseconds, beside the line's silent interval"},
    {"retries",  OptionKind::Number, "N",         "2", 0, 100, "Failed replies before a variable is given up"},
    {"fails",    OptionKind::Number, "N",         "2", 1, 1000, "Variables of a station given up in a row, without any answer, before the station is switched off and probed"},
    {"block",    OptionKind::Number, "N",         "60", 1, 125, "Longest read in words or bytes, longest write in bytes; replies hold no more than 125 words"},
    {"remote",   OptionKind::Flag,   "",          "", 0, 0, "Use the remote framing"},
    {"echo",     OptionKind::Flag,   "",          "", 0, 0, "The line brings back what is sent, as two-wire adapters do"},
    {"once",     OptionKind::Flag,   "",          "", 0, 0, "Read every tag once, and end"},
    {"write",    OptionKind::Text,   "NAME=VALUE", "", 0, 0, "Write at the start, and end when all is written and read back unless --duration says when; may be repeated"},
    {"write-at", OptionKind::Text,   "SECONDS:NAME=VALUE", "", 0, 0, "Write at a time after the start; may be repeated"},
    {"duration", OptionKind::Number, "SECONDS",   "0", 0, 1000000000, "End after this time; 0: run until interrupted"},
    {"format",   OptionKind::Text,   "KIND",      "", 0, 0, "What standard output shows: screen, json (one record for each change) or text (default screen on a terminal, json elsewhere)"},
    {"trace",    OptionKind::Flag,   "",          "", 0, 0, "Show each frame on standard error, decoded; with text in place of the screen"},
    {"pcap",     OptionKind::Text,   "FILE",      "", 0, 0, "Write the frames to a capture file"},
    {"summary",  OptionKind::Text,   "FILE",      "", 0, 0, "Write the statistics to a file as well"},
    {"library",  OptionKind::Text,   "PATH",      "", 0, 0, "Driver library (default libtalmor_kp410_port.so.1 beside the program or where the system looks)"},
};
// clang-format on
