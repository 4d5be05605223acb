#include "frames.h"
#include "plc/controller.h"

#include <QtTest>

using namespace plc;

namespace
{
/// Two stations that hold something to read everywhere; their machines stand still.
Controller filled(const Framing& framing)
{
    Controller controller = makeController({1, 2}, framing);
    for (Station& station : controller.stations) {
        Memory& memory = station.memory;
        memory.outputBits.fill(true, 0, 8);
        unpackBits(memory.outputBits, 16, 24, hex("112233"));
        unpackBits(memory.inputBits, 32, 8, hex("5A"));
        unpackBits(memory.specialBits, 8, 8, hex("A5"));
        memory.memoryWords[2] = 0x0010;
        memory.memoryWords[MW_LEVEL] = 0x000A;
        memory.memoryWords[MW_SETPOINT] = 0x0102;
        memory.memoryWords[MEMORY_WORDS - 1] = 0xCAFE;
        memory.specialWords[5] = 0xBEEF;
    }
    return controller;
}

QByteArray exchange(Controller& controller, const QByteArray& bytes)
{
    Framer framer;
    const FrameLength length = controller.framing.frameLength;
    QList<QByteArray> frames = takeBytes(framer, length, bytes, 0);
    frames += takeSilence(framer, length, SILENT_GAP_MS);
    QByteArray replies;
    for (const QByteArray& frame : qAsConst(frames))
        replies += serve(controller, frame, 0);
    return replies;
}

QByteArray readBack(Controller& controller, const QByteArray& request)
{
    controller.framing = LOCAL_FRAMING;
    return exchange(controller, request);
}

const QByteArray NONE;
const QByteArray READ_OUTPUT_BYTE_0 = "01 01 0000 0008";
const QByteArray READ_WORDS_10_11 = "01 03 000A 0002";
const QByteArray READ_WORDS_20_21 = "01 03 0014 0002";
const QByteArray READ_SPECIAL_BYTE_0 = "01 31 0000 0008";
const QByteArray READ_WORD_2 = "01 03 0002 0001";

void columns()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("check"); // a read after the request, without its CRC
    QTest::addColumn<QByteArray>("held");  // its reply
}

void row(const char* name, const QByteArray& request, const QByteArray& reply,
         const QByteArray& check = READ_WORDS_10_11,
         const QByteArray& held = crc("01 03 04 0000 0000"))
{
    QTest::newRow(name) << request << reply << check << held;
}
} // namespace

class RequestsTest : public QObject
{
    Q_OBJECT

    void compare(const Framing& framing)
    {
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, reply);
        QFETCH(QByteArray, check);
        QFETCH(QByteArray, held);
        Controller controller = filled(framing);
        QCOMPARE(exchange(controller, request).toHex(' '), reply.toHex(' '));
        QCOMPARE(readBack(controller, crc(check)).toHex(' '), held.toHex(' '));
    }

private slots:
    void local_data();
    void local() { compare(LOCAL_FRAMING); }
    void remote_data();
    void remote() { compare(REMOTE_FRAMING); }
    void broadcastReachesEveryStation();
    void countsAndDeafness();
};

