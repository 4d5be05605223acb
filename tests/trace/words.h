/// The words of traces: values as text and text as values.
#ifndef KP410_TESTS_WORDS_H
#define KP410_TESTS_WORDS_H

#include "support/bytes.h"
#include "talmor_kp410_port.h"

#include <QStringList>

#include <initializer_list>

inline QByteArray hexBytes(const QStringList& words)
{
    return QByteArray::fromHex(words.join(QString()).toLatin1());
}

inline QString hexText(const QByteArray& array)
{
    return QString::fromLatin1(array.toHex().toUpper());
}

/// A register type by name or number.
inline int typeNamed(const QString& word)
{
    for (int type = 0; type < REGISTER_TYPE_COUNT; ++type) {
        if (word == QLatin1String(REGISTER_TYPES[type].name))
            return type;
    }
    return word.toInt();
}

/// '' stands for an empty text.
inline QString unquoted(const QString& word)
{
    return word == QLatin1String("''") ? QString() : word;
}

/// "key:7" among `words`, or `otherwise`.
inline QString option(const QStringList& words, const char* key, const QString& otherwise)
{
    const QString prefix = text(key) + QLatin1Char(':');
    for (const QString& word : words) {
        if (word.startsWith(prefix))
            return word.mid(prefix.size());
    }
    return otherwise;
}

inline QByteArray hexOption(const QStringList& words, const char* key)
{
    return QByteArray::fromHex(option(words, key, QString()).toLatin1());
}

inline int number(const QStringList& words, const char* key, int otherwise)
{
    return option(words, key, QString::number(otherwise)).toInt();
}

/// TYPE ADDRESS+LENGTH and options.
inline RW_VAR variableOf(const QStringList& words)
{
    RW_VAR var;
    var.regType = typeNamed(words.value(0));
    var.address = words.value(1).section(QLatin1Char('+'), 0, 0).toInt();
    var.length = words.value(1).section(QLatin1Char('+'), 1).toInt();
    var.addressText = option(words, "text", QString());
    var.label = option(words, "label", QString());
    var.data = hexOption(words, "data");
    var.hostKey = number(words, "key", 0);
    var.hostSubKey = number(words, "sub", 0);
    var.station = number(words, "station", 1);
    var.nodeId = number(words, "node", 1);
    var.rwFlag = number(words, "flag", var.data.isEmpty() ? RW_READ : RW_WRITE);
    var.rmwStep = number(words, "rmw", 0);
    var.auxParam = number(words, "aux", 0);
    return var;
}

/// "1,2,3"
inline QString numbers(std::initializer_list<int> values)
{
    QStringList words;
    for (const int value : values)
        words << QString::number(value);
    return words.join(text(","));
}

/// ADDRESS+LENGTH, and the data where there is some.
inline QString shapeOf(const RW_VAR& var)
{
    const QString place = text("%1+%2", var.address, var.length);
    return var.data.isEmpty() ? place : place + QLatin1Char(':') + hexText(var.data);
}

inline QString placeOf(const RW_VAR& var)
{
    return text("%1/%2", var.station, var.regType);
}

/// Keys, flag, framing, node, what must be 0 in a list, station, label, address.
inline QString fieldsOf(const RW_VAR& var)
{
    return numbers({var.hostKey, var.hostSubKey, var.rwFlag, var.remoteMode, var.nodeId,
                    var.result | var.rmwStep | var.auxParam, var.station}) +
           text(",%1,%2", var.label, var.addressText);
}

/// One word for each record.
inline QString allOf(const QList<RW_VAR>& list, QString (*wordOf)(const RW_VAR&))
{
    QStringList words;
    for (const RW_VAR& var : list)
        words << wordOf(var);
    return words.join(text(" "));
}

#endif
