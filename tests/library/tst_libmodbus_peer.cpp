#include "support/bytes.h"
#include "support/library.h"

#include <QtTest>

#include <atomic>
#include <fcntl.h>
#include <modbus.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace
{
constexpr int STATION = 17;
constexpr int REPLY_TIMEOUT_MS = 1000;
constexpr int GAP_MS = 20;

/// libmodbus' RTU server in a thread of its own, on the slave side of a pseudo-terminal.
struct Server {
    Server() : line(posix_openpt(O_RDWR | O_NOCTTY)), map(modbus_mapping_new(256, 256, 256, 256))
    {
        grantpt(line);
        unlockpt(line);
        termios settings;
        tcgetattr(line, &settings);
        cfmakeraw(&settings);
        tcsetattr(line, TCSANOW, &settings);
        context = modbus_new_rtu(ptsname(line), 19200, 'N', 8, 1);
        modbus_set_slave(context, STATION);
        modbus_set_indication_timeout(context, 0, 50000);
        connected = modbus_connect(context) == 0;
        thread = std::thread([this] { serve(); });
    }
    ~Server()
    {
        stopping = true;
        thread.join();
        modbus_close(context);
        modbus_free(context);
        modbus_mapping_free(map);
        close(line);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    void serve()
    {
        while (connected && !stopping) {
            unsigned char request[MODBUS_RTU_MAX_ADU_LENGTH];
            const int size = modbus_receive(context, request);
            if (size > 0)
                modbus_reply(context, request, size, map);
        }
    }

    const int line; ///< the master side
    modbus_mapping_t* const map;
    modbus_t* context = nullptr;
    bool connected = false;
    std::atomic<bool> stopping{false};
    std::thread thread;
};
} // namespace

/// Our frames, judged by an RTU server that was written elsewhere.
class LibmodbusPeer : public QObject
{
    Q_OBJECT

    Server server;
    modbus_mapping_t* const map = server.map;
    Library library{KP410_LIBRARY};
    ComInfo settings = ComInfo();

    /// One turn of the runtime's loop. @return the result code; -1 when there was nothing to send
    int turn()
    {
        const Protocol* frame = BIND(library, ComCommunication)();
        if (!frame)
            return -1;
        if (::write(server.line, frame->frame.constData(),
                    static_cast<size_t>(frame->frameLength)) != frame->frameLength)
            return -2;
        QByteArray reply;
        char chunk[300];
        pollfd ready = {server.line, POLLIN, 0};
        while (poll(&ready, 1, reply.isEmpty() ? REPLY_TIMEOUT_MS : GAP_MS) > 0) {
            const ssize_t size = ::read(server.line, chunk, sizeof chunk);
            if (size <= 0)
                break;
            reply.append(chunk, static_cast<int>(size));
        }
        return BIND(library, DataCom)(&reply, reply.size())->result;
    }

    int readOnce(int type, const char* address, int count)
    {
        RW_VAR var;
        var.regType = type;
        var.addressText = text(address);
        var.station = STATION;
        var.length = count;
        BIND(library, AddListOnceReadVar)(&var, ADD_CHECKED);
        return turn();
    }

    QByteArray shown(int type, const char* address, int count)
    {
        QString addressText = text(address);
        QByteArray out;
        BIND(library, GetRegisterData)(0, type, &addressText, STATION, &out, count);
        return out;
    }

    /// Turns until the write is answered; the result of the last.
    int write(int type, const char* address, const char* hex, int count)
    {
        QString addressText = text(address);
        QString label;
        QByteArray value = bytes(hex);
        BIND(library, SetRegisterData)(&label, type, &addressText, STATION, &value, count, 0, 0);
        int result = -1;
        while (!BIND(library, PLC_driver)->writeList.isEmpty())
            result = turn();
        return result;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(library.isLoaded());
        QVERIFY(server.connected);
        settings.maxBlockLength = 100;
        settings.stationPerVar = 1;
        settings.writeMode = WRITE_QUEUE;
        BIND(library, SetComInfo)(&settings);
        for (int i = 0; i < 256; ++i) {
            map->tab_bits[i] = i % 3 == 0;
            map->tab_input_bits[i] = i % 5 == 0;
            map->tab_registers[i] = static_cast<unsigned short>(0x1234 + 0x0101 * i);
        }
    }

    void reads()
    {
        QCOMPARE(readOnce(OUTPUT_BIT, "1.2", 20), 1); // code 1
        QCOMPARE(readOnce(INPUT_BIT, "0.0", 40), 1);  // code 2
        QCOMPARE(readOnce(MEMORY_DWORD, "3", 4), 1);  // code 3
        for (int i = 0; i < 20; ++i)
            QCOMPARE(int{shown(OUTPUT_BIT, "1.2", 20).at(i)}, (10 + i) % 3 == 0 ? 1 : 0);
        for (int i = 0; i < 40; ++i)
            QCOMPARE(int{shown(INPUT_BIT, "0.0", 40).at(i)}, i % 5 == 0 ? 1 : 0);
        QCOMPARE(shown(MEMORY_DWORD, "3", 4), bytes("3A 18 3B 19 3C 1A 3D 1B"));
    }

    void oneRegister() // code 6
    {
        QCOMPARE(write(MEMORY_WORD, "20", "CD AB", 1), 1);
        QCOMPARE(int{map->tab_registers[20]}, 0xABCD);
        QCOMPARE(int{map->tab_registers[21]}, 0x1234 + 0x0101 * 21);
    }

    void bitAndByteOfARegister() // codes 3 and 6
    {
        map->tab_registers[30] = 0x1204;
        QCOMPARE(write(MEMORY_BIT, "60.5", "01", 1), 1);
        QCOMPARE(int{map->tab_registers[30]}, 0x1224);
        QCOMPARE(write(MEMORY_BIT, "60.2", "00", 1), 1);
        QCOMPARE(int{map->tab_registers[30]}, 0x1220);
        QCOMPARE(write(MEMORY_BYTE, "61", "AB 00", 1), 1);
        QCOMPARE(int{map->tab_registers[30]}, 0xAB20);
    }

    void coils() // code 15
    {
        QCOMPARE(write(OUTPUT_BIT, "5.6", "01 01 00 01 01 00 01 01 01 00", 10), 1);
        const int expected[] = {1, 1, 0, 1, 1, 0, 1, 1, 1, 0};
        for (int i = 0; i < 10; ++i)
            QCOMPARE(int{map->tab_bits[46 + i]}, expected[i]);
        QCOMPARE(write(OUTPUT_WORD, "6", "01 80", 1), 1);
        QCOMPARE(int{map->tab_bits[96]}, 1);
        QCOMPARE(int{map->tab_bits[97]}, 0);
        QCOMPARE(int{map->tab_bits[111]}, 1);
    }

    void severalRegisters() // code 16
    {
        QCOMPARE(write(MEMORY_DWORD, "40", "78 56 34 12 EF CD AB 89", 4), 1);
        const int expected[] = {0x5678, 0x1234, 0xCDEF, 0x89AB};
        for (int i = 0; i < 4; ++i)
            QCOMPARE(int{map->tab_registers[80 + i]}, expected[i]);
    }

    void exceptionsFail()
    {
        QCOMPARE(readOnce(MEMORY_WORD, "250", 20), 71); // illegal address: 5 bytes instead of 45
        QCOMPARE(shown(MEMORY_WORD, "250", 1), bytes("0000"));
    }
};

QTEST_APPLESS_MAIN(LibmodbusPeer)
#include "tst_libmodbus_peer.moc"
