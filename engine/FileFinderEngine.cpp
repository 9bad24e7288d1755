// SPDX-License-Identifier: MIT
#include "engine/FileFinderEngine.h"

#include "app/Controller.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/BucketPairs.h"
#include "engine/Configuration.h"
#include "engine/ContentClasses.h"
#include "engine/DuplicateGroup.h"
#include "engine/FileComparison.h"
#include "engine/FileKey.h"
#include "engine/FileMasks.h"
#include "engine/FolderListing.h"
#include "engine/RegularFile.h"
#include "engine/ScanFindings.h"
#include "engine/ScanProgress.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace
{
constexpr qint64 maxNanosecondsBetweenEventPasses = qint64(500) * 1000;
// A file that is read in less time is read whole, whatever has been posted meanwhile.
constexpr qint64 maxMillisecondsOfReading = 50;
constexpr qint64 maxFileBytes = std::numeric_limits<qint64>::max();

bool isLeaving()
{
    return QThread::currentThread()->isInterruptionRequested();
}

bool isExcluded(const QString &fileName, const QStringList &excludeMasks)
{
    if (excludeMasks.isEmpty()) {
        return false;
    }
    const int dot = fileName.lastIndexOf(QLatin1Char('.'));
    const QString suffix = dot < 0 ? QString() : fileName.mid(dot + 1);
    return excludeMasks.contains(QStringLiteral("*.%1").arg(suffix), Qt::CaseInsensitive);
}

bool isWithin(qint64 bytes, const WalkOptions &options)
{
    return options.minBytes <= bytes && bytes <= options.maxBytes;
}

bool hasAcceptedSize(const QString &path, const ScanProfile &profile, const WalkOptions &options)
{
    const bool isAnyBytes = isWithin(0, options) && isWithin(maxFileBytes, options);
    if (!isAnyBytes && !isWithin(RegularFile::sizeOf(path), options)) {
        return false;
    }
    if (!profile.minSizeEnabled && !profile.maxSizeEnabled) {
        return true;
    }
    // 32 bits: a file of 2 TiB or more wraps.
    const auto kilobytes = static_cast<qint32>(RegularFile::sizeOf(path) / 1024);
    return !(profile.minSizeEnabled && profile.minSizeInKbytes > kilobytes)
        && !(profile.maxSizeEnabled && profile.maxSizeInKbytes < kilobytes);
}
void countCompared(const QStringList &files)
{
    ScanProgress *const progress = ScanProgress::instance();
    if (progress->isWatched && files.size() > 1) {
        progress->filesCompared += files.size();
        progress->bytesCompared += files.size() * RegularFile::sizeOf(files.first());
    }
}
} // namespace

struct FileFinderEngine::Walk {
    FileMasks includeMasks;
    QStringList excludeMasks;
    ScanProfile profile;
    WalkOptions options;
};

// A folder that is being walked, with those above it up to where the walk began.
struct FileFinderEngine::Frame {
    const Frame *parent;
    QString prefix; // absolute, ends in a slash
    QVector<FolderListing::Folder> subfolders;
    mutable QString canonical;

    // Also true when it cannot be told, because the system did not resolve one of the paths.
    bool mayContain(const QString &canonicalFolder) const
    {
        for (const Frame *frame = this; frame != nullptr; frame = frame->parent) {
            if (frame->canonical.isEmpty()) {
                frame->canonical = FolderListing::canonicalPath(frame->prefix);
            }
            if (frame->canonical.isEmpty() || frame->canonical == canonicalFolder) {
                return true;
            }
        }
        return canonicalFolder.isEmpty();
    }
};

// The files of one bucket as indexes into allFiles, the first and the last of a linked list: most
// buckets hold one file, and a list object for each would cost more than the file's path.
struct FileFinderEngine::Chain {
    int first;
    int last;
};

struct FileFinderEngine::Bucket {
    int index;
    QString key;
    QVector<int> files; // as indexes into allFiles
    QStringList paths;
};

// How far the files of a bucket have been put into its group.
struct FileFinderEngine::Placement {
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

// What is kept of a file that was read for its checksum.
struct FileFinderEngine::ReadFile {
    QString key; // null if it was not read to its end
    qint64 size;
    qint64 modified;
    quint64 contentHash;

