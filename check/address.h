/// Address texts: what the runtime calls an element of the controller.
#ifndef KP410_CHECK_ADDRESS_H
#define KP410_CHECK_ADDRESS_H

#include <QString>

/// The element address of `text`: "byte.bit" for INPUT_BIT, OUTPUT_BIT and MEMORY_BIT, a plain
/// decimal number for every other type. Parts that are no decimal int count as 0; arithmetic wraps.
/// Throws when memory fails, which only text other than a few plain digits needs.
/// @return the address; -1 for a bit text without exactly one "."
int StringAddressToInt(int type, const QString& text);

#endif
