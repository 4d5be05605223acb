#include "talmor_kp410_port.h"

#include <array>

namespace
{
constexpr unsigned CRC_POLYNOMIAL = 0xA001;
constexpr unsigned CRC_INITIAL = 0xFFFF;
constexpr unsigned LOW_BYTE = 0xFF;

constexpr unsigned crcOfByte(unsigned byte)
{
    for (int bit = 0; bit < 8; ++bit)
        byte = (byte & 1) ? (byte >> 1) ^ CRC_POLYNOMIAL : byte >> 1;
    return byte;
}

constexpr int CRC_STRIDE = 8;
typedef std::array<std::array<unsigned short, 256>, CRC_STRIDE> CrcTables;

/// Row k is what a byte adds to the CRC of the k bytes behind it.
constexpr CrcTables makeCrcTables()
{
    CrcTables tables{};
    for (unsigned byte = 0; byte <= LOW_BYTE; ++byte) {
        unsigned crc = byte;
        for (auto& table : tables) {
            crc = crcOfByte(crc);
            table[byte] = static_cast<unsigned short>(crc);
        }
    }
    return tables;
}

constexpr CrcTables CRC_TABLES = makeCrcTables();

/// What two bytes with `behind` more behind them add to the CRC.
unsigned crcOfTwo(int behind, unsigned first, unsigned second)
{
    const auto* tables = &CRC_TABLES[static_cast<std::size_t>(behind)];
    return static_cast<unsigned>(tables[1][first] ^ tables[0][second]);
}

/// The CRC after eight more bytes. No look-up waits for the one before it, so that they cost a
/// fifth of the time that they take one by one.
unsigned crcAfterEight(unsigned crc, const unsigned char* bytes)
{
    return crcOfTwo(6, bytes[0] ^ (crc & LOW_BYTE), bytes[1] ^ (crc >> 8)) ^
           crcOfTwo(4, bytes[2], bytes[3]) ^ crcOfTwo(2, bytes[4], bytes[5]) ^
           crcOfTwo(0, bytes[6], bytes[7]);
}

unsigned crcAfterFour(unsigned crc, const unsigned char* bytes)
{
    return crcOfTwo(2, bytes[0] ^ (crc & LOW_BYTE), bytes[1] ^ (crc >> 8)) ^
           crcOfTwo(0, bytes[2], bytes[3]);
}

unsigned sumOf(const unsigned char* bytes, unsigned short length)
{
    unsigned sum = 0;
    for (int i = 0; bytes && i < length; ++i)
        sum += bytes[i];
    return sum;
}
} // namespace

unsigned short CalSUM(const unsigned char* bytes, unsigned short length)
{
    return static_cast<unsigned short>(sumOf(bytes, length));
}

unsigned short CalCRC(const unsigned char* bytes, unsigned short length)
{
    unsigned crc = CRC_INITIAL;
    const unsigned char* end = bytes ? bytes + length : bytes;
    for (; end - bytes >= CRC_STRIDE; bytes += CRC_STRIDE)
        crc = crcAfterEight(crc, bytes);
    if (end - bytes >= CRC_STRIDE / 2) { // most requests, and the replies to them, are this short
        crc = crcAfterFour(crc, bytes);
        bytes += CRC_STRIDE / 2;
    }
    for (; bytes != end; ++bytes)
        crc = (crc >> 8) ^ CRC_TABLES[0][(crc ^ *bytes) & LOW_BYTE];
    return static_cast<unsigned short>(crc);
}

int CalLRC(const unsigned char* bytes, unsigned short length)
{
    return static_cast<int>(~sumOf(bytes, length) & LOW_BYTE) + 1;
}

unsigned short CalXOR(const unsigned char* bytes, unsigned short length)
{
    if (!bytes)
        return 0;
    unsigned value = bytes[0];
    for (int i = 1; i < length; ++i)
        value ^= bytes[i];
    return static_cast<unsigned short>(value);
}

int DigitalToASCII(int value)
{
    constexpr int lastDigit = 9;
    constexpr int beforeLetterA = 'A' - 10;
    // Unsigned addition: the largest ints wrap instead of overflowing.
    const int offset = value <= lastDigit ? '0' : beforeLetterA;
    return static_cast<int>(static_cast<unsigned>(value) + static_cast<unsigned>(offset));
}

int ASCIIToDigital(int character)
{
    if (character < '0' || character == '@')
        return 0;
    return character < '@' ? character - '0' : character - ('A' - 10);
}
