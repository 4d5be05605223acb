/// Any reply, of any said length, to any pending frame: an operation that sets the driver up, one
/// whose record gets the frame, then the replies.
#include "model/session.h"

#include <algorithm>
#include <cstdint>

namespace
{
/// A reply is a byte for how it is made, one for the length that is said, one for its size.
constexpr std::size_t REPLY_HEAD = 3;

void check(const QString& wrong)
{
    if (!wrong.isEmpty())
        qFatal("%s", qPrintable(wrong));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < OPERATION_BYTES + 1)
        return 0;
    Session session;
    const int setup = data[0];
    settings.remoteFraming = setup & 1;
    settings.ownNode = setup & 2 ? 2 : 1; // another node's, for most records
    settings.retryLimit = setup & 4 ? 2 : 0;
    session.settingsChanged();
    const int source = setup / 8 % 3;
    const Operation record = operationsOf(data + 1, OPERATION_BYTES).first();
    check(session.add(session.recordOf(record, source == SOURCE_WRITE), source, ADD_UNCHANGED));
    check(session.turn());
    data += OPERATION_BYTES + 1;
    size -= OPERATION_BYTES + 1;
    while (size >= REPLY_HEAD) {
        const int how = data[0], said = data[1];
        const std::size_t count = std::min<std::size_t>(data[2], size - REPLY_HEAD);
        QByteArray bytes(reinterpret_cast<const char*>(data) + REPLY_HEAD, static_cast<int>(count));
        data += REPLY_HEAD + count;
        size -= REPLY_HEAD + count;
        const int wanted =
            PLC_driver.frameList.isEmpty() ? 0 : PLC_driver.frameList.first().replyLength;
        if (how & 1 && wanted >= 2 && wanted < 4096) // the length that is wanted
            bytes = bytes.leftJustified(wanted - 2, '\x5A', true);
        if (how & 2)
            bytes = withCrc(bytes);
        const int lengths[] = {bytes.size(),        said,   -said,          bytes.size() + said,
                               bytes.size() - said, wanted, INT_MAX - said, INT_MIN + said};
        check(
            session.reply(how & 4 ? nullptr : &bytes, how & 8 ? lengths[how >> 5] : bytes.size()));
        if (how & 16)
            check(session.turn());
    }
    return 0;
}
