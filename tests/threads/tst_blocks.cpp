#include "support/driver.h"
#include "threads/crew.h"
#include "threads/wire.h"

#include <QtTest>

#include <cstring>

namespace
{
constexpr int WORDS = 125;
constexpr int CALLS = 5000;       ///< of each reader
constexpr int READS_MOST = 1000;  ///< in a call that waits for the block to change
constexpr int LEAST_CHANGES = 20; ///< with fewer, the threads have hardly met
std::atomic<int> torn{0};
std::atomic<int> changes{0};

bool allWordsEqual(const QByteArray& words)
{
    return std::memcmp(words.constData(), words.constData() + 2,
                       static_cast<std::size_t>(words.size() - 2)) == 0;
}

void readUntilChanged(int /*n*/)
{
    thread_local QByteArray last;
    bool changed = false;
    for (int i = 0; i < READS_MOST && !changed; ++i) {
        QByteArray block;
        const int result = read(MEMORY_WORD, "0", WORDS, block);
        torn += result != 1 || block.size() != 2 * WORDS || !allWordsEqual(block);
        changed = block != last;
        last = block;
    }
    changes += changed;
}

void writeBlock(int n)
{
    QByteArray block(2 * WORDS, static_cast<char>(n));
    write(MEMORY_WORD, "0", block, WORDS);
}
} // namespace

/// A host read shows the block of one reply or of one write, never a part of each.
class Blocks : public QObject
{
    Q_OBJECT

private slots:
    void areReadWhole()
    {
        resetDriver();
        settings.writeMode = WRITE_STORE_ONLY;
        settings.maxBlockLength = WORDS;
        RW_VAR var = variable(AREA_MEMORY, 0, WORDS);
        AddListReadVar(&var);
        Crew readers;
        readers.start(readUntilChanged, times(CALLS));
        readers.start(readUntilChanged, times(CALLS));
        Crew writer;
        writer.startBeside(readers, writeBlock, std::chrono::microseconds(0));
        for (int turns = 0; readers.isAtWork(); ++turns)
            turn(turns, 1);
        readers.join();
        qInfo("%d changes seen", changes.load());
        QCOMPARE(torn.load(), 0);
        QVERIFY(changes > LEAST_CHANGES);
    }
};

QTEST_APPLESS_MAIN(Blocks)
#include "tst_blocks.moc"
