/// Any sequence of calls with any arguments, and replies of all kinds.
#include "model/session.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString wrong = runAll(operationsOf(data, size));
    if (!wrong.isEmpty())
        qFatal("%s", qPrintable(wrong));
    return 0;
}
