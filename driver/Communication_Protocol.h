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
/// holds a copy of needs memory for it. No entry is copied, and but for one turn in many none is
/// shifted: `move` goes one place on in the list's buffer while there is room behind the last
/// entry. Hold `listMutex`.
inline void rotate(QList<RW_VAR>& list)
{
    constexpr int shiftedAlways = 2; // so few entries `move` exchanges, room or not
    list.detach();
    const auto first = list.constBegin();
    list.move(0, list.size() - 1);
    if (list.constBegin() != first || list.size() <= shiftedAlways)
        return;
    // No room, all entries were shifted. An append makes room, for about as many turns as there are
    // entries; without memory it will be tried again in the next.
    guarded([&list] {
        list.append(list.at(0));
        list.removeLast();
    });
}

#endif
