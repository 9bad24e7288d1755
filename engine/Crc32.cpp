// SPDX-License-Identifier: MIT
#include "engine/Crc32.h"

#include "engine/RegularFile.h"

#include <QtEndian>

#include <algorithm>
#include <memory>

namespace
{
constexpr quint32 startValue = 0xFFFFFFFF;
constexpr qint64 blockBytes = qint64(64) * 1024;
constexpr std::size_t sliceCount = 8;

using Table = std::array<quint32, 256>;

constexpr Table makeTable()
{
    Table table = {};
    for (quint32 i = 0; i < table.size(); ++i) {
        quint32 c = i;
        for (int bit = 0; bit < 8; ++bit) {
            c = (c & 1) != 0 ? (c >> 1) ^ 0xEDB88320 : c >> 1;
        }
        table[i] = c;
    }
    return table;
}

// Entry i of slice n is the effect of byte i with n zero bytes after it, so that eight bytes take
// eight independent look-ups instead of a chain of eight.
constexpr std::array<Table, sliceCount> makeSlices()
{
    std::array<Table, sliceCount> slices = {};
    slices[0] = makeTable();
    for (std::size_t n = 1; n < sliceCount; ++n) {
        for (std::size_t i = 0; i < slices[n].size(); ++i) {
            const quint32 c = slices[n - 1][i];
            slices[n][i] = (c >> 8) ^ slices[0][c & 0xFF];
        }
    }
    return slices;
}

constexpr std::array<Table, sliceCount> slices = makeSlices();
} // namespace

Crc32::Crc32()
    : crcTable(slices[0])
{
}

// The name is taken by value, as callers have it.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
quint32 Crc32::calculateFromFile(QString fileName) const
{
    RegularFile file;
    bool isWhole = false;
    return file.open(fileName) ? calculate(&file, untilInterrupted(), &isWhole) : 0;
}

quint32 Crc32::calculate(RegularFile *file, const GoOn &goOn, bool *isWhole) const
{
    *isWhole = false;
    const qint64 bufferBytes = std::clamp(file->size(), qint64(1), blockBytes);
    const std::unique_ptr<char[]> buffer(new char[static_cast<std::size_t>(bufferBytes)]);
    quint32 crc = startValue;
    for (qint64 rest = file->size(); rest > 0;) {
        const qint64 bytes = file->read(buffer.get(), std::min(rest, bufferBytes));
        if (bytes <= 0 || !goOn()) {
            return 0;
        }
        crc = advance(crc, buffer.get(), bytes);
        rest -= bytes;
    }
    *isWhole = file->isAtEnd();
    return crc ^ startValue;
}

void Crc32::initInstance(int id)
{
    instances.insert(id, startValue);
}

void Crc32::pushData(int id, char *data, int len)
{
    quint32 &crc = instances[id];
    if (crc != 0) {
        crc = advance(crc, data, len);
    }
}

quint32 Crc32::releaseInstance(int id)
{
    const quint32 crc = instances[id];
    if (crc == 0) {
        return 0;
    }
    instances.remove(id);
    return crc ^ startValue;
}

quint32 Crc32::advance(quint32 crc, const char *data, qint64 bytes) const
{
    for (; bytes >= 8; bytes -= 8, data += 8) {
        const quint32 low = crc ^ qFromLittleEndian<quint32>(data);
        const auto high = qFromLittleEndian<quint32>(data + 4);
        crc = slices[7][low & 0xFF] ^ slices[6][(low >> 8) & 0xFF] ^ slices[5][(low >> 16) & 0xFF]
            ^ slices[4][low >> 24] ^ slices[3][high & 0xFF] ^ slices[2][(high >> 8) & 0xFF]
            ^ slices[1][(high >> 16) & 0xFF] ^ slices[0][high >> 24];
    }
    for (; bytes > 0; --bytes, ++data) {
        crc = (crc >> 8) ^ crcTable[(crc ^ static_cast<quint8>(*data)) & 0xFF];
    }
    return crc;
}
