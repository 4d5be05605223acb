// A Modbus server that was written elsewhere, with RTU framing, as station STATION.
#pragma once

#include "image.h"

#include <functional>

inline constexpr int STATION = 17;
inline constexpr int PATIENCE_MS = 20000;

struct Served {
    Image held;
    QVector<int> codes; ///< function codes of the requests, those refused among them
};

struct Peer {
    QStringList link; ///< arguments that lead the panel to the peer
    /// Lets the peer hold an image. @return what it held until then, and what it was asked since
    /// the last call
    std::function<Served(const Image&)> replace;
};

/// Starts the server; it ends with the last copy of the returned record. A failure is fatal.
Peer startPeer();
