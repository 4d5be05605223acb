#include "driver/log.h"

#include "check/guarded.h"
#include "talmor_kp410_port.h"

#include <cstdio>

namespace
{
/// True until the first message: that one starts the file afresh.
bool check = true;

QByteArray padded(int number, int digits)
{
    return QByteArray::number(number).rightJustified(digits, '0');
}

/// Not by QFile: when memory fails, its making can crash and its closing can throw.
void writeLine(const char* message)
{
    const QByteArray line = logLine(QDateTime::currentDateTime(), message);
    std::FILE* file = std::fopen("debug.log", check ? "w" : "a");
    check = false;
    if (!file)
        return;
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), file);
    std::fclose(file);
}
} // namespace

// Put together by hand: a date pattern's "z" and its digits depend on Qt's version and the locale.
QByteArray logLine(const QDateTime& when, const char* message)
{
    const QDate date = when.date();
    const QTime time = when.time();
    return padded(date.year(), 4) + '.' + padded(date.month(), 2) + '.' + padded(date.day(), 2) +
           '.' + padded(time.hour(), 2) + ':' + padded(time.minute(), 2) + ':' +
           padded(time.second(), 2) + '.' + padded(time.msec(), 1) + ':' + message + '\n';
}

void customMessageHandler(QtMsgType /*type*/, const char* message)
{
    if (message)
        guarded([message] { writeLine(message); });
}
