// Captures as tshark reads them, with the command that pcap.h names.
#include "cases.h"
#include "pcap.h"

#include "../../host/plc/wire.h"

class PanelPcap : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void decoded_data() { addCases(); }
    void decoded();
    void stamps();
    void longest();
    void errors();

private:
    QTemporaryDir m_folder;
    PcapFile m_pcap;
    QString fileName() const { return m_folder.filePath(text("line.pcap")); }
    void write(FrameKind kind, const QByteArray& hex, Micros at = 0, bool remote = false);
    QString tshark(const QStringList& fields) const;
};

namespace
{

constexpr qint64 STARTED_AT = 1700000000LL * MICROS_PER_SECOND + 999999;

} // namespace

void PanelPcap::init()
{
    QCOMPARE(openPcap(&m_pcap, fileName(), STARTED_AT), QString());
}

/// @param hex bytes; a '+' at their end stands for their CRC
void PanelPcap::write(FrameKind kind, const QByteArray& hex, Micros at, bool remote)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    const WireFrame frame{at, kind, hex.endsWith('+') ? plc::withCrc(bytes) : bytes, {}, remote};
    QCOMPARE(writePcap(&m_pcap, frame), QString());
}

/// The file is still open for writing. The fields of each packet that have a value, separated by
/// blanks, the packets by " / ".
QString PanelPcap::tshark(const QStringList& fields) const
{
    QStringList arguments{text("-n"),
                          text("-r"),
                          fileName(),
                          text("-o"),
                          text("mbrtu.udp.port:5020"),
                          text("-o"),
                          text("mbrtu.crc_verification:TRUE"),
                          text("-o"),
                          text("ip.check_checksum:TRUE"),
                          text("-T"),
                          text("fields"),
                          text("-E"),
                          text("separator=/s")};
    for (const QString& field : fields)
        arguments << text("-e") << field;
    QProcess process;
    process.start(text(TSHARK), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        return QStringLiteral("tshark failed: ") + text(process.readAllStandardError());
    QStringList packets;
    for (const QByteArray& line : process.readAllStandardOutput().trimmed().split('\n'))
        packets << text(line.simplified());
    return packets.join(text(" / "));
}

void PanelPcap::decoded()
{
    QFETCH(QByteArray, given);
    for (const QByteArray& frame : parts(given, '|')) {
        const bool remote = frame.startsWith("remote>");
        const QByteArray hex = frame.mid(frame.indexOf(' '));
        write(remote || frame.startsWith('>') ? FrameKind::Sent
              : frame.startsWith('!')         ? FrameKind::Stray
                                              : FrameKind::Reply,
              hex, 0, remote);
    }
    const QString said =
        tshark({text("_ws.col.Info"), text("modbus.reference_num"), text("modbus.word_cnt"),
                text("modbus.bit_cnt"), text("modbus.regnum16"), text("modbus.regval_uint16"),
                text("modbus.bitnum"), text("modbus.bitval"), text("modbus.data"),
                text("modbus.exception_code"), text("mbrtu.crc16.status"), text("data.data")});
    QTEST(said, "expected");
}

void PanelPcap::stamps()
{
    write(FrameKind::Sent, "01 03 0064 0002 +", 0);
    write(FrameKind::NoReply, "", 1);
    write(FrameKind::Stray, "55", 2);
    write(FrameKind::Sent, "02 03 0064 0002 +", 3 * MICROS_PER_SECOND + 41);
    QCOMPARE(tshark({text("frame.time_epoch"), text("ip.src"), text("ip.checksum.status"),
                     text("udp.dstport")}),
             text("1700000000.999999000 192.0.2.1 1 5020 / 1700000001.000001000 192.0.2.2 1 50000 "
                  "/ 1700000004.000040000 192.0.2.1 1 5020"));
}

void PanelPcap::longest()
{
    const QByteArray bytes(70000, '\x01');
    QCOMPARE(writePcap(&m_pcap, {0, FrameKind::Reply, bytes, {}, false}), QString());
    write(FrameKind::Sent, "01 03 0064 0002 +");
    QCOMPARE(tshark({text("ip.len"), text("udp.length"), text("modbus.reference_num")}),
             text("65535 65515 / 36 16 100"));
}

void PanelPcap::errors()
{
    const QString full = text("/dev/full"), noSpace = text("No space left on device");
    const WireFrame frame{0, FrameKind::Reply, QByteArray(5, '\0'), {}, false};
    PcapFile pcap;
    QCOMPARE(writePcap(&pcap, frame), QString());
    QCOMPARE(openPcap(&pcap, m_folder.filePath(text("none/line.pcap")), 0),
             text("No such file or directory"));
    QCOMPARE(openPcap(&pcap, full, 0), noSpace);
    QVERIFY(!pcap.file);
    pcap.file = std::make_unique<QFile>(full);
    QVERIFY(pcap.file->open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QCOMPARE(writePcap(&pcap, frame), noSpace);
}

QTEST_APPLESS_MAIN(PanelPcap)
#include "tst_panel_pcap.moc"
