// SPDX-License-Identifier: MIT
#include "engine/ChecksumGrouping.h"

#include "engine/ReadAhead.h"
#include "engine/RegularFile.h"
#include "engine/ScanProgress.h"

#include <QHash>

#include <algorithm>
#include <numeric>
#include <utility>

namespace
{
// Long files are given out one by one, so that no thread has several of them while another has none.
constexpr qint64 meanBytesOfLongFiles = qint64(256) * 1024;
constexpr ReadAhead<FileKey::Checksum>::Bounds boundsOfLongFiles = {1, 32, 1};
constexpr ReadAhead<FileKey::Checksum>::Bounds boundsOfShortFiles = {8, 16, 1};

// Another type in each generation of the toolkit.
using HashValue = decltype(qHash(QString()));
} // namespace

// What is kept of a file that was read for its checksum.
struct ChecksumGrouping::ReadFile {
    QString key; // null if it was not read to its end
    qint64 size;
    qint64 modified;
    qint64 changed;
    quint64 contentHash;

    bool operator==(const ReadFile &other) const
    {
        return size == other.size && contentHash == other.contentHash && key == other.key;
    }
    friend HashValue qHash(const ReadFile &file, HashValue seed)
    {
        return qHash(file.key, seed) ^ qHash(file.size ^ static_cast<qint64>(file.contentHash));
    }
};

ChecksumGrouping::ChecksumGrouping(Grouping::Files scannedFiles,
                                   const ScanProfile &scanProfile,
                                   const Grouping::Events &groupingEvents,
                                   Grouping::Result *groupingResult)
    : files(std::move(scannedFiles))
    , profile(scanProfile)
    , events(groupingEvents)
    , result(groupingResult)
{
}

void ChecksumGrouping::run()
{
    const int count = static_cast<int>(files.paths.size());
    const qint64 bytes = std::accumulate(files.sizes.cbegin(), files.sizes.cend(), qint64(0));
    ReadAhead<FileKey::Checksum> checksums(
        count,
        bytes > count * meanBytesOfLongFiles ? boundsOfLongFiles : boundsOfShortFiles,
        [paths = files.paths, options = profile](int file, const GoOn &goOn) {
            return FileKey::ofContent(paths.at(file), options, goOn);
        });
    ScanProgress *const progress = ScanProgress::instance();
    if (progress->isWatched) {
        progress->filesToCompare = count;
        progress->bytesToCompare = bytes;
    }
    QVector<ReadFile> readFiles;
    readFiles.reserve(count);
    for (const QString &path : std::as_const(files.paths)) {
        if (!events.goOn()) {
            break;
        }
        events.fileAnalyzed(path);
        FileKey::Checksum checksum;
        if (!checksums.take(&checksum, events.whileReading)) {
            break;
        }
        ++progress->filesCompared;
        progress->bytesCompared += std::max<qint64>(0, checksum.size);
        if (!checksum.isWhole && events.skipped) {
            events.skipped(path,
                           checksum.error.isEmpty() ? QStringLiteral("changed while it was read")
                                                    : checksum.error);
        }
        readFiles.append({checksum.isWhole ? checksum.key : QString(),
                          checksum.size,
                          checksum.modified,
                          checksum.changed,
                          checksum.contentHash});
        if (!checksum.key.isEmpty()) {
            store(path, checksum);
            events.counted(static_cast<int>(readFiles.size()));
        }
    }
    keepExactGroups(readFiles);
}

void ChecksumGrouping::store(const QString &path, const FileKey::Checksum &checksum)
{
    QStringList &group = result->groups[checksum.key];
    if (!group.isEmpty()) {
        // The first file of a group is counted when its first twin arrives.
        if (group.size() == 1) {
            ++result->groupedFiles;
            result->addBytes(RegularFile::sizeOf(group.first()));
        }
        ++result->groupedFiles;
        result->addBytes(checksum.size < 0 ? RegularFile::sizeOf(path) : checksum.size);
    }
    group.append(path);
}

// A checksum may coincide by chance or by intent, so its files must also agree in their sizes and, but
// for the CRC, in a second hash.
void ChecksumGrouping::keepExactGroups(const QVector<ReadFile> &readFiles)
{
    QHash<ReadFile, Grouping::Chain> chains;
    QVector<int> next(readFiles.size(), -1);
    for (int i = 0; i < readFiles.size(); ++i) {
        const ReadFile &file = readFiles.at(i);
        if (file.key.isNull() || result->groups.value(file.key).size() < 2) {
            continue;
        }
        const auto chain = chains.find(file);
        if (chain == chains.end()) {
            chains.insert(file, {i, i});
        } else {
            next[chain->last] = i;
            chain->last = i;
        }
    }
    for (const Grouping::Chain &chain : std::as_const(chains)) {
        QVector<ScannedFile> group;
        for (int i = chain.first; i >= 0; i = next.at(i)) {
            const ReadFile &file = readFiles.at(i);
            group.append({files.paths.at(i), file.size, file.modified, file.changed});
        }
        // What was read before a stop is complete.
        result->exactGroups.add(chain.first, group, files.mayRepeat, [] { return true; });
    }
}
