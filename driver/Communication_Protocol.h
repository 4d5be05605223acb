/// The driver's own view of its state object, which the installed header declares.
#ifndef KP410_DRIVER_COMMUNICATION_PROTOCOL_H
#define KP410_DRIVER_COMMUNICATION_PROTOCOL_H

#include "talmor_kp410_port.h"

/// Copies every field of `from` into `to` except `data`, which it empties.
void passRetValue(const RW_VAR& from, RW_VAR& to);

/// @return true when `station` is switched off. Takes `stationMutex`.
bool Ethernetcontains(int station);

/// Moves the first entry of `list`, which must have one, to its end. Hold `listMutex`.
inline void rotate(QList<RW_VAR>& list)
{
    // Not QList::move, which shifts the whole list when its buffer is full.
    list.append(list.takeFirst());
}

#endif
