// The frames on the line as a capture file for Wireshark and tshark: classic pcap, an IPv4 and UDP
// packet for each frame, from 192.0.2.1 (panel) to 192.0.2.2 (controller) port 5020 and back. The
// port tells Wireshark requests from replies.
//
//   tshark -r FILE -o mbrtu.udp.port:5020 -o mbrtu.crc_verification:TRUE
//
// (add -V for all fields, -Y mbrtu.crc16.incorrect for corrupt frames only). In Wireshark: Edit,
// Preferences, Protocols, Modbus RTU: set the UDP port to 5020 and tick the validation of the CRC;
// the same as two lines of the file "preferences" in its configuration folder:
//
//   mbrtu.udp.port: 5020
//   mbrtu.crc_verification: TRUE
//
// "Decode As" does as well, but cannot tell the request from the reply to a write of one word.
// The controller's own functions 49, 51 and 53 show as unknown functions, with their CRC checked.
// Requests of the remote framing are no Modbus: they go to port 5021 and show as plain data.
#pragma once

#include "trace.h"

#include <QFile>

#include <memory>

struct PcapFile {
    std::unique_ptr<QFile> file; ///< null: not open
    qint64 startedAt = 0;        ///< microseconds since 1970, UTC
};

/// Creates or replaces the file and writes its header.
/// @param startedAt start of the run, from which frames count, in microseconds since 1970, UTC
/// @return the error, empty when there is none
QString openPcap(PcapFile* pcap, const QString& fileName, qint64 startedAt);

/// Appends a frame in one write, without a buffer: the file is readable whenever the program ends.
/// Writes nothing when no reply came, or the file is not open. Bytes beyond the longest UDP packet
/// (65,507) are left out.
/// @return the error, empty when there is none
QString writePcap(PcapFile* pcap, const WireFrame& frame);
