// Captures as tshark reads them, with the command that pcap.h names.
#include "pcap.h"
#include "support/cases.h"
#include "support/frames.h"

namespace
{

constexpr qint64 STARTED_AT = 1700000000LL * MICROS_PER_SECOND + 999999;
constexpr const char* OPTIONS =
    "-n -o mbrtu.udp.port:5020 -o mbrtu.crc_verification:TRUE -o ip.check_checksum:TRUE "
    "-T fields -E separator=/s -r";

WireFrame frameOf(const QByteArray& frame)
{
    static const QRegularExpression form(text("^(\\d*)(r?)([-><!])(.*)$"));
    static const QHash<QString, FrameKind> kinds{{text("-"), FrameKind::NoReply},
                                                 {text(">"), FrameKind::Sent},
                                                 {text("<"), FrameKind::Reply},
                                                 {text("!"), FrameKind::Stray}};
    const QStringList found = form.match(text(frame)).capturedTexts();
    return {
        found[1].toLongLong(), kinds[found[3]], bytes(found[4].toUtf8()), {}, !found[2].isEmpty()};
}

/// Of a file that is still open for writing: those of the fields that a packet has, separated by
/// blanks, the packets by " / ".
QString packets(const QByteArray& frames, const QByteArray& fields)
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath(text("line.pcap"));
    PcapFile pcap;
    QString error = openPcap(&pcap, fileName, STARTED_AT);
    for (const QByteArray& frame : parts(frames, ','))
        error += writePcap(&pcap, frameOf(frame));
    QStringList arguments = text(OPTIONS).split(QLatin1Char(' ')) << fileName;
    for (const QByteArray& field : fields.split(' '))
        arguments << text("-e") << text(field);
    QProcess process;
    process.start(text(TSHARK), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        return error + text("tshark failed: " + process.readAllStandardError());
    QStringList shown;
    for (const QByteArray& line : process.readAllStandardOutput().trimmed().split('\n'))
        shown << text(line.simplified());
    return error + shown.join(text(" / "));
}

QString decoded(const Given& in)
{
    return packets(in[0], "_ws.col.Info modbus.reference_num modbus.word_cnt modbus.bit_cnt "
                          "modbus.regnum16 modbus.regval_uint16 modbus.bitnum modbus.bitval "
                          "modbus.data modbus.exception_code mbrtu.crc16.status data.data");
}

QString stamps(const Given& in)
{
    return packets(in[0], "frame.time_epoch ip.src ip.checksum.status udp.dstport");
}

QString lengths(const Given& in)
{
    return packets(in[0], "ip.len udp.length modbus.reference_num");
}

} // namespace

class PanelPcap : public CaseTest
{
    Q_OBJECT
public:
    PanelPcap()
        : CaseTest(CASES, {{"decoded", 1, decoded}, {"stamps", 1, stamps}, {"lengths", 1, lengths}})
    {
    }
private slots:
    void errors()
    {
        const QString full = text("/dev/full"), noSpace = text("No space left on device");
        const WireFrame frame{0, FrameKind::Reply, QByteArray(5, '\0'), {}, false};
        PcapFile pcap;
        QCOMPARE(writePcap(&pcap, frame), QString());
        QCOMPARE(openPcap(&pcap, text("/none/line.pcap"), 0), text("No such file or directory"));
        QCOMPARE(openPcap(&pcap, full, 0), noSpace);
        QVERIFY(!pcap.file);
        pcap.file = std::make_unique<QFile>(full);
        QVERIFY(pcap.file->open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QCOMPARE(writePcap(&pcap, frame), noSpace);
    }
};

QTEST_APPLESS_MAIN(PanelPcap)
#include "tst_panel_pcap.moc"
