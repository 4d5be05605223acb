// The panel's own loop, with the loaded library, on the simulated controller with every fault.
#include "callbacks.h"
#include "loop.h"
#include "plc/fault_text.h"
#include "session.h"
#include "soak/line.h"
#include "soak/watched.h"
#include "support/at_rest.h"
#include "tag_file.h"

#include <QSet>
#include <QThread>
#include <QtTest>

#include <utility>

#include <dlfcn.h>
#include <unistd.h>

/// The panel sleeps when there is nothing to send.
void QThread::usleep(unsigned long micros)
{
    now += static_cast<Micros>(micros);
}

namespace
{
#if defined(__SANITIZE_ADDRESS__)        // what is freed is kept for a while
constexpr qint64 MOST_GROWTH_KIB = 4096; ///< after a tenth of the turns
#else
constexpr qint64 MOST_GROWTH_KIB = 256;
#endif
constexpr int CHANGE_STEP = 30;                             ///< in turns
constexpr int CHANGED = 320;                                ///< bits and words, the first
constexpr Micros QUIET = LONGEST_PROBE + MICROS_PER_SECOND; ///< all stations are on again
constexpr int KEPT = 3; ///< changes; no reply taken is older, be it to an earlier try

QByteArray contentsOf(const char* name)
{
    QFile file(QString::fromUtf8(name));
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

qint64 residentKib()
{
    const qint64 pages = contentsOf("/proc/self/statm").split(' ').value(1).toLongLong();
    return pages * sysconf(_SC_PAGESIZE) / 1024;
}

plc::FaultPlan plannedFaults()
{
    QList<plc::Fault> faults;
    for (const QByteArray& line : contentsOf(FAULTS).split('\n'))
        if (!line.isEmpty() && !line.startsWith('#'))
            faults << plc::parseFault(QString::fromLatin1(line)).fault;
    return plc::makeFaultPlan(faults, 1);
}

/// What the controller has in the place of a block, as it sends it.
QByteArray inMemory(plc::Memory memory, const RW_VAR& block)
{
    const QBitArray* const bits = plc::bitArea(memory, block.regType);
    return bits
               ? plc::packBits(*bits, 8 * block.address, 8 * block.length)
               : plc::packWords(*plc::wordArea(memory, block.regType), block.address, block.length);
}

/// The panel on a controller with faults, and the books about it.
struct Soak {
    explicit Soak(const plc::Framing& framing)
        : controller(plc::makeController({1, 2, 3}, framing, false)),
          store(*static_cast<Store*>(dlsym(loaded.handle, "DataStorage")))
    {
        now = 0;
        watch = std::make_unique<Watch>(*loaded.state, store);
        putToRest(*loaded.state, store, panel.info);
        const QString words = QStringLiteral("panel --serial=line --timeout=100 tags");
        Options options = parseOptions(words.split(QLatin1Char(' ')), {}).options;
        options.remote = framing.parse == plc::parseRemote;
        preparePanel(options, &panel);
        panel.driver = loaded;
        panel.driver.comCommunication = watched<&DriverApi::comCommunication, CALL_TURNS>;
        panel.driver.dataCom = watched<&DriverApi::dataCom, CALL_ANSWERS>;
        panel.driver.getRegisterData = watched<&DriverApi::getRegisterData, CALL_OTHER>;
        panel.driver.setRegisterData = watched<&DriverApi::setRegisterData, CALL_ADDS>;
        panel.clock = [] { return now; };
        panel.link.baud = BAUD;
        panel.link.open = [this](QString*) { return std::make_unique<Line>(controller); };
        panel.link.lost = [](const QIODevice&) { return false; };
        panel.link.tap = [this](const WireFrame& frame) { reply = frame.bytes; };
        panel.tags = readTagFile(QStringLiteral(TAGS)).tags;
        for (Tag& tag : panel.tags) // the watch tells writes apart by numbers
            tag.name.remove(0, 1);
        blame(startPanel(&panel));
        loaded.registCallBackFuncIntf(both<onFinish, recordFinish>, both<onFail, recordFail>);
    }

    /// Asks for a write to each tag that can be written.
    void askForWrites()
    {
        for (const Tag& tag : panel.tags) {
            QStringList values;
            for (int i = valueBits(tag, QByteArray()).size(); i > 0; --i)
                values << QString::number(chance() >> (32 - widthOf(tag.type)));
            const QString text = tag.name + QLatin1Char('=') + values.join(QLatin1Char(';'));
            if (REGISTER_TYPES[tag.type].writable)
                blame(addWrite(text, false, panel.tags, &panel.writes));
        }
    }

    /// The controller changes what is its own, and the panel is asked for more.
    void disturb(qint64 number)
    {
        if (number % CHANGE_STEP == 0) {
            past = past.mid(0, KEPT - 1);
            past.prepend(controller.stations);
            for (plc::Station& station : controller.stations)
                for (int i = 0; i < CHANGED; ++i) {
                    station.memory.inputBits.setBit(i, chance() % 2 != 0);
                    station.memory.specialWords[i] = static_cast<quint16>(chance());
                }
        }
        if (panel.writes.isEmpty())
            askForWrites();
    }

    void turnOnce()
    {
        const qint64 readBefore = panel.statistics.blocksRead;
        turn(&panel);
        panel.events.clear();
        panel.echo = false; // one echo is a fault, not an adapter
        checkWrites();
        const RW_VAR& block = loaded.state->retVar;
        const auto had = [&](const QMap<int, plc::Station>& stations) {
            return inMemory(stations.value(block.station).memory, block) == stored(block);
        };
        if (panel.statistics.blocksRead > readBefore &&
            (reply.mid(3, reply.size() - 5) != stored(block) ||
             (!had(controller.stations) && std::none_of(past.begin(), past.end(), had))))
            blame(QStringLiteral("what was read was not there, or is not stored"));
    }

    /// What the store has there, as the controller sends it.
    QByteArray stored(const RW_VAR& block) const
    {
        const ImageRange range = rangeOfBlock(block);
        QByteArray bytes =
            store[range.station][range.area].mid(range.first, range.end - range.first);
        for (int i = 0; i < bytes.size() && range.end - range.first > block.length; i += 2)
            std::swap(bytes.data()[i], bytes.data()[i + 1]);
        return bytes;
    }

    /// Each write ends once, the driver has those that have not, and what is done is read back.
    void checkWrites()
    {
        QSet<int> waiting, listed;
        qint64 over = ended;
        bool open = false;
        for (const Write& write : panel.writes) {
            const bool isFailed = write.state == WriteState::Failed;
            over += isFailed || write.state == WriteState::Done;
            open = open || (!isFailed && write.readBack == ReadBack::Open);
            if (write.state == WriteState::Queued)
                waiting << write.hostKey;
            if (write.readBack == ReadBack::Different)
                blame(writeText(write, panel.tags) + QStringLiteral(" is done, but not there"));
        }
        for (const RW_VAR& var : loaded.state->writeList)
            listed << var.hostKey;
        if (waiting != listed ||
            over != panel.statistics.finishDone + panel.statistics.finishFailed)
            blame(QStringLiteral("a write is lost, or has ended twice"));
        if (open)
            return;
        ended = over;
        last = std::exchange(panel.writes, {});
    }

    /// Without faults the last writes end well, and the driver has what the controller has.
    void settle()
    {
        controller.faults.faults.clear();
        qint64 failed = 0;
        for (const bool again : {true, false}) {
            failed = panel.statistics.finishFailed;
            for (const Micros end = now + QUIET; now < end && fault.isEmpty();)
                turnOnce();
            if (again)
                askForWrites();
        }
        bool settled = panel.writes.isEmpty() && failed == panel.statistics.finishFailed;
        for (const RW_VAR& block : loaded.state->readList)
            settled = settled &&
                      stored(block) == inMemory(controller.stations[block.station].memory, block);
        for (const Write& write : last)
            settled = settled && panel.states[write.tag].value == write.shown;
        if (!settled)
            blame(QStringLiteral("panel and controller do not come to agree"));
    }

    plc::Controller controller;
    Store& store;
    Panel panel;
    std::mt19937 chance;
    QByteArray reply;                    ///< the latest
    QList<QMap<int, plc::Station>> past; ///< the latest first
    qint64 ended = 0;                    ///< writes before those that the panel has
    QVector<Write> last;                 ///< the latest of them
};

void soak(const plc::Framing& framing)
{
    QString error;
    loaded = loadDriver({QStringLiteral(KP410_LIBRARY)}, &error);
    QVERIFY2(loaded.handle, qPrintable(error));
    fault.clear();
    Soak soak(framing);
    QSet<int> lengths = {0, 2, 3}; // data bytes of an exception, of a word, of an acknowledgement
    for (const RW_VAR& block : loaded.state->readList)
        lengths << block.length * REGISTER_TYPES[block.regType].bytesPerElement;
    QCOMPARE(lengths.size(), 3 + loaded.state->readList.size());
    soak.settle();
    soak.controller.faults = plannedFaults();
    const QByteArray wanted = qgetenv("KP410_SOAK_TURNS");
    const qint64 turns = (wanted.isEmpty() ? KP410_SOAK_TURNS : wanted.toLongLong()) / 2;
    QVector<qint64> resident; // after a tenth, a half, and all turns
    qint64 number = 0;
    for (const qint64 end : {turns / 10, turns / 2, turns}) {
        while (number < end && fault.isEmpty()) {
            soak.disturb(++number);
            soak.turnOnce();
        }
        resident << residentKib();
    }
    soak.settle();
    QVERIFY2(fault.isEmpty(), qPrintable(QStringLiteral("turn %1: %2").arg(number).arg(fault)));
    const WriteLedger& pieces = watch->ledger;
    qInfo() << "KiB:" << resident << "writes done:" << soak.panel.statistics.finishDone
            << "failed:" << soak.panel.statistics.finishFailed << "pieces purged:" << pieces.purged;
    QVERIFY(resident[0] > 0 && resident[2] - resident[0] <= MOST_GROWTH_KIB);
    for (const plc::FaultKindInfo& kind : plc::FAULT_KINDS)
        QVERIFY2(soak.controller.faults.hits.at(kind.kind) > 0, kind.name);
    // None is replaced: the panel has one write of a station in the list.
    QVERIFY(pieces.done > 0 && pieces.failed > 0 && pieces.purged > 0 && pieces.merged == 0);
}
} // namespace

class SoakWithFaults : public QObject
{
    Q_OBJECT
public:
    SoakWithFaults() { qputenv("QTEST_FUNCTION_TIMEOUT", "1000000000"); } // a long one is no hang
private slots:
    void localFraming() { soak(plc::LOCAL_FRAMING); }
    void remoteFraming() { soak(plc::REMOTE_FRAMING); }
};

QTEST_APPLESS_MAIN(SoakWithFaults)
#include "tst_faults.moc"
