// Where the fields of a remote request stand. Fields wider than a byte are big-endian.
#pragma once

namespace remote_layout
{
inline constexpr int KEY_OFFSET = 1;
inline constexpr int RW_FLAG_OFFSET = 2;
inline constexpr int NODE_OFFSET = 3;
inline constexpr int STATION_OFFSET = 4;
inline constexpr int TYPE_OFFSET = 5;    ///< 16 bits
inline constexpr int ADDRESS_OFFSET = 7; ///< 32 bits
inline constexpr int COUNT_OFFSET = 11;  ///< 16 bits
inline constexpr int DATA_OFFSET = 21;
inline constexpr int CHECKSUM_BYTES = 1;
inline constexpr int SHORTEST_REQUEST = DATA_OFFSET + CHECKSUM_BYTES;
} // namespace remote_layout
