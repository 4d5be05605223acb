// libmodbus' RTU server, in a thread of its own, on the master side of a pseudo-terminal.
#include "peer.h"

#include <QFile>

#include <array>
#include <atomic>
#include <fcntl.h>
#include <memory>
#include <modbus.h>
#include <mutex>
#include <stdlib.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace
{

constexpr int BAUD = 19200, DATA_BITS = 8, STOP_BITS = 1;
constexpr unsigned STOP_CHECK_MICROS = 50000;

void must(bool done, const char* what)
{
    if (!done)
        qFatal("%s: %s", what, modbus_strerror(errno));
}

struct Server {
    Server()
    {
        must(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0, "pseudo-terminal");
        // Held open: with the last panel gone the terminal would report its hang-up without end.
        slave = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings = {};
        must(tcgetattr(slave, &settings) == 0, "terminal settings");
        cfmakeraw(&settings);
        must(tcsetattr(slave, TCSANOW, &settings) == 0, "raw terminal");
        // The device is open already, libmodbus never opens the one that it is given by name.
        context = modbus_new_rtu(ptsname(master), BAUD, 'N', DATA_BITS, STOP_BITS);
        must(context && map, "libmodbus");
        must(modbus_set_slave(context, STATION) == 0 && modbus_set_socket(context, master) == 0 &&
                 modbus_set_indication_timeout(context, 0, STOP_CHECK_MICROS) == 0,
             "libmodbus settings");
        thread = std::thread([this] { serve(); });
    }
    ~Server()
    {
        stopping = true;
        thread.join();
        modbus_free(context);
        modbus_mapping_free(map);
        close(slave);
        close(master);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    void serve()
    {
        std::array<unsigned char, MODBUS_RTU_MAX_ADU_LENGTH> request = {};
        while (!stopping) {
            const int size = modbus_receive(context, request.data());
            if (size <= 0)
                continue;
            const std::lock_guard<std::mutex> lock(mutex);
            codes << request[static_cast<size_t>(modbus_get_header_length(context))];
            modbus_reply(context, request.data(), size, map);
        }
    }

    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    int slave = -1;
    modbus_t* context = nullptr;
    std::mutex mutex; ///< of the mapping and the codes
    modbus_mapping_t* const map = modbus_mapping_new(CELLS, CELLS, CELLS, 0);
    QVector<int> codes;
    std::atomic<bool> stopping{false};
    std::thread thread;
};

template <class Cell>
QVector<int> replaceCells(Cell* cells, const QVector<int>& values)
{
    QVector<int> held;
    for (int i = 0; i < CELLS; ++i) {
        held << cells[i];
        cells[i] = static_cast<Cell>(values[i]);
    }
    return held;
}

Served replaceImage(Server* server, const Image& image)
{
    const std::lock_guard<std::mutex> lock(server->mutex);
    Served served;
    served.held[COIL] = replaceCells(server->map->tab_bits, image[COIL]);
    served.held[INPUT] = replaceCells(server->map->tab_input_bits, image[INPUT]);
    served.held[REGISTER] = replaceCells(server->map->tab_registers, image[REGISTER]);
    served.codes.swap(server->codes);
    return served;
}

} // namespace

Peer startPeer()
{
    const auto server = std::make_shared<Server>();
    return {{QStringLiteral("--serial"), QFile::decodeName(ptsname(server->master))},
            [server](const Image& image) { return replaceImage(server.get(), image); }};
}