void RequestsTest::local_data()
{
    columns();
    // The frames with their trailers written out were not made by the code under test.
    row("read output bytes 2 to 4", hex("01 01 0010 0018 3DC5"), crc("01 01 03 112233"));
    row("read input byte 4", crc("01 02 0020 0008"), crc("01 02 01 5A"));
    row("read 5 bits across a byte", crc("01 01 0013 0005"), crc("01 01 01 02"));
    row("read words 100, 101", hex("01 03 0064 0002 85D4"), hex("01 03 04 000A 0102 5A60"));
    row("read special byte 1", hex("02 31 0008 0008 FC39"), crc("02 31 01 A5"));
    row("read special word 5", hex("02 33 0005 0001 D43C"), crc("02 33 02 BEEF"));
    row("write bits 3 to 6", hex("01 0F 0003 0004 01 0B 3B51"), crc("01 0F 0003 0004"),
        READ_OUTPUT_BYTE_0, crc("01 01 01 DF"));
    row("write word 10", hex("01 06 000A 1234 A4BF"), hex("01 06 000A 1234 A4BF"), READ_WORDS_10_11,
        crc("01 03 04 1234 0000"));
    row("write words 10, 11", hex("01 10 000A 0002 04 1234 5678 08E4"), crc("01 10 000A 0002"),
        READ_WORDS_10_11, crc("01 03 04 1234 5678"));
    row("write double word at word 20", hex("01 10 0014 0002 04 5678 1234 6FB6"),
        crc("01 10 0014 0002"), READ_WORDS_20_21, crc("01 03 04 5678 1234"));
    row("set special bit 5", hex("01 35 0005 01 FF00 1E99"), crc("01 35 0005 FF00"),
        READ_SPECIAL_BYTE_0, crc("01 31 01 23"));
    row("clear special bit 5", hex("01 35 0005 00 0000 0EA9"), crc("01 35 0005 0000"),
        READ_SPECIAL_BYTE_0, crc("01 31 01 03"));
    row("special bit, two value bytes", crc("01 35 0005 0107 FF00"), crc("01 35 0005 FF00"),
        READ_SPECIAL_BYTE_0, crc("01 31 01 23"));
    row("special bit, no value byte", crc("01 35 0001 0000"), crc("01 35 0001 0000"),
        READ_SPECIAL_BYTE_0, crc("01 31 01 01"));
    row("read-modify-write, read", hex("01 03 0002 0001 25CA"), hex("01 03 02 0010 B988"));
    row("read-modify-write, write", hex("01 06 0002 0030 281E"), hex("01 06 0002 0030 281E"),
        READ_WORD_2, crc("01 03 02 0030"));

    row("no such function 04", crc("01 04 0000 0001"), crc("01 84 01"));
    row("no such function 00", crc("01 00 0000 0001"), crc("01 80 01"));
    row("no such function, no fields", crc("01 11"), crc("01 91 01"));
    row("no bits", crc("01 01 0000 0000"), crc("01 81 03"));
    row("2000 bits", crc("01 02 0100 07D0"), crc("01 02 FA" + QByteArray(500, '0')));
    row("2001 bits", crc("01 02 0100 07D1"), crc("01 82 03"));
    row("125 special words", crc("01 33 0100 007D"), crc("01 33 FA" + QByteArray(500, '0')));
    row("126 words", crc("01 03 0000 007E"), crc("01 83 03"));
    row("write 124 words", crc("01 10 000A 007C F8" + QByteArray(496, '1')), crc("01 90 03"));
    row("write 123 words", crc("01 10 000A 007B F6" + QByteArray(492, '1')), crc("01 10 000A 007B"),
        READ_WORDS_10_11, crc("01 03 04 1111 1111"));
    row("write 1969 bits", crc("01 0F 0000 07B1 F7" + QByteArray(494, '0')), crc("01 8F 03"),
        READ_OUTPUT_BYTE_0, crc("01 01 01 FF"));
    row("write 1968 bits", crc("01 0F 0000 07B0 F6" + QByteArray(492, '0')), crc("01 0F 0000 07B0"),
        READ_OUTPUT_BYTE_0, crc("01 01 01 00"));
    row("byte count too small", crc("01 10 000A 0002 02 1234"), crc("01 90 03"));
    row("byte count too large", crc("01 0F 0000 0008 02 0000"), crc("01 8F 03"), READ_OUTPUT_BYTE_0,
        crc("01 01 01 FF"));
    row("special bit, flag against value", crc("01 35 0005 01 0000"), crc("01 B5 03"),
        READ_SPECIAL_BYTE_0, crc("01 31 01 03"));
    row("special bit, flag without value", crc("01 35 0005 FF00"), crc("01 B5 03"),
        READ_SPECIAL_BYTE_0, crc("01 31 01 03"));
    row("special bit, address only", crc("01 35 0000"), crc("01 B5 03"), READ_SPECIAL_BYTE_0,
        crc("01 31 01 03"));
    row("last word", crc("01 03 3FFF 0001"), crc("01 03 02 CAFE"));
    row("beyond the last word", crc("01 03 3FFF 0002"), crc("01 83 02"));
    row("write beyond the last bit", crc("01 0F 0FFF 0002 01 00"), crc("01 8F 02"));
    row("special bit beyond the last", crc("01 35 0800 01 FF00"), crc("01 B5 02"));

    row("foreign station", crc("03 06 000A 1234"), NONE);
    row("bad CRC", hex("01 06 000A 1234 BFA4"), NONE);
    row("broadcast read", crc("00 03 0002 0001"), NONE);
    row("illegal broadcast", crc("00 04 0000 0001"), NONE);
}

