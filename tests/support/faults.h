/// What is wrong, in words; an empty text is nothing.
#ifndef KP410_TESTS_FAULTS_H
#define KP410_TESTS_FAULTS_H

#include "support/bytes.h"

#include <initializer_list>

inline QString firstOf(std::initializer_list<QString> faults)
{
    for (const QString& fault : faults) {
        if (!fault.isEmpty())
            return fault;
    }
    return QString();
}

struct Claim {
    bool broken;
    const char* fault;
};

/// What the first claim that is broken says.
inline QString firstBroken(std::initializer_list<Claim> claims)
{
    for (const Claim& claim : claims) {
        if (claim.broken)
            return text(claim.fault);
    }
    return QString();
}

struct Field {
    const char* name;
    qint64 is, expected;
};

/// "NAME is 3, not 4" of the first field that is not as expected.
inline QString firstWrong(std::initializer_list<Field> fields)
{
    for (const Field& field : fields) {
        if (field.is != field.expected)
            return text("%1 is %2, not %3", text(field.name), field.is, field.expected);
    }
    return QString();
}

#endif
