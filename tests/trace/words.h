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

/// "key=7" among `words` from index `from` on, or `otherwise`.
inline QString option(const QStringList& words, const char* key, const QString& otherwise)
{
    const QString prefix = QLatin1String(key) + QString::fromLatin1(":");
    for (const QString& word : words) {
        if (word.startsWith(prefix))
            return word.mid(prefix.size());
    }
    return otherwise;
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
    var.data = QByteArray::fromHex(option(words, "data", QString()).toLatin1());
    var.hostKey = number(words, "key", 0);
    var.hostSubKey = number(words, "sub", 0);
    var.station = number(words, "station", 1);
    var.nodeId = number(words, "node", 1);
    var.rwFlag =
        number(words, "flag", option(words, "data", QString()).isEmpty() ? RW_READ : RW_WRITE);
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
    return words.join(QString::fromLatin1(","));
}

/// ADDRESS+LENGTH, and the data where there is some.
inline QString shapeOf(const RW_VAR& var)
{
    const QString place = QString::fromLatin1("%1+%2").arg(var.address).arg(var.length);
    return var.data.isEmpty() ? place : place + QLatin1Char(':') + hexText(var.data);
}

inline QString shapesOf(const QList<RW_VAR>& list)
{
    QStringList shapes;
    for (const RW_VAR& var : list)
        shapes << shapeOf(var);
    return shapes.join(QString::fromLatin1(" "));
}

#endif
