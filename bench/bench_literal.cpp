// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QSet>
#include <QTextStream>

/*
 * The plainest way to find duplicates byte by byte, as a yardstick: files of equal size form a
 * bucket, and for every pair of a bucket both files are opened and read in steps of 256 bytes, with
 * one pass of the event loop before each pair. Nothing is remembered from one pair to the next.
 */
namespace
{
constexpr qint64 stepBytes = 256;

bool haveSameContent(const QString &a, const QString &b)
{
    QFile fileA(a);
    QFile fileB(b);
    if (!fileA.open(QIODevice::ReadOnly) || !fileB.open(QIODevice::ReadOnly)) {
        return false;
    }
    while (!fileA.atEnd()) {
        if (fileA.read(stepBytes) != fileB.read(stepBytes)) {
            return false;
        }
    }
    return true;
}

QList<QStringList> bucketsOf(const QString &folder)
{
    QHash<qint64, QStringList> buckets;
    QDirIterator it(folder, QDir::Files | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        buckets[it.fileInfo().size()].append(path);
    }
    return buckets.values();
}

// All confirmed files of a bucket stand in one group, whatever their content.
QStringList groupOf(const QStringList &bucket, qint64 *pairs)
{
    QStringList group;
    QSet<QString> placed; // kinder to the plain way than a search in the list for each pair
    for (int j = 0; j < bucket.size() - 1; ++j) {
        for (int k = j + 1; k < bucket.size(); ++k) {
            QCoreApplication::processEvents();
            ++*pairs;
            if (!haveSameContent(bucket.at(j), bucket.at(k))) {
                continue;
            }
            if (group.isEmpty()) {
                group.append(bucket.at(j));
                placed.insert(bucket.at(j));
            }
            if (!placed.contains(bucket.at(k))) {
                group.append(bucket.at(k));
                placed.insert(bucket.at(k));
            }
        }
    }
    return group;
}
} // namespace

// bench_literal FOLDER prints the seconds that the pairs took, their number, and the files grouped.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        QTextStream(stderr) << "bench_literal FOLDER\n";
        return 2;
    }
    const QList<QStringList> buckets = bucketsOf(arguments.at(1));
    QElapsedTimer timer;
    timer.start();
    qint64 pairs = 0;
    qint64 grouped = 0;
    for (const QStringList &bucket : buckets) {
        grouped += groupOf(bucket, &pairs).size();
    }
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    QTextStream(stdout) << "seconds " << seconds << "\npairs " << pairs << "\ngrouped " << grouped
                        << '\n';
    return 0;
}
