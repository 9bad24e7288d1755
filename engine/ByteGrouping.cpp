// SPDX-License-Identifier: MIT
#include "engine/ByteGrouping.h"

#include "engine/BucketPairs.h"
#include "engine/DuplicateGroup.h"
#include "engine/FileComparison.h"
#include "engine/FileKey.h"
#include "engine/ReaderCount.h"
#include "engine/ScanProgress.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

namespace
{
constexpr int fewHeads = 16;

bool areOfOneSize(const std::vector<ContentClasses::File> &files)
{
    return std::all_of(files.begin(), files.end(), [&](const ContentClasses::File &file) {
        return file.size == files.front().size;
    });
}

// No pair of them has anything to tell, as in most buckets.
bool areAllDifferent(const std::vector<ContentClasses::File> &files)
{
    int index = 0;
    return areOfOneSize(files)
        && std::all_of(files.begin(), files.end(), [&index](const ContentClasses::File &file) {
               return file.isReadable && file.first == index++;
           });
}
} // namespace

struct ByteGrouping::Bucket {
    int index;
    QString key;
    QVector<int> files; // as indexes into allFiles
    QStringList paths;
};

// How far the files of a bucket have been put into its group.
struct ByteGrouping::Placement {
    const Bucket *bucket;
    const std::vector<ContentClasses::File> *files;
    const BucketPairs *pairs;
    DuplicateGroup group;
    std::vector<bool> isClassPlaced; // by the first file of the class

    const ContentClasses::File &file(int index) const
    {
        return (*files)[static_cast<std::size_t>(index)];
    }
};

ByteGrouping::ByteGrouping(Grouping::Files scannedFiles,
                           const ScanProfile &scanProfile,
                           const Grouping::Events &groupingEvents,
                           Grouping::Result *groupingResult)
    : files(std::move(scannedFiles))
    , profile(scanProfile)
    , events(groupingEvents)
    , result(groupingResult)
{
}

void ByteGrouping::run()
{
    if (!sortIntoBuckets()) {
        return;
    }
    expectWork();
    readHeadsAhead();
    int index = 0;
    for (auto it = buckets.cbegin(); it != buckets.cend(); ++it, ++index) {
        if (it->first == it->last) {
            continue;
        }
        Bucket bucket = {index, it.key(), {}, {}};
        for (int file = it->first; file >= 0; file = next.at(file)) {
            bucket.files.append(file);
            bucket.paths.append(files.paths.at(file));
        }
        if (!confirm(bucket)) {
            return;
        }
        countCompared(bucket);
    }
}

bool ByteGrouping::sortIntoBuckets()
{
    next.fill(-1, files.paths.size());
    for (int file = 0; file < files.paths.size(); ++file) {
        const QString &path = files.paths.at(file);
        events.fileAnalyzed(path);
        const QString key = FileKey::ofAttributes(path, files.sizes.at(file), profile);
        const auto chain = buckets.find(key);
        if (chain == buckets.end()) {
            buckets.insert(key, {file, file});
        } else {
            next[chain->last] = file;
            chain->last = file;
        }
        if (!events.goOn()) {
            return false;
        }
    }
    return true;
}

// The files of the buckets in which there is something to compare.
void ByteGrouping::expectWork() const
{
    ScanProgress *const progress = ScanProgress::instance();
    if (!progress->isWatched) {
        return;
    }
    for (const Grouping::Chain &chain : buckets) {
        for (int file = chain.first; file >= 0 && chain.first != chain.last; file = next.at(file)) {
            ++progress->filesToCompare;
            progress->bytesToCompare += files.sizes.at(file);
        }
    }
}

void ByteGrouping::countCompared(const Bucket &bucket) const
{
    ScanProgress *const progress = ScanProgress::instance();
    if (!progress->isWatched) {
        return;
    }
    for (const int file : bucket.files) {
        ++progress->filesCompared;
        progress->bytesCompared += files.sizes.at(file);
    }
}

void ByteGrouping::tellSkipped(const Bucket &bucket, const ContentClasses &classes) const
{
    for (int i = 0; i < bucket.paths.size() && events.skipped; ++i) {
        const ContentClasses::File &file = classes.files()[static_cast<std::size_t>(i)];
        if (!file.isReadable) {
            events.skipped(bucket.paths.at(i), file.error);
        }
    }
}

// In the order of the buckets, which is that in which they are confirmed.
void ByteGrouping::readHeadsAhead()
{
    struct Item {
        int file;
        bool staysOpen;
    };
    QVector<Item> items;
    for (const Grouping::Chain &chain : std::as_const(buckets)) {
        const auto begin = items.size();
        for (int file = chain.first; file >= 0 && chain.first != chain.last; file = next.at(file)) {
            items.append({file, true});
        }
        if (items.size() - begin > ContentClasses::maxOpenFiles) {
            for (auto i = begin; i < items.size(); ++i) {
                items[i].staysOpen = false;
            }
        }
    }
    const auto read = [paths = files.paths, items](int number, const GoOn &) {
        const Item &item = items.at(number);
        return FileHead::read(paths.at(item.file), FileHead::maxBytes, item.staysOpen);
    };
    // Files of small buckets stay open behind their heads.
    const ReadAhead<FileHead>::Bounds bounds = {ReaderCount::headsInHand,
                                                ReaderCount::ofHeads(),
                                                fewHeads};
    heads = std::make_unique<ReadAhead<FileHead>>(items.size(), bounds, read);
}

