#include "callbacks.h"

#include <utility>

namespace
{

// The callbacks carry no pointer of the runtime's, so their records have one place in the program.
QVector<CallbackRecord>& pending()
{
    static QVector<CallbackRecord> records;
    return records;
}

} // namespace

void recordFinish(int, int hostKey, int hostSubKey, int state)
{
    pending() << CallbackRecord{true, hostKey, hostSubKey, state};
}

void recordFail(QList<RW_VAR>*, int hostKey, int flag)
{
    pending() << CallbackRecord{false, hostKey, 0, flag};
}

QVector<CallbackRecord> takeCallbacks()
{
    return std::exchange(pending(), {});
}
