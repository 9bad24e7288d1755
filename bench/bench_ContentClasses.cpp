// SPDX-License-Identifier: MIT
#include "engine/ContentClasses.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <ctime>
#include <optional>

namespace
{
// The number behind a name, of what the system tells of this process; nothing where it does not.
std::optional<qint64> ownFigure(const QString &fileName, const QByteArray &name)
{
    QFile file(QStringLiteral("/proc/self/") + fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() > 1 && words.first() == name + ':') {
            return words.at(1).toLongLong();
        }
    }
    return std::nullopt;
}

struct ReadCount {
    std::optional<qint64> bytes = ownFigure(QStringLiteral("io"), "rchar");
    std::optional<qint64> calls = ownFigure(QStringLiteral("io"), "syscr");
};

// What was read between the second and the third look; a look is counted too.
qint64 between(std::optional<qint64> first,
               std::optional<qint64> second,
               std::optional<qint64> third)
{
    return *third - *second - (*second - *first);
}

QStringList filesIn(const QString &folder)
{
    QStringList paths;
    QDirIterator it(folder, QDir::Files | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        paths.append(it.next());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

void print(QTextStream &out, const ContentClasses &sorted)
{
    qint64 bytes = 0;
    int classes = 0;
    int index = 0;
    for (const ContentClasses::File &file : sorted.files()) {
        bytes += file.size;
        classes += file.first == index++ ? 1 : 0;
    }
    out << "files " << index << "\nclasses " << classes << "\nbytes " << bytes << '\n';
}
} // namespace

// bench_ContentClasses FOLDER sorts the files of a folder into their classes of content, and prints
// the seconds that took, the number of files, of classes and of bytes, and what was read of them.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        QTextStream(stderr) << "bench_ContentClasses FOLDER\n";
        return 2;
    }
    ContentClasses classes(filesIn(arguments.at(1)), [] { return true; });
    const ReadCount first;
    const ReadCount before;
    const std::clock_t startOfCpu = std::clock();
    QElapsedTimer timer;
    timer.start();
    if (!classes.sort()) {
        return 1;
    }
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    const double cpuSeconds = static_cast<double>(std::clock() - startOfCpu) / CLOCKS_PER_SEC;
    const ReadCount after;
    QTextStream out(stdout);
    out << "seconds " << seconds << "\ncpu-seconds " << cpuSeconds << '\n';
    print(out, classes);
    if (after.bytes && after.calls) {
        out << "bytes-read " << between(first.bytes, before.bytes, after.bytes) << "\nread-calls "
            << between(first.calls, before.calls, after.calls) << '\n';
    }
    const std::optional<qint64> peak = ownFigure(QStringLiteral("status"), "VmHWM");
    if (peak) {
        out << "peak-bytes " << *peak * 1024 << '\n';
    }
    return 0;
}
