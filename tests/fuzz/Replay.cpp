// SPDX-License-Identifier: MIT
#include "tests/fuzz/Fuzz.h"

#include <QDir>
#include <QFile>

#include <ctime>

namespace
{
// Of the processor, so that a busy machine does not matter.
constexpr double maxSecondsEach = 10;

bool replay(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "Cannot open %s\n", qPrintable(path));
        return false;
    }
    const QByteArray content = file.readAll();
    // Named beforehand: whatever goes wrong ends the process.
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout);
    const std::clock_t start = std::clock();
    LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char *>(content.constData()),
                           static_cast<std::size_t>(content.size()));
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    if (seconds > maxSecondsEach) {
        std::fprintf(stderr, "%s took %.1f s\n", qPrintable(path), seconds);
    }
    return seconds <= maxSecondsEach;
}
} // namespace

// Gives the target each file of the folder; fails when there is none.
int main(int argc, char **argv)
{
    const QDir folder(argc > 1 ? QFile::decodeName(argv[1]) : QString());
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString &name : names) {
        if (!replay(folder.filePath(name))) {
            return 1;
        }
    }
    if (names.isEmpty()) {
        std::fprintf(stderr, "No input in %s\n", qPrintable(folder.path()));
        return 1;
    }
    return 0;
}
