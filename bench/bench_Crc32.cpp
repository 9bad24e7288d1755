// SPDX-License-Identifier: MIT
#include "engine/Crc32.h"

#include <QCoreApplication>
#include <QTemporaryFile>
#include <QTextStream>

#include <algorithm>
#include <array>
#include <ctime>
#include <functional>
#include <vector>

namespace
{
constexpr int bytesPerMegabyte = 1024 * 1024;
constexpr int repetitions = 5;
constexpr quint32 startValue = 0xFFFFFFFF;

using Table = std::array<quint32, 256>;

Table makeTable()
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

// One look-up a byte, each waiting for the one before it.
quint32 byteStepCrc(const Table &table, const QByteArray &data)
{
    quint32 crc = startValue;
    for (const char byte : data) {
        crc = (crc >> 8) ^ table[(crc ^ static_cast<quint8>(byte)) & 0xFF];
    }
    return crc ^ startValue;
}

QByteArray someData(int bytes)
{
    QByteArray data(bytes, Qt::Uninitialized);
    quint32 state = 1;
    for (char &byte : data) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return data;
}

// The median of several repetitions, in CPU time: other processes do not count.
double bytesPerSecond(qint64 bytes, const std::function<void()> &work)
{
    std::vector<double> rates;
    for (int i = 0; i < repetitions; ++i) {
        const std::clock_t start = std::clock();
        work();
        const auto ticks = static_cast<double>(std::max<std::clock_t>(1, std::clock() - start));
        rates.push_back(static_cast<double>(bytes) * CLOCKS_PER_SEC / ticks);
    }
    std::sort(rates.begin(), rates.end());
    return rates[rates.size() / 2];
}
} // namespace

// bench_Crc32 [MEGABYTES] prints the bytes a second of the plain loop over memory and of the class
// over a file; 1 when the two do not come to the same checksum.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int megabytes = arguments.size() > 1 ? arguments.at(1).toInt() : 64;
    QTemporaryFile file;
    if (megabytes < 1 || !file.open()) {
        QTextStream(stderr) << "bench_Crc32 [MEGABYTES]\n";
        return 2;
    }
    const QByteArray data = someData(megabytes * bytesPerMegabyte);
    file.write(data);
    file.flush();
    const Table table = makeTable();
    quint32 ofMemory = 0;
    quint32 ofFile = 0;
    const double memoryRate =
        bytesPerSecond(data.size(), [&] { ofMemory = byteStepCrc(table, data); });
    const double fileRate =
        bytesPerSecond(data.size(), [&] { ofFile = Crc32().calculateFromFile(file.fileName()); });
    QTextStream(stdout) << "memory-bytes-per-second " << qint64(memoryRate)
                        << "\nfile-bytes-per-second " << qint64(fileRate) << '\n';
    return ofMemory == ofFile ? 0 : 1;
}
