/// The driver's own view of its state object, which the installed header declares.
#ifndef KP410_DRIVER_COMMUNICATION_PROTOCOL_H
#define KP410_DRIVER_COMMUNICATION_PROTOCOL_H

#include "talmor_kp410_port.h"

#include "check/guarded.h"

/// Copies every field of `from` into `to` except `data`, which it empties.
void passRetValue(const RW_VAR& from, RW_VAR& to);

/// @return true when `station` is switched off. Takes `stationMutex`.
bool Ethernetcontains(int station);

/// Moves the first entry of `list`, which must have one, to its end. Only a list that the runtime
/// holds a copy of needs memory for it. Hold `listMutex`.
inline void rotate(QList<RW_VAR>& list)
{
    list.detach();
    const bool moved = guarded(false, [&list] {
        list.append(list.at(0));
        return true;
    });
    // Second choice, since it shifts the whole list when its buffer is full.
    if (!moved)
        list.move(0, list.size() - 1);
    else
        list.removeFirst();
}

#endif