    bool operator==(const ReadFile &other) const
    {
        return size == other.size && contentHash == other.contentHash && key == other.key;
    }
    friend uint qHash(const ReadFile &file, uint seed)
    {
        return qHash(file.key, seed) ^ qHash(file.size ^ static_cast<qint64>(file.contentHash));
    }
};

FileFinderEngine::FileFinderEngine(Model *eventModel, Controller *signalController, QObject *parent)
    : QObject(parent)
    , model(eventModel)
    , controller(signalController)
{
    qRegisterMetaType<QList<QStringList>>("QList<QStringList>");
    if (controller == nullptr) {
        return;
    }
    // clang-format off
    connect(this, SIGNAL(findAllFilesStarted()),
            controller, SLOT(onFindAllFilesStarted()));
    connect(this, SIGNAL(findAllFilesFinished()),
            controller, SLOT(onFindAllFilesFinished()));
    connect(this, SIGNAL(countingFilesInFolder(int,QString)),
            controller, SLOT(onCountingFilesInFolderChanged(int,QString)));
    connect(this, SIGNAL(findDuplicatedFilesStarted()),
            controller, SLOT(onFindDuplicatedFilesStarted()));
    connect(this, SIGNAL(findDuplicatedFilesFinished(QList<QStringList>)),
            controller, SLOT(onFindDuplicatedFilesFinished(QList<QStringList>)));
    connect(this, SIGNAL(countingFindFilesDuplicated(int,int,qint64)),
            controller, SLOT(onCountingFindFilesDuplicated(int,int,qint64)));
    // clang-format on
}

void FileFinderEngine::startFinder()
{
    if (isScanning) {
        stopRequested = true;
        isRestartRequested = true;
        return;
    }
    isScanning = true;
    do {
        isRestartRequested = false;
        runScan();
    } while (isRestartRequested);
    isScanning = false;
}

void FileFinderEngine::stopFinder()
{
    stopRequested = true;
    isRestartRequested = false;
}

void FileFinderEngine::runScan()
{
    resetCounters();
    allFiles.clear();
    duplicatedGroups.clear();
    exactGroups.clear();
    skipped.clear();
    *ScanFindings::instance() = ScanFindings();
    ScanProgress::instance()->reset();
    stopRequested = isLeaving();
    const ScanProfile profile = Configuration::instance()->scanProfile;
    const QStringList folders = Configuration::instance()->folders;
    startFindAllFiles(profile.includeMasks, profile.excludeMasks, folders);
    // A stop is not looked at here: the grouping is entered and sees it at its first step.
    emit findDuplicatedFilesStarted();
    if (profile.advancedMatch) {
        startFindDuplicatedFilesAdvanced();
    } else {
        startFindDuplicatedFilesBase();
    }
    stopRequested = stopRequested || isLeaving();
    const QList<QStringList> groups = groupsOfSeveral();
    publish(groups);
    emit findDuplicatedFilesFinished(groups);
    if (stopRequested && model != nullptr) {
        model->emitModelEvent(FindDuplicatedFilesStoppedEvent());
    }
}

void FileFinderEngine::startFindAllFiles(const QStringList &includeMasks,
                                         const QStringList &excludeMasks,
                                         const QStringList &folders)
{
    emit findAllFilesStarted();
    // A stop is not looked at here: each folder left is entered, and its walk ends early.
    for (const QString &folder : folders) {
        getFiles(includeMasks, excludeMasks, folder);
    }
    emit findAllFilesFinished();
}

QFileInfoList FileFinderEngine::getFiles(const QStringList &includeMasks,
                                         const QStringList &excludeMasks,
                                         const QString &folder)
{
    const Walk walk = {FileMasks(includeMasks),
                       excludeMasks,
                       Configuration::instance()->scanProfile,
                       Configuration::instance()->walkOptions};
    QStringList names;
    walkFolder(walk, folder, nullptr, &names);
    QFileInfoList files;
    const QDir dir(folder);
    for (const QString &name : qAsConst(names)) {
        files.append(QFileInfo(dir, name));
    }
    return files;
}

void FileFinderEngine::walkFolder(const Walk &walk,
                                  const QString &folder,
                                  const Frame *parent,
                                  QStringList *names)
{
    if (isLeaving()) {
        stopRequested = true;
        return;
    }
    FolderListing::Entries entries =
        FolderListing::list(folder, walk.includeMasks, walk.options.takesHidden);
    Frame frame = {parent, QDir(folder).absolutePath(), std::move(entries.folders), {}};
    if (!frame.prefix.endsWith(QLatin1Char('/'))) {
        frame.prefix += QLatin1Char('/');
    }
    skipUnlisted(frame.prefix, entries);
    for (const QString &name : qAsConst(entries.files)) {
        const QString path = frame.prefix + name;
        if (!isExcluded(name, walk.excludeMasks)
            && hasAcceptedSize(path, walk.profile, walk.options)) {
            allFiles.append(path);
            ++ScanProgress::instance()->filesFound;
            letEventsIn();
        }
    }
    if (names != nullptr) {
        *names = entries.files;
    }
    entries.files.clear();
    if (walkSubfolders(walk, frame)) {
        emit countingFilesInFolder(allFiles.size(), folder);
    }
}

bool FileFinderEngine::walkSubfolders(const Walk &walk, const Frame &frame)
{
    for (const FolderListing::Folder &subfolder : frame.subfolders) {
        const QString path = frame.prefix + subfolder.name;
        if ((subfolder.isLink && !walk.options.followsLinks)
            || (walk.options.staysOnFileSystem
                && !FolderListing::areOnOneFileSystem(path, frame.prefix))) {
            continue;
        }
        // A link back up would be walked for ever.
        if (subfolder.isLink && frame.mayContain(FolderListing::canonicalPath(path))) {
            continue;
        }
        walkFolder(walk, path, &frame, nullptr);
        if (stopRequested) {
            return false;
        }
    }
    return true;
}

void FileFinderEngine::skip(const QByteArray &path, const QString &reason)
{
    if (Configuration::instance()->keepsSkipped) {
        skipped.append({path, reason});
    }
}

void FileFinderEngine::skipUnlisted(const QString &folder, const FolderListing::Entries &entries)
{
    if (!entries.error.isEmpty()) {
        skip(QFile::encodeName(QDir::cleanPath(folder)), entries.error);
    }
    for (const QByteArray &name : entries.unlisted) {
        skip(QFile::encodeName(folder) + name, QStringLiteral("its name is no valid UTF-8"));
    }
}

qint64 FileFinderEngine::sizeOfFile(const QString &path) const
{
    return RegularFile::sizeOf(path);
}

void FileFinderEngine::startFindDuplicatedFilesBase()
{
    resetCounters();
    const QStringList files = allFiles;
    Buckets buckets;
    QVector<int> next(files.size(), -1);
    if (!sortIntoBuckets(files, &buckets, &next)) {
        return;
    }
    expectWork(files, buckets, next);
    int index = 0;
    for (auto it = buckets.cbegin(); it != buckets.cend(); ++it, ++index) {
        Bucket bucket = {index, it.key(), {}, {}};
        for (int file = it->first; file >= 0; file = next.at(file)) {
            bucket.files.append(file);
            bucket.paths.append(files.at(file));
        }
        if (!confirmBucket(bucket)) {
            return;
        }
        countCompared(bucket.paths);
    }
}

bool FileFinderEngine::sortIntoBuckets(const QStringList &files,
                                       Buckets *buckets,
                                       QVector<int> *next)
{
    for (int file = 0; file < files.size(); ++file) {
        announceFile(files.at(file));
        const QString key = fileChecksum(files.at(file));
        const auto chain = buckets->find(key);
        if (chain == buckets->end()) {
            buckets->insert(key, {file, file});
        } else {
            (*next)[chain->last] = file;
            chain->last = file;
        }
        if (stopRequested) {
            return false;
        }
        letEventsIn();
    }
    return true;
}

// The files of the buckets in which there is something to compare.
void FileFinderEngine::expectWork(const QStringList &files,
                                  const Buckets &buckets,
                                  const QVector<int> &next)
{
    ScanProgress *const progress = ScanProgress::instance();
    if (!progress->isWatched) {
        return;
    }
    for (const Chain &chain : buckets) {
        if (chain.first == chain.last) {
            continue;
        }
        const qint64 size = RegularFile::sizeOf(files.at(chain.first));
        for (int file = chain.first; file >= 0; file = next.at(file)) {
            ++progress->filesToCompare;
            progress->bytesToCompare += size;
        }
    }
}

void FileFinderEngine::expectWork(const QStringList &files)
{
    ScanProgress *const progress = ScanProgress::instance();
    if (!progress->isWatched) {
        return;
    }
    for (const QString &path : files) {
        if (!letEventsIn()) {
            return;
        }
        progress->bytesToCompare += RegularFile::sizeOf(path);
    }
    progress->filesToCompare = files.size();
}

bool FileFinderEngine::confirmBucket(const Bucket &bucket)
{
    const int count = bucket.paths.size();
    if (count < 2) {
        return true;
    }
    ContentClasses classes(bucket.paths, [this] { return letEventsIn(); });
    if (!classes.sort()) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        const ContentClasses::File &file = classes.files()[static_cast<std::size_t>(i)];
        if (!file.isReadable) {
            skip(QFile::encodeName(bucket.paths.at(i)), file.error);
        }
    }
    keepExactGroups(bucket, classes);
    BucketPairs pairs(classes.files());
    if (!addLonger(bucket, classes, &pairs)) {
        return false;
    }
    Placement placement = {&bucket,
                           &classes.files(),
                           &pairs,
                           DuplicateGroup(bucket.paths, duplicatedGroups.value(bucket.key)),
                           std::vector<bool>(classes.files().size(), false)};
    for (int first = 0; first < count - 1; ++first) {
        if (!placeRow(&placement, first)) {
            return false;
        }
    }
    return true;
}

