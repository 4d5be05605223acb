#include "driver.h"
#include "work.h"

#include <array>

namespace
{
constexpr unsigned POLYNOMIAL = 0xA001;
constexpr unsigned INITIAL = 0xFFFF;

constexpr unsigned shifted(unsigned crc)
{
    for (int bit = 0; bit < 8; ++bit)
        crc = (crc & 1U) != 0 ? (crc >> 1) ^ POLYNOMIAL : crc >> 1;
    return crc;
}

constexpr std::array<unsigned short, 256> makeTable()
{
    std::array<unsigned short, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte)
        table[byte] = static_cast<unsigned short>(shifted(byte));
    return table;
}

constexpr std::array<unsigned short, 256> TABLE = makeTable();

QByteArray bytes;
unsigned sum = 0; // of all results

const unsigned char* data()
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

/// As the driver's, a call that the compiler cannot look into.
__attribute__((noinline)) unsigned short byTable(const unsigned char* in, unsigned short length)
{
    unsigned crc = INITIAL;
    for (int i = 0; i < length; ++i)
        crc = (crc >> 8) ^ TABLE[(crc ^ in[i]) & 0xFF];
    return static_cast<unsigned short>(crc);
}

void setUp(int length)
{
    bytes = pattern(length);
    sum = 0;
}

void ofDriver()
{
    sum += driver.calCRC(data(), static_cast<unsigned short>(bytes.size()));
}

void ofTable()
{
    sum += byTable(data(), static_cast<unsigned short>(bytes.size()));
}

void check(int length, qint64 operations)
{
    unsigned crc = INITIAL;
    for (int i = 0; i < length; ++i)
        crc = shifted(crc ^ data()[i]);
    expect("sum of the results", sum, static_cast<unsigned>(crc * operations));
}
} // namespace

const Work CRC = {setUp, ofDriver, nullptr, check};
const Work CRC_TABLE = {setUp, ofTable, nullptr, check};
