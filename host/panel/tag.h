// One tag: a named value of the controller, as the tag file describes it.
#pragma once

#include "value.h"

#include <QString>

struct Tag {
    QString name;
    int type = 0;        ///< RegisterType
    QString addressText; ///< the address as the driver reads it: "byte.bit" or decimal
    int address = 0;     ///< in elements of the type
    int length = 0;      ///< in the driver's units: elements, 16-bit words for double words
    int station = 0;
    Format format = Format::Hex;
};
