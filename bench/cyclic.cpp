#include "cyclic.h"

#include "work.h"

#include <utility>

namespace
{
QList<RW_VAR> entries; // of the cyclic list, in the order of the first round

/// The data of the reply as the store has it.
QByteArray storedForm(const RW_VAR& entry)
{
    constexpr int offset = 3;
    constexpr int checkBytes = 2;
    QByteArray data = cyclicReply.mid(offset, cyclicReply.size() - offset - checkBytes);
    if (entry.regType == AREA_MEMORY) {
        for (int i = 0; i < data.size(); i += WORD_BYTES)
            std::swap(data.data()[i], data.data()[i + 1]);
    }
    return data;
}
} // namespace

VAR_DESC description(int type, int address, int station, int length)
{
    VAR_DESC var{};
    var.regType = static_cast<unsigned char>(type);
    var.station = static_cast<unsigned char>(station);
    var.addressText = QString::number(address);
    var.length = length;
    return var;
}

void prepareCyclic(QList<VAR_DESC> vars, int block, const QByteArray& reply)
{
    settings.maxBlockLength = block;
    driver.reCreatReadVarList(&vars);
    for (VAR_DESC& var : vars) {
        QByteArray value;
        driver.getRegisterData(0, var.regType, &var.addressText, var.station, &value, var.length);
    }
    entries = driver.state->readList;
    cyclicReply = reply;
    goodReplies = 0;
}

void setUpWords(int words)
{
    constexpr int count = 10;
    prepareCyclic({description(MEMORY_WORD, 0, STATION, count * words)}, words,
                  readReply(FC_READ_MEMORY_WORDS, pattern(words * WORD_BYTES)));
}

void checkTurns(int /*size*/, qint64 operations)
{
    expect("good replies", goodReplies, operations);
    const QList<RW_VAR>& list = driver.state->readList;
    expect("list entries", list.size(), entries.size());
    const int count = entries.size();
    const RW_VAR& next = entries.at(static_cast<int>(operations % count));
    expect("address of the next entry", list.at(0).address, next.address);
    expect("station of the next entry", list.at(0).station, next.station);
    const RW_VAR& served = entries.at(static_cast<int>((operations - 1) % count));
    const QByteArray data = storedForm(served);
    const int start = served.address * (data.size() / served.length);
    const QByteArray stored =
        (*driver.store)[served.station][served.regType].mid(start, data.size());
    expect("the reply is in the store", stored == data ? 1 : 0, 1);
}