void RequestsTest::remote_data()
{
    columns();
    // Description: hostKey, rwFlag, nodeId, station, type, address, length, rmwStep, auxParam.
    const auto read = [](const char* target) {
        return remoteFrame(QByteArray("07 00 01 ") + target + " 00000000 00000000");
    };
    const auto write = [](const char* target, const QByteArray& data) {
        return remoteFrame(QByteArray("07 01 01 ") + target + " 00000000 00000000", data);
    };
    row("read output bytes 2 to 4", hex("16 07 00 01 01 0004 00000002 0003 00000000 00000000 28"),
        crc("01 01 03 112233"));
    row("write word 10", hex("18 07 01 01 01 0008 0000000A 0001 00000000 00000000 3412 7B"),
        crc("01 10 000A 0001"), READ_WORDS_10_11, crc("01 03 04 1234 0000"));
    row("rmwStep -1", remoteFrame("07 00 01 01 0008 00000064 0001 FFFFFFFF 00000000"),
        crc("01 03 02 000A"));
    row("read input byte", read("01 0003 00000004 0001"), crc("01 02 01 5A"));
    row("read input word: two bytes are a word's worth", read("01 0006 00000003 0002"),
        crc("01 02 02 005A"));
    row("read memory byte: counts words", read("01 0005 00000064 0002"), crc("01 03 04 000A 0102"));
    row("read special byte", read("02 000C 00000001 0001"), crc("02 31 01 A5"));
    row("read special word", read("02 000D 00000005 0001"), crc("02 33 02 BEEF"));
    row("write bits 3 to 6", write("01 0001 00000003 0004", hex("0B")), crc("01 0F 0003 0004"),
        READ_OUTPUT_BYTE_0, crc("01 01 01 DF"));
    row("write double word at word 20", write("01 000B 00000014 0002", hex("78563412")),
        crc("01 10 0014 0002"), READ_WORDS_20_21, crc("01 03 04 5678 1234"));
    row("set memory bit 37", write("01 0002 00000025 0001", hex("01")), crc("01 06 0002 0030"),
        READ_WORD_2, crc("01 03 02 0030"));
    row("clear memory bit 36", write("01 0002 00000024 0001", hex("00")), crc("01 06 0002 0000"),
        READ_WORD_2, crc("01 03 02 0000"));
    row("write memory byte 5", write("01 0005 00000005 0001", hex("AB")), crc("01 06 0002 AB10"),
        READ_WORD_2, crc("01 03 02 AB10"));
    row("write memory byte 4", write("01 0005 00000004 0001", hex("CD")), crc("01 06 0002 00CD"),
        READ_WORD_2, crc("01 03 02 00CD"));
    row("set special bit 5", write("01 000C 00000005 0001", hex("02")), crc("01 35 0005 FF00"),
        READ_SPECIAL_BYTE_0, crc("01 31 01 23"));
    row("123 words: the length byte wraps", write("01 0008 0000000A 007B", QByteArray(246, '\x11')),
        crc("01 10 000A 007B"), READ_WORDS_10_11, crc("01 03 04 1111 1111"));

    row("too little data", write("01 0008 0000000A 0002", hex("3412")), crc("01 90 03"));
    row("too much data", write("01 0008 0000000A 0001", hex("34127856")), crc("01 90 03"));
    row("126 words", read("01 0008 00000000 007E"), crc("01 83 03"));
    row("beyond 16 bits", read("01 0008 00010064 0001"), crc("01 83 02"));
    row("negative address", read("01 0004 FFFFFFFF 0001"), crc("01 81 02"));
    row("memory bit beyond the area", write("01 0002 00040000 0001", hex("01")), crc("01 86 02"));
    row("negative memory bit", write("01 0002 FFFFFFFF 0001", hex("01")), crc("01 86 02"));
    row("write to the input area", write("01 0006 00000000 0008", hex("FF")), crc("01 80 01"));
    row("no such type", read("01 000E 00000000 0001"), crc("01 80 01"));
    row("neither read nor write", remoteFrame("07 02 01 01 0008 00000000 0001 00000000 00000000"),
        crc("01 80 01"));
    row("foreign station", read("03 0008 00000000 0001"), NONE);
    row("bad checksum", hex("18 07 01 01 01 0008 0000000A 0001 00000000 00000000 3412 7C"), NONE);
}

void RequestsTest::broadcastReachesEveryStation()
{
    Controller local = filled(LOCAL_FRAMING);
    QCOMPARE(exchange(local, crc("00 06 000A 1234")), NONE);
    QCOMPARE(exchange(local, crc("01 03 000A 0001")), crc("01 03 02 1234"));
    QCOMPARE(exchange(local, crc("02 03 000A 0001")), crc("02 03 02 1234"));

    // A bit is merged into each station's own word.
    Controller remote = filled(REMOTE_FRAMING);
    remote.stations[2].memory.memoryWords[2] = 0x8000;
    QCOMPARE(exchange(remote,
                      remoteFrame("07 01 01 00 0002 00000025 0001 00000000 00000000", hex("01"))),
             NONE);
    QCOMPARE(int{remote.stations[1].memory.memoryWords[2]}, 0x0030);
    QCOMPARE(int{remote.stations[2].memory.memoryWords[2]}, 0x8020);
}

void RequestsTest::countsAndDeafness()
{
    Controller controller = filled(LOCAL_FRAMING);
    controller.deafUntilMs = 1000;
    QCOMPARE(serve(controller, crc("01 06 000A 1234"), 999), NONE);
    QCOMPARE(serve(controller, crc("01 03 000A 0001"), 1000), crc("01 03 02 0000"));
    serve(controller, crc("02 04 0000 0001"), 1000);
    serve(controller, crc("00 06 000A 1234"), 1000);
    serve(controller, crc("03 03 0000 0001"), 1000);
    QCOMPARE(controller.counters.requests, 3);
    QCOMPARE(controller.counters.replies, 2);
    QCOMPARE(controller.counters.exceptions, 1);
    QCOMPARE(controller.counters.swallowed, 1);
}

QTEST_APPLESS_MAIN(RequestsTest)
#include "tst_plc_requests.moc"