bool ByteGrouping::confirm(const Bucket &bucket)
{
    ContentClasses classes(bucket.paths, events.goOn);
    if (!classes.sort(
            [this](FileHead *head) { return events.goOn() && heads->take(head, events.goOn); })) {
        return false;
    }
    tellSkipped(bucket, classes);
    if (!keepExactGroups(bucket, classes)) {
        return false;
    }
    if (areAllDifferent(classes.files())) {
        return events.goOn();
    }
    BucketPairs pairs(classes.files());
    if (!addLonger(bucket, classes, &pairs)) {
        return false;
    }
    Placement placement = {&bucket,
                           &classes.files(),
                           &pairs,
                           DuplicateGroup(bucket.paths, files.mayRepeat, events.goOn),
                           std::vector<bool>(classes.files().size(), false)};
    if (!placement.group.knowsAllFiles()) {
        return false;
    }
    for (int first = 0; first < bucket.paths.size() - 1; ++first) {
        if (!placeRow(&placement, first)) {
            return false;
        }
    }
    return true;
}

bool ByteGrouping::keepExactGroups(const Bucket &bucket, const ContentClasses &classes)
{
    const auto scanned = [&](int index) -> ScannedFile {
        const ContentClasses::File &file = classes.files()[static_cast<std::size_t>(index)];
        return {bucket.paths.at(index), file.size, file.modified, file.changed};
    };
    QHash<int, QVector<ScannedFile>> groups;
    for (int i = 0; i < bucket.paths.size(); ++i) {
        if (!events.goOn()) {
            return false;
        }
        const int first = classes.files()[static_cast<std::size_t>(i)].first;
        if (first == i) {
            continue;
        }
        QVector<ScannedFile> &group = groups[first];
        if (group.isEmpty()) {
            group.append(scanned(first));
        }
        group.append(scanned(i));
    }
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        if (!events.goOn()
            || !result->exactGroups.add(bucket.files.at(group.key()),
                                        *group,
                                        files.mayRepeat,
                                        events.goOn)) {
            return false;
        }
    }
    return true;
}

// Keys of other sizes coincide where names begin with digits. The comparison looks for the end of the
// first file alone, in steps of 256 bytes, so a file of whole steps equals a longer one behind it that
// begins with it. A file that has left the bucket since it got its key equals none of another size.
bool ByteGrouping::addLonger(const Bucket &bucket,
                             const ContentClasses &classes,
                             BucketPairs *pairs)
{
    if (areOfOneSize(classes.files())) {
        return true;
    }
    std::map<qint64, QVector<int>> bySize;
    for (int i = 0; i < bucket.paths.size(); ++i) {
        const ContentClasses::File &file = classes.files()[static_cast<std::size_t>(i)];
        if (file.isReadable) {
            bySize[file.size].append(i);
        }
    }
    if (bySize.size() < 2) {
        return true;
    }
    for (auto size = bySize.begin(); std::next(size) != bySize.end(); ++size) {
        if (size->first % FileComparison::stepBytes != 0) {
            continue;
        }
        QVector<int> indexes;
        QStringList paths;
        for (auto other = size; other != bySize.end(); ++other) {
            for (const int file : std::as_const(other->second)) {
                if (FileKey::ofAttributes(bucket.paths.at(file), profile) == bucket.key) {
                    indexes.append(file);
                    paths.append(bucket.paths.at(file));
                }
            }
        }
        ContentClasses beginnings(paths, events.goOn, size->first);
        if (!beginnings.sort()) {
            return false;
        }
        pairs->addLonger(beginnings.files(), indexes, size->first);
    }
    return true;
}

bool ByteGrouping::placeRow(Placement *placement, int first)
{
    if (!events.goOn()) {
        return false;
    }
    const ContentClasses::File &file = placement->file(first);
    const auto contentClass = static_cast<std::size_t>(file.first);
    // Once the files of a content stand in the group, further pairs of them only add to the sum.
    const bool isWhole =
        !placement->isClassPlaced[contentClass] || placement->pairs->hasLonger(first);
    const BucketPairs::Row row = placement->pairs->row(first, isWhole);
    result->addBytes(row.otherEqualPairs * file.size);
    for (const BucketPairs::Pair &pair : row.pairs) {
        if (!events.goOn()) {
            return false;
        }
        if (pair.unreadable >= 0) {
            FileComparison::complain(placement->bucket->paths.at(pair.unreadable),
                                     placement->file(pair.unreadable).error);
        } else {
            placePair(placement, first, pair.second);
        }
    }
    placement->isClassPlaced[contentClass] = !placement->group.isEmpty();
    return true;
}

// All files of a bucket end in one group, whatever their content, because its key names the group:
// the first pair opens it, each later one adds its second file alone.
void ByteGrouping::placePair(Placement *placement, int first, int second)
{
    const Bucket &bucket = *placement->bucket;
    result->addBytes(placement->file(second).size);
    const bool isOpening = placement->group.isEmpty();
    if (isOpening) {
        ++result->groupedFiles;
        result->addBytes(placement->file(first).size);
    }
    if (!placement->group.add(first, second)) {
        return;
    }
    ++result->groupedFiles;
    QStringList &paths = result->groups[bucket.key];
    if (isOpening) {
        paths.append(bucket.paths.at(first));
    }
    paths.append(bucket.paths.at(second));
    events.counted(bucket.index);
}
