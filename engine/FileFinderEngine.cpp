// SPDX-License-Identifier: MIT
#include "engine/FileFinderEngine.h"

#include "app/Controller.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/BucketJudge.h"
#include "engine/Configuration.h"
#include "engine/DuplicateGroup.h"
#include "engine/FileComparison.h"
#include "engine/FileKey.h"
#include "engine/FileMasks.h"
#include "engine/FolderListing.h"
#include "engine/RegularFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QThread>

#include <utility>

// Exported by the toolkit but in none of its public headers: the events posted to this thread that
// wait to be delivered.
Q_CORE_EXPORT uint qGlobalPostedEventsCount();

namespace
{
constexpr qint64 maxNanosecondsBetweenEventPasses = qint64(500) * 1000;
// Of pairs that are judged from memory: so many are over in some microseconds.
constexpr int maxPairsBetweenEventPasses = 1024;

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

bool hasAcceptedSize(const QString &path, const ScanProfile &profile)
{
    if (!profile.minSizeEnabled && !profile.maxSizeEnabled) {
        return true;
    }
    // 32 bits: a file of 2 TiB or more wraps.
    const auto kilobytes = static_cast<qint32>(RegularFile::sizeOf(path) / 1024);
    return !(profile.minSizeEnabled && profile.minSizeInKbytes > kilobytes)
        && !(profile.maxSizeEnabled && profile.maxSizeInKbytes < kilobytes);
}
} // namespace

struct FileFinderEngine::Walk {
    FileMasks includeMasks;
    QStringList excludeMasks;
    ScanProfile profile;
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
    QStringList paths;
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
    emit findDuplicatedFilesFinished(groupsOfSeveral());
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
                       Configuration::instance()->scanProfile};
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
    FolderListing::Entries entries = FolderListing::list(folder, walk.includeMasks);
    Frame frame = {parent, QDir(folder).absolutePath(), std::move(entries.folders), {}};
    if (!frame.prefix.endsWith(QLatin1Char('/'))) {
        frame.prefix += QLatin1Char('/');
    }
    for (const QString &name : qAsConst(entries.files)) {
        const QString path = frame.prefix + name;
        if (!isExcluded(name, walk.excludeMasks) && hasAcceptedSize(path, walk.profile)) {
            allFiles.append(path);
            processPendingEvents();
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
    int index = 0;
    for (auto it = buckets.cbegin(); it != buckets.cend(); ++it, ++index) {
        Bucket bucket = {index, it.key(), {}};
        for (int file = it->first; file >= 0; file = next.at(file)) {
            bucket.paths.append(files.at(file));
        }
        if (!confirmBucket(bucket)) {
            return;
        }
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
        processPendingEvents();
    }
    return true;
}

bool FileFinderEngine::confirmBucket(const Bucket &bucket)
{
    const int count = bucket.paths.size();
    if (count < 2) {
        return true;
    }
    BucketJudge judge(bucket.paths, [this](const QString &path) { return fileChecksum(path); });
    DuplicateGroup group(bucket.paths, duplicatedGroups.value(bucket.key));
    // No pair is left out: each one adds to the sum of the sizes, also when both files are placed.
    for (int j = 0; j < count - 1; ++j) {
        for (int k = j + 1; k < count; ++k) {
            --pairsToEventPass;
            if (pairsToEventPass <= 0 || judge.takeHasRead()) {
                pairsToEventPass = maxPairsBetweenEventPasses;
                processPendingEvents();
            }
            if (stopRequested) {
                return false;
            }
            if (judge.areEqual(j, k)) {
                placePair(bucket, &judge, &group, j, k);
            }
        }
    }
    return true;
}

// All files of a bucket end in one group, whatever their content, because its key names the group:
// the first pair opens it, each later one adds its second file alone.
void FileFinderEngine::placePair(const Bucket &bucket,
                                 BucketJudge *judge,
                                 DuplicateGroup *group,
                                 int first,
                                 int second)
{
    addToSum(judge->sizeOf(second));
    const bool isOpening = group->isEmpty();
    if (isOpening) {
        ++countFoundedDuplicated;
        addToSum(judge->sizeOf(first));
    }
    if (!group->add(first, second)) {
        return;
    }
    ++countFoundedDuplicated;
    QStringList &paths = duplicatedGroups[bucket.key];
    if (isOpening) {
        paths.append(bucket.paths.at(first));
    }
    paths.append(bucket.paths.at(second));
    emit countingFindFilesDuplicated(bucket.index, countFoundedDuplicated, summFileSize);
    // Who hears of the pair may have posted a stop.
    pairsToEventPass = 0;
}

void FileFinderEngine::startFindDuplicatedFilesAdvanced()
{
    resetCounters();
    const QStringList files = allFiles;
    int fileCount = 0;
    for (const QString &path : files) {
        processPendingEvents();
        if (stopRequested) {
            return;
        }
        announceFile(path);
        const QString key = fileChecksum(path);
        if (isLeaving()) {
            // The reading of the file may have been cut off, and the key is worth nothing.
            stopRequested = true;
            return;
        }
        ++fileCount;
        if (!key.isEmpty()) {
            storeByKey(path, key);
            emit countingFindFilesDuplicated(fileCount, countFoundedDuplicated, summFileSize);
        }
    }
}

void FileFinderEngine::storeByKey(const QString &path, const QString &key)
{
    QStringList &group = duplicatedGroups[key];
    if (!group.isEmpty()) {
        // The first file of a group is counted when its first twin arrives.
        if (group.size() == 1) {
            ++countFoundedDuplicated;
            addToSum(RegularFile::sizeOf(group.first()));
        }
        ++countFoundedDuplicated;
        addToSum(RegularFile::sizeOf(path));
    }
    group.append(path);
}

QString FileFinderEngine::fileChecksum(const QString &path) const
{
    const ScanProfile profile = Configuration::instance()->scanProfile;
    if (!profile.advancedMatch) {
        return FileKey::ofAttributes(path, profile);
    }
    if (profile.crcHash) {
        return FileKey::ofCrc(path);
    }
    return FileKey::ofHash(path,
                           profile.md5Hash ? QCryptographicHash::Md5 : QCryptographicHash::Sha1);
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

// Stands between any two steps of a scan. A pass is left out while nothing has been posted to this
// thread and the last one was a moment ago; it also serves timers, which are no posted events.
void FileFinderEngine::processPendingEvents()
{
    if (qGlobalPostedEventsCount() == 0 && lastEventPass.isValid()
        && lastEventPass.nsecsElapsed() < maxNanosecondsBetweenEventPasses) {
        return;
    }
    QCoreApplication::processEvents();
    lastEventPass.start();
    if (isLeaving()) {
        stopRequested = true;
    }
}
