#include "frames.h"
#include "plc/framer.h"
#include "plc/local.h"
#include "plc/remote.h"

#include <QtTest>

using namespace plc;

namespace
{
struct Arrival {
    qint64 atMs;
    QByteArray bytes;
};
using Arrivals = QList<Arrival>;
using Frames = QList<QByteArray>;

QByteArray spelled(const Frames& frames)
{
    QByteArray text;
    for (const QByteArray& frame : frames)
        text += frame.toHex(' ') + '\n';
    return text;
}

Arrivals byteByByte(const QByteArray& bytes, int stepMs)
{
    Arrivals arrivals;
    for (int i = 0; i < bytes.size(); ++i)
        arrivals.append({i * stepMs, bytes.mid(i, 1)});
    return arrivals;
}

const QByteArray READ = hex("01 03 0064 0002 85D4");
const QByteArray WRITE_BITS = hex("01 0F 0003 0004 01 0B 3B51");
const QByteArray SET_SPECIAL = hex("01 35 0005 01 FF00 1E99");
const QByteArray REMOTE_READ = hex("16 07 00 01 01 0004 00000002 0003 00000000 00000000 28");
const QByteArray REMOTE_WRITE = hex("18 07 01 01 01 0008 0000000A 0001 00000000 00000000 3412 7B");
} // namespace
Q_DECLARE_METATYPE(Arrivals)
Q_DECLARE_METATYPE(FrameLength)

class FramerTest : public QObject
{
    Q_OBJECT
private slots:
    void stream_data();
    void stream();
    void everyFrameEndsAtItsEnd();
};

void FramerTest::stream_data()
{
    QTest::addColumn<FrameLength>("frameLength");
    QTest::addColumn<Arrivals>("arrivals");
    QTest::addColumn<Frames>("frames");
    const auto local = [](const QByteArray& name, const Arrivals& arrivals, const Frames& frames) {
        QTest::newRow(name.constData()) << FrameLength{localFrameLength} << arrivals << frames;
    };
    const auto remote = [](const char* name, const Arrivals& arrivals, const Frames& frames) {
        QTest::newRow(name) << FrameLength{remoteFrameLength} << arrivals << frames;
    };
    const int gap = SILENT_GAP_MS;
    QByteArray corrupt = READ;
    corrupt[5] = 3;

    local("whole", {{0, READ}}, {READ});
    local("byte by byte", byteByByte(READ + WRITE_BITS + SET_SPECIAL, gap - 1),
          {READ, WRITE_BITS, SET_SPECIAL});
    local("glued", {{0, READ + WRITE_BITS + SET_SPECIAL + READ}},
          {READ, WRITE_BITS, SET_SPECIAL, READ});
    local("glued and torn", {{0, READ + WRITE_BITS.left(6)}, {9, WRITE_BITS.mid(6) + READ}},
          {READ, WRITE_BITS, READ});
    local("torn by a gap", {{0, READ.left(5)}, {gap, READ.mid(5)}, {2 * gap, READ}}, {READ});
    local("noise, gap", {{0, hex("FF 00 55")}, {gap, READ}}, {READ});
    local("noise, no gap", {{0, hex("FF 00 55")}, {gap - 1, READ}}, {});
    local("corrupt holds up what follows", {{0, corrupt}, {1, READ}, {1 + gap, READ}}, {READ});
    local("other stations' requests", {{0, crc("07 03 0064 0002") + READ}},
          {crc("07 03 0064 0002"), READ});
    for (const QByteArray& open :
         {crc("01 2B 0E 01 00"), crc("01 35 0005 0000"), crc("01 35 0005 0102 FF00")})
        local("ended by silence, " + open.toHex(), {{0, open}, {gap, READ}}, {open, READ});
    local("endless noise without a gap",
          {{0, QByteArray(MAX_PENDING_BYTES, '\x55')}, {1, hex("55")}, {2, READ}}, {READ});

    remote("remote, glued and torn",
           {{0, REMOTE_READ + REMOTE_WRITE.left(22)}, {9, REMOTE_WRITE.mid(22) + REMOTE_READ}},
           {REMOTE_READ, REMOTE_WRITE, REMOTE_READ});
    remote("remote, byte by byte", byteByByte(REMOTE_WRITE + REMOTE_READ, gap - 1),
           {REMOTE_WRITE, REMOTE_READ});
    remote("remote, noise, gap", {{0, hex("16 07")}, {gap, REMOTE_READ}}, {REMOTE_READ});
    remote("remote, length byte below the shortest frame",
           {{0, hex("15 07 00 01 01 0004 00000002 0003 00000000 000000 27 00")}}, {});
    remote("remote, corrupt holds up what follows",
           {{0, REMOTE_READ.left(21) + hex("29")}, {1, REMOTE_READ}}, {});
}

void FramerTest::stream()
{
    QFETCH(FrameLength, frameLength);
    QFETCH(Arrivals, arrivals);
    QFETCH(Frames, frames);
    Framer framer;
    Frames seen;
    for (const Arrival& arrival : arrivals)
        seen += takeBytes(framer, frameLength, arrival.bytes, arrival.atMs);
    QCOMPARE(spelled(seen), spelled(frames));
}

void FramerTest::everyFrameEndsAtItsEnd()
{
    // Among so many there are CRCs that fit one or more bytes early.
    for (int address = 0; address < 0x2000; ++address) {
        QByteArray field;
        appendWord(field, address);
        for (const QByteArray& frame : {withCrc(hex("01 35") + field + hex("01 FF00")),
                                        withCrc(hex("01 35") + field + hex("00 0000")),
                                        withCrc(hex("01 04") + field + hex("0001"))}) {
            Framer framer;
            Frames seen;
            for (int i = 0; i < frame.size(); ++i)
                seen += takeBytes(framer, localFrameLength, frame.mid(i, 1), 0);
            seen += takeSilence(framer, localFrameLength, SILENT_GAP_MS);
            if (seen != Frames{frame})
                QCOMPARE(spelled(seen), spelled({frame}));
        }
    }
}

QTEST_APPLESS_MAIN(FramerTest)
#include "tst_plc_framer.moc"
