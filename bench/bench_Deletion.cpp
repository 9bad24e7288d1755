// SPDX-License-Identifier: MIT
// Measures how long the ticked files of a results page take to the trash, with and without a scan
// that knows what they hold. bench_Deletion [DELETIONS [FOLDER]]: makes its files in a folder of its
// own below FOLDER, and ends with 1 if looking at the files takes the processor more than a tenth longer.
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/FileTime_posix.h"
#include "engine/ScanFindings.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "ui/results/DuplicatedFilesListWidget.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace
{
constexpr int rounds = 3;
constexpr int filesInAFolder = 500;
constexpr double maxRatio = 1.1;

struct Times {
    double seconds = 0;
    double processorSeconds = 0;
};

double processorSeconds()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

ScannedFile scannedFile(const QString &path)
{
    struct stat status = {};
    ::lstat(QFile::encodeName(path).constData(), &status);
    return {path, status.st_size, FileTime::modified(status), FileTime::changed(status)};
}

// Groups of that many files each, spread over folders.
QList<QStringList> makeGroups(const TempTree &tree, int deletions, int filesInAGroup)
{
    QList<QStringList> groups;
    int files = 0;
    for (int ticked = 0; ticked < deletions; ticked += filesInAGroup - 1) {
        QStringList group;
        for (int i = 0; i < filesInAGroup; ++i, ++files) {
            group.append(tree.file(
                QStringLiteral("folder %1/IMG_%2.txt").arg(files / filesInAFolder).arg(files),
                QByteArray::number(ticked)));
        }
        groups.append(group);
    }
    return groups;
}

void find(const QList<QStringList> &groups)
{
    ScanFindings &findings = *ScanFindings::instance();
    findings = {};
    findings.groups = groups;
    for (const QStringList &group : groups) {
        QVector<ScannedFile> exact;
        for (const QString &path : group) {
            exact.append(scannedFile(path));
        }
        findings.exactGroups.append(exact);
    }
}

Times deleteAll(const QString &folder, int deletions, int filesInAGroup, bool isChecked)
{
    Times times;
    // Nothing is removed before the end: some systems are slow to give a removed file's inode away.
    static int number = 0;
    const QString root = QStringLiteral("%1/files %2").arg(folder).arg(++number);
    const TempTree tree(root);
    const QList<QStringList> groups = makeGroups(tree, deletions, filesInAGroup);
    *ScanFindings::instance() = {};
    if (isChecked) {
        find(groups);
    }
    qputenv("XDG_DATA_HOME", QFile::encodeName(root + QStringLiteral(" data")));
    Model hub(nullptr);
    MainWindow window;
    DuplicatedFilesListWidget page(&hub, &window);
    window.resize(1000, 700);
    window.show();
    page.setGeometry(0, 0, 900, 600);
    page.raise();
    page.show();
    hub.emitModelEvent(FindDuplicatedFilesFinishedEvent(groups));
    QApplication::processEvents();
    ModalDriver boxes;
    QElapsedTimer clock;
    double start = 0;
    boxes.expect(
        QStringLiteral("Complete!"),
        [&](QWidget *) {
            times = {double(clock.nsecsElapsed()) / 1e9, processorSeconds() - start};
            return QString();
        },
        [](QWidget *box) { box->close(); });
    clock.start();
    start = processorSeconds();
    page.deleteSelectedFiles();
    int gone = 0;
    for (const QStringList &group : groups) {
        gone += int(std::count_if(group.begin(), group.end(), [](const QString &path) {
            return !QFile::exists(path);
        }));
    }
    if (gone != groups.size() * (filesInAGroup - 1)) {
        qFatal("%d files are gone", gone);
    }
    return times;
}

// The best of some rounds in turn: whatever else runs on the machine only adds.
bool measure(const QString &folder, int deletions, int filesInAGroup)
{
    Times best[2];
    for (int round = 0; round < rounds; ++round) {
        for (const bool isChecked : {false, true}) {
            const Times times = deleteAll(folder, deletions, filesInAGroup, isChecked);
            Times &known = best[isChecked ? 1 : 0];
            known.seconds = round == 0 ? times.seconds : std::min(known.seconds, times.seconds);
            known.processorSeconds = round == 0
                ? times.processorSeconds
                : std::min(known.processorSeconds, times.processorSeconds);
        }
    }
    const double ratio = best[1].processorSeconds / best[0].processorSeconds;
    std::printf("%6d deletions, groups of %6d: %6.2f s (CPU %5.2f s) by the rows alone, "
                "%6.2f s (CPU %5.2f s) with a look at the copies, CPU ratio %.3f%s\n",
                deletions,
                filesInAGroup,
                best[0].seconds,
                best[0].processorSeconds,
                best[1].seconds,
                best[1].processorSeconds,
                ratio,
                ratio <= maxRatio ? "" : "  EXCEEDED");
    return ratio <= maxRatio;
}
} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const int deletions = argc > 1 ? QByteArray(argv[1]).toInt() : 30000;
    const QString place = argc > 2 ? QFile::decodeName(argv[2]) : QDir::tempPath();
    const QTemporaryDir folder(place + QStringLiteral("/twinsift-bench-XXXXXX"));
    if (!folder.isValid() || deletions < 1) {
        std::fprintf(stderr, "usage: bench_Deletion [DELETIONS [FOLDER]]\n");
        return 2;
    }
    const bool pairs = measure(folder.path(), deletions, 2);
    const bool oneGroup = measure(folder.path(), deletions, deletions + 1);
    return pairs && oneGroup ? 0 : 1;
}