void FileFinderEngine::keepExactGroups(const Bucket &bucket, const ContentClasses &classes)
{
    const auto scanned = [&](int index) -> ScannedFile {
        const ContentClasses::File &file = classes.files()[static_cast<std::size_t>(index)];
        return {bucket.paths.at(index), file.size, file.modified};
    };
    QHash<int, QVector<ScannedFile>> groups;
    for (int i = 0; i < bucket.paths.size(); ++i) {
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
        exactGroups.add(bucket.files.at(group.key()), *group);
    }
}

// Keys of other sizes coincide where names begin with digits. The comparison looks for the end of the
// first file alone, in steps of 256 bytes, so a file of whole steps equals a longer one behind it that
// begins with it. A file that has left the bucket since it got its key equals none of another size.
bool FileFinderEngine::addLonger(const Bucket &bucket,
                                 const ContentClasses &classes,
                                 BucketPairs *pairs)
{
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
        QVector<int> files;
        QStringList paths;
        for (auto other = size; other != bySize.end(); ++other) {
            for (const int file : qAsConst(other->second)) {
                if (fileChecksum(bucket.paths.at(file)) == bucket.key) {
                    files.append(file);
                    paths.append(bucket.paths.at(file));
                }
            }
        }
        ContentClasses beginnings(
            paths,
            [this] { return letEventsIn(); },
            size->first);
        if (!beginnings.sort()) {
            return false;
        }
        pairs->addLonger(beginnings.files(), files, size->first);
    }
    return true;
}

