// Bytes in, replies out: the traces in the text files, and what traces do not show.
#include "plc/controller.h"
#include "plc/fault_text.h"
#include "plc/image.h"
#include "support/cases.h"
#include "support/frames.h"

#include <algorithm>

using namespace plc;

namespace
{
/// Two stations that hold something to read everywhere; their machines stand still.
Controller filled(const Framing& framing)
{
    Controller controller = makeController({1, 2}, framing);
    for (Station& station : controller.stations) {
        Memory& memory = station.memory;
        unpackBits(memory.outputBits, 0, 40, bytes("FF 00 112233"));
        unpackBits(memory.inputBits, 32, 8, bytes("5A"));
        unpackBits(memory.specialBits, 8, 8, bytes("A5"));
        memory.memoryWords[2] = 0x0010;
        unpackWords(memory.memoryWords, MW_LEVEL, 2, bytes("000A 0102"));
        memory.memoryWords[MEMORY_WORDS - 1] = 0xCAFE;
        memory.specialWords[5] = 0xBEEF;
    }
    return controller;
}

/// The lowest and the highest level once the tank keeps to a setpoint.
QString level(const Given& in)
{
    Controller controller = makeController({1}, LOCAL_FRAMING);
    QVector<quint16>& words = controller.stations[1].memory.memoryWords;
    words[MW_SETPOINT] = in[0].toUShort();
    for (int i = 0; i < 10; ++i)
        runMachines(controller, 1000);
    QVector<int> levels;
    for (int i = 0; i < 100; ++i) {
        runMachines(controller, 20);
        levels += words.at(MW_LEVEL);
    }
    const auto range = std::minmax_element(levels.begin(), levels.end());
    return text("%1 to %2").arg(*range.first).arg(*range.second);
}
} // namespace

class ControllerTest : public CaseTest
{
    Q_OBJECT
public:
    ControllerTest() : CaseTest(CASES, {{"level", 1, level}}) {}
private slots:
    void traces_data()
    {
        QTest::addColumn<QByteArray>("trace");
        for (const char* name : {"framing.txt", "requests.txt", "machine.txt", "faults.txt"}) {
            QFile file(text(QByteArray(TRACES) + name));
            if (!file.open(QIODevice::ReadOnly))
                qFatal("cannot read %s", name);
            for (const QByteArray& part : file.readAll().split('#').mid(1)) {
                const QByteArray trace = part.trimmed();
                QTest::newRow(trace.left(trace.indexOf('\n')).constData()) << trace;
            }
        }
    }

    void traces()
    {
        QFETCH(QByteArray, trace);
        const Framing& framing = trace.startsWith("remote:") ? REMOTE_FRAMING : LOCAL_FRAMING;
        Controller controller =
            trace.startsWith("machine:") ? makeController({1, 2}, framing) : filled(framing);
        Framer framer;
        Line link;
        QList<Fault> faults;
        qint64 nowMs = 0;
        QList<QByteArray> expected;
        QList<QByteArray> seen;
        const auto serveAll = [&](const QList<QByteArray>& frames) {
            for (const QByteArray& frame : frames) {
                const QString before = imageText(controller);
                const Sending sending = serve(controller, link, frame, nowMs);
                const QByteArray reply = sending.echo + sending.noise + sending.reply;
                const bool same = imageText(controller) == before;
                if (!same || !reply.isEmpty())
                    seen += (same ? "< " : "<! ") + reply.toHex(' ');
            }
        };
        const auto fallSilent = [&] {
            nowMs += SILENT_GAP_MS;
            serveAll(takeSilence(framer, framing.frameLength, nowMs));
        };
        for (const QByteArray& line : trace.split('\n').mid(1)) {
            const QByteArray mark = line.split(' ').first();
            if (mark == "fault") {
                const ParsedFault parsed = parseFault(QString::fromLatin1(line.mid(6)));
                QVERIFY2(parsed.expected.isEmpty(), qPrintable(parsed.expected));
                controller.faults = makeFaultPlan(faults << parsed.fault, 1);
                continue;
            }
            const QByteArray data = bytes(line.mid(mark.size()));
            expected += mark + ' ' + data.toHex(' ');
            if (mark.startsWith('<'))
                continue;
            seen += expected.last();
            const QList<QByteArray> pause = mark.mid(1).split('*');
            for (int i = 0; mark.startsWith('+') && i < pause.value(1, "1").toInt(); ++i)
                runMachines(controller, pause.first().toInt());
            const int piece = mark.startsWith("@@") ? 1 : data.size();
            for (int i = 0; i < data.size(); i += piece) {
                nowMs += mark.mid(mark.lastIndexOf('@') + 1).toInt();
                serveAll(takeBytes(framer, framing.frameLength, data.mid(i, piece), nowMs));
            }
            if (mark == ">")
                fallSilent();
        }
        fallSilent();
        QCOMPARE(seen, expected);
    }

    void everyFrameEndsAtItsEnd()
    {
        // Among so many there are CRCs that fit one or more bytes early.
        for (int address = 0; address < 0x2000; ++address) {
            const QByteArray at = QByteArray::number(address, 16).rightJustified(4, '0');
            for (const QByteArray& frame :
                 {bytes("01 35" + at + " 01 FF00 +"), bytes("01 35" + at + " 00 0000 +"),
                  bytes("01 35" + at + " 0107 FF00 +"), bytes("01 35" + at + " 0000 0000 +"),
                  bytes("01 35" + at + " 01FF 0000 +"), bytes("01 04" + at + " 0001 +")}) {
                Framer framer;
                QList<QByteArray> seen;
                for (int i = 0; i < frame.size(); ++i)
                    seen += takeBytes(framer, localFrameLength, frame.mid(i, 1), 0);
                seen += takeSilence(framer, localFrameLength, SILENT_GAP_MS);
                QCOMPARE(seen, QList<QByteArray>{frame});
            }
        }
    }

    void countsAndDeafness()
    {
        Controller controller = filled(LOCAL_FRAMING);
        controller.deafUntilMs = 1000;
        Line link;
        QCOMPARE(serve(controller, link, bytes("01 06 000A 1234 +"), 999).reply, QByteArray());
        QCOMPARE(serve(controller, link, bytes("01 03 000A 0001 +"), 1000).reply,
                 bytes("01 03 02 0000 +"));
        for (const char* frame :
             {"02 04 0000 0001 +", "00 06 000A 1234 +", "00 04 0000 0001 +", "03 03 0000 0001 +"})
            serve(controller, link, bytes(frame), 1000);
        const Counters& counters = controller.counters;
        QCOMPARE((QList<qint64>{counters.requests, counters.replies, counters.exceptions,
                                counters.swallowed}),
                 (QList<qint64>{4, 2, 2, 1}));
    }
};

QTEST_APPLESS_MAIN(ControllerTest)
#include "tst_plc_controller.moc"
