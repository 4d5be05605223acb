#include "pcap.h"

#include <QDataStream>

namespace
{

// The file: "PCAP Capture File Format", version 2.4.
constexpr quint32 PCAP_MAGIC = 0xA1B2C3D4; // times in microseconds
constexpr quint16 PCAP_MAJOR = 2;
constexpr quint16 PCAP_MINOR = 4;
constexpr quint32 SNAP_LENGTH = 65535;
constexpr quint32 LINKTYPE_RAW = 101; // packets begin with the IP header

// The packets.
constexpr quint16 IP_HEADER_BYTES = 20;
constexpr quint16 UDP_HEADER_BYTES = 8;
constexpr int LONGEST_PAYLOAD = 65535 - IP_HEADER_BYTES - UDP_HEADER_BYTES;
constexpr quint16 IP_VERSION_AND_SERVICE = 0x4500; // version 4, header of five words
constexpr quint16 IP_DO_NOT_FRAGMENT = 0x4000;
constexpr quint16 IP_LIVES_AND_UDP = 64 << 8 | 17; // time to live, protocol
constexpr quint16 NO_UDP_CHECKSUM = 0;

constexpr quint32 PANEL_ADDRESS = 0xC0000201; // 192.0.2.1, of the range kept for examples
constexpr quint32 CONTROLLER_ADDRESS = 0xC0000202;
constexpr quint16 PANEL_PORT = 50000;
constexpr quint16 MODBUS_PORT = 5020;
constexpr quint16 REMOTE_REQUEST_PORT = 5021;

QByteArray fileHeader()
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    const quint32 zoneAndPrecision = 0;
    stream << PCAP_MAGIC << PCAP_MAJOR << PCAP_MINOR << zoneAndPrecision << zoneAndPrecision
           << SNAP_LENGTH << LINKTYPE_RAW;
    return bytes;
}

QByteArray recordHeader(Micros sinceEpoch, int packetBytes)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    const auto length = static_cast<quint32>(packetBytes);
    stream << static_cast<quint32>(sinceEpoch / MICROS_PER_SECOND)
           << static_cast<quint32>(sinceEpoch % MICROS_PER_SECOND) << length << length;
    return bytes;
}

QByteArray ipHeader(quint32 source, quint32 destination, quint16 length, quint16 checksum)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    const quint16 identification = 0;
    stream << IP_VERSION_AND_SERVICE << length << identification << IP_DO_NOT_FRAGMENT
           << IP_LIVES_AND_UDP << checksum << source << destination;
    return bytes;
}

/// One's complement of the one's complement sum, as IP wants it.
quint16 ipChecksum(const QByteArray& header)
{
    QDataStream stream(header);
    quint32 sum = 0;
    while (!stream.atEnd()) {
        quint16 word = 0;
        stream >> word;
        sum += word;
    }
    while (sum > 0xFFFF)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<quint16>(~sum);
}

QByteArray packet(const WireFrame& frame)
{
    const QByteArray payload = frame.bytes.left(LONGEST_PAYLOAD);
    const auto udpLength = static_cast<quint16>(UDP_HEADER_BYTES + payload.size());
    const auto ipLength = static_cast<quint16>(IP_HEADER_BYTES + udpLength);
    const bool sent = frame.kind == FrameKind::Sent;
    const quint32 source = sent ? PANEL_ADDRESS : CONTROLLER_ADDRESS;
    const quint32 destination = sent ? CONTROLLER_ADDRESS : PANEL_ADDRESS;
    QByteArray bytes = ipHeader(source, destination, ipLength,
                                ipChecksum(ipHeader(source, destination, ipLength, 0)));
    QDataStream stream(&bytes, QIODevice::Append);
    if (sent)
        stream << PANEL_PORT << (frame.remote ? REMOTE_REQUEST_PORT : MODBUS_PORT);
    else
        stream << MODBUS_PORT << PANEL_PORT;
    stream << udpLength << NO_UDP_CHECKSUM;
    return bytes + payload;
}

QString append(QFile* file, const QByteArray& bytes)
{
    return file->write(bytes) == bytes.size() ? QString() : file->errorString();
}

} // namespace

QString openPcap(PcapFile* pcap, const QString& fileName, qint64 startedAt)
{
    auto file = std::make_unique<QFile>(fileName);
    if (!file->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return file->errorString();
    const QString error = append(file.get(), fileHeader());
    if (!error.isEmpty())
        return error;
    pcap->file = std::move(file);
    pcap->startedAt = startedAt;
    return QString();
}

QString writePcap(PcapFile* pcap, const WireFrame& frame)
{
    if (!pcap->file || frame.kind == FrameKind::NoReply)
        return QString();
    const QByteArray bytes = packet(frame);
    return append(pcap->file.get(), recordHeader(pcap->startedAt + frame.at, bytes.size()) + bytes);
}