bool FileFinderEngine::placeRow(Placement *placement, int first)
{
    if (!letEventsIn()) {
        return false;
    }
    const ContentClasses::File &file = placement->file(first);
    const auto contentClass = static_cast<std::size_t>(file.first);
    // Once the files of a content stand in the group, further pairs of them only add to the sum.
    const bool isWhole =
        !placement->isClassPlaced[contentClass] || placement->pairs->hasLonger(first);
    const BucketPairs::Row row = placement->pairs->row(first, isWhole);
    addToSum(row.otherEqualPairs * file.size);
    for (const BucketPairs::Pair &pair : row.pairs) {
        if (!letEventsIn()) {
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
void FileFinderEngine::placePair(Placement *placement, int first, int second)
{
    const Bucket &bucket = *placement->bucket;
    addToSum(placement->file(second).size);
    const bool isOpening = placement->group.isEmpty();
    if (isOpening) {
        ++countFoundedDuplicated;
        addToSum(placement->file(first).size);
    }
    if (!placement->group.add(first, second)) {
        return;
    }
    ++countFoundedDuplicated;
    QStringList &paths = duplicatedGroups[bucket.key];
    if (isOpening) {
        paths.append(bucket.paths.at(first));
    }
    paths.append(bucket.paths.at(second));
    emit countingFindFilesDuplicated(bucket.index, countFoundedDuplicated, summFileSize);
}

void FileFinderEngine::startFindDuplicatedFilesAdvanced()
{
    resetCounters();
    const QStringList files = allFiles;
    const ScanProfile profile = Configuration::instance()->scanProfile;
    QVector<ReadFile> readFiles;
    readFiles.reserve(files.size());
    expectWork(files);
    for (const QString &path : files) {
        if (!letEventsIn()) {
            break;
        }
        announceFile(path);
        const FileKey::Checksum checksum = FileKey::ofContent(path, profile, whileReading());
        if (stopRequested) {
            // The reading of the file may have been cut off, and the key is worth nothing.
            break;
        }
        ++ScanProgress::instance()->filesCompared;
        ScanProgress::instance()->bytesCompared += std::max<qint64>(0, checksum.size);
        if (!checksum.isWhole) {
            skip(QFile::encodeName(path),
                 checksum.error.isEmpty() ? QStringLiteral("changed while it was read")
                                          : checksum.error);
        }
        readFiles.append({checksum.isWhole ? checksum.key : QString(),
                          checksum.size,
                          checksum.modified,
                          checksum.contentHash});
        if (!checksum.key.isEmpty()) {
            storeByKey(path, checksum.key, checksum.size);
            emit countingFindFilesDuplicated(readFiles.size(),
                                             countFoundedDuplicated,
                                             summFileSize);
        }
    }
    keepExactGroups(files, readFiles);
}

void FileFinderEngine::storeByKey(const QString &path, const QString &key, qint64 size)
{
    QStringList &group = duplicatedGroups[key];
    if (!group.isEmpty()) {
        // The first file of a group is counted when its first twin arrives.
        if (group.size() == 1) {
            ++countFoundedDuplicated;
            addToSum(RegularFile::sizeOf(group.first()));
        }
        ++countFoundedDuplicated;
        addToSum(size < 0 ? RegularFile::sizeOf(path) : size);
    }
    group.append(path);
}

// A checksum may coincide by chance or by intent, so its files must also agree in their sizes and, but
// for the CRC, in a second hash.
void FileFinderEngine::keepExactGroups(const QStringList &files, const QVector<ReadFile> &readFiles)
{
    QHash<ReadFile, Chain> chains;
    QVector<int> next(readFiles.size(), -1);
    for (int i = 0; i < readFiles.size(); ++i) {
        const ReadFile &file = readFiles.at(i);
        if (file.key.isNull() || duplicatedGroups.value(file.key).size() < 2) {
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
    for (const Chain &chain : qAsConst(chains)) {
        QVector<ScannedFile> group;
        for (int i = chain.first; i >= 0; i = next.at(i)) {
            group.append({files.at(i), readFiles.at(i).size, readFiles.at(i).modified});
        }
        exactGroups.add(chain.first, group);
    }
}

void FileFinderEngine::publish(const QList<QStringList> &groups) const
{
    const ScanProfile profile = Configuration::instance()->scanProfile;
    ScanFindings *const findings = ScanFindings::instance();
    findings->groups = groups;
    findings->exactGroups = exactGroups.inOrder();
    findings->skipped = skipped;
    findings->areContentsProven = !(profile.advancedMatch && profile.crcHash);
}

QString FileFinderEngine::fileChecksum(const QString &path) const
{
    const ScanProfile profile = Configuration::instance()->scanProfile;
    if (!profile.advancedMatch) {
        return FileKey::ofAttributes(path, profile);
    }
    return FileKey::ofContent(path, profile, untilInterrupted()).key;
}

bool FileFinderEngine::compareByteByByte(const QString &a, const QString &b) const
{
    return FileComparison::compare(a, b) == FileComparison::Verdict::Equal;
}

void FileFinderEngine::announceFile(const QString &path)
{
    if (model != nullptr) {
        model->emitModelEvent(AnalyzingCurrentDuplicatedFileEvent(path));
    }
}

QList<QStringList> FileFinderEngine::groupsOfSeveral() const
{
    QList<QStringList> groups;
    for (const QStringList &group : duplicatedGroups) {
        if (group.size() > 1) {
            groups.append(group);
        }
    }
    return groups;
}

// Unsigned, because the sum is meant to wrap.
void FileFinderEngine::addToSum(qint64 bytes)
{
    summFileSize =
        static_cast<qint32>(static_cast<quint32>(summFileSize) + static_cast<quint32>(bytes));
}

void FileFinderEngine::resetCounters()
{
    countFoundedDuplicated = 0;
    summFileSize = 0;
}

// Stands between any two steps of a scan; false when it has been stopped. What was posted to this
// thread is delivered at every step, and timers and the like when the last pass was a moment ago.
bool FileFinderEngine::letEventsIn()
{
    QCoreApplication::sendPostedEvents();
    if (!lastEventPass.isValid()
        || lastEventPass.nsecsElapsed() >= maxNanosecondsBetweenEventPasses) {
        QCoreApplication::processEvents();
        lastEventPass.start();
        stopRequested = stopRequested || isLeaving();
    }
    return !stopRequested;
}

GoOn FileFinderEngine::whileReading()
{
    return [this] {
        return lastEventPass.elapsed() < maxMillisecondsOfReading ? !stopRequested : letEventsIn();
    };
}
