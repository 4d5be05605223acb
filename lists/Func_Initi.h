/// Address texts. The exported functions are declared in the installed header.
#ifndef KP410_LISTS_FUNC_INITI_H
#define KP410_LISTS_FUNC_INITI_H

#include "talmor_kp410_port.h"

/// The same as `elementAddress`.
int StringAddressToInt(int type, QString text);

#endif
