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

constexpr std::array<unsigned short, 256> makeCrcTable()
{
    std::array<unsigned short, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte)
        table[byte] = static_cast<unsigned short>(crcOfByte(byte));
    return table;
}

constexpr std::array<unsigned short, 256> CRC_TABLE = makeCrcTable();

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
    for (int i = 0; bytes && i < length; ++i)
        crc = (crc >> 8) ^ CRC_TABLE[(crc ^ bytes[i]) & LOW_BYTE];
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
