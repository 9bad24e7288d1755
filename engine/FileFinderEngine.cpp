// SPDX-License-Identifier: MIT
#include "engine/FileFinderEngine.h"

#include "app/Controller.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/Background.h"
#include "engine/ByteGrouping.h"
#include "engine/ChecksumGrouping.h"
#include "engine/Configuration.h"
#include "engine/FileComparison.h"
#include "engine/FileKey.h"
#include "engine/ReaderCount.h"
#include "engine/RegularFile.h"
#include "engine/ScanFindings.h"
#include "engine/ScanProgress.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <utility>

namespace
{
constexpr qint64 maxNanosecondsBetweenEventPasses = qint64(500) * 1000;
constexpr qint64 maxMillisecondsOfReading = 50;

bool isLeaving()
{
    return QThread::currentThread()->isInterruptionRequested();
}

// One is another one, or lies below it.
bool doOverlap(const QStringList &folders)
{
    QStringList roots;
    for (const QString &folder : folders) {
        const QString root = QDir(folder).absolutePath();
        roots.append(root.endsWith(QLatin1Char('/')) ? root : QString(root + QLatin1Char('/')));
    }
    // So that what lies below a folder stands right behind it.
    std::sort(roots.begin(), roots.end());
    return std::adjacent_find(roots.cbegin(),
                              roots.cend(),
                              [](const QString &a, const QString &b) { return b.startsWith(a); })
        != roots.cend();
}

} // namespace

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
    linkEntries = FolderWalk::LinkEntries();
    files = Grouping::Files();
    result = Grouping::Result();
    skipped.clear();
    *ScanFindings::instance() = ScanFindings();
    ScanProgress::instance()->reset();
    stopRequested = isLeaving();
    lastEventPass.start();
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
    files.mayRepeat = !files.paths.isEmpty() || doOverlap(folders);
    Background::setThreadCount(ReaderCount::ofFolders());
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
    FolderWalk walk(includeMasks,
                    excludeMasks,
                    Configuration::instance()->scanProfile,
                    Configuration::instance()->walkOptions,
                    walkEvents(),
                    &linkEntries);
    const QStringList names = walk.walk(folder);
    QFileInfoList found;
    const QDir dir(folder);
    for (const QString &name : names) {
        found.append(QFileInfo(dir, name));
    }
    return found;
}

FolderWalk::Events FileFinderEngine::walkEvents()
{
    FolderWalk::Events events;
    events.fileFound = [this](const QString &path, qint64 size) {
        // A file server may name a file twice in one listing.
        files.mayRepeat = files.mayRepeat || (!files.paths.isEmpty() && files.paths.last() == path);
        files.paths.append(path);
        files.sizes.append(size);
        ++ScanProgress::instance()->filesFound;
        letEventsIn();
    };
    events.folderDone = [this](const QString &folder) {
        emit countingFilesInFolder(static_cast<int>(files.paths.size()), folder);
    };
    events.isStopped = [this] {
        return stopRequested;
    };
    events.isLeaving = [this] {
        stopRequested = stopRequested || isLeaving();
        return isLeaving();
    };
    // A folder that is entered behind a stop is listed whole.
    events.whileListing = [this] {
        const bool wasStopped = stopRequested;
        whileReading();
        return wasStopped ? !isLeaving() : !stopRequested;
    };
    if (Configuration::instance()->keepsSkipped) {
        events.skipped = [this](const QByteArray &path, const QString &reason) {
            skipped.append({path, reason});
        };
    }
    return events;
}

qint64 FileFinderEngine::sizeOfFile(const QString &path) const
{
    return RegularFile::sizeOf(path);
}

void FileFinderEngine::startFindDuplicatedFilesBase()
{
    resetCounters();
    Background::setThreadCount(ReaderCount::ofHeads());
    const Grouping::Events events = groupingEvents();
    ByteGrouping(files, Configuration::instance()->scanProfile, events, &result).run();
}

void FileFinderEngine::startFindDuplicatedFilesAdvanced()
{
    resetCounters();
    Background::setThreadCount(ReaderCount::ofContents(Configuration::instance()->folders));
    const Grouping::Events events = groupingEvents();
    ChecksumGrouping(files, Configuration::instance()->scanProfile, events, &result).run();
}

Grouping::Events FileFinderEngine::groupingEvents()
{
    Grouping::Events events;
    events.fileAnalyzed = [this](const QString &path) {
        if (model != nullptr) {
            model->emitModelEvent(AnalyzingCurrentDuplicatedFileEvent(path));
        }
    };
    events.counted = [this](int number) {
        emit countingFindFilesDuplicated(number, result.groupedFiles, result.groupedBytes);
    };
    if (Configuration::instance()->keepsSkipped) {
        events.skipped = [this](const QString &path, const QString &reason) {
            skipped.append({QFile::encodeName(path), reason});
        };
    }
    events.goOn = [this] {
        return letEventsIn();
    };
    events.whileReading = [this] {
        return whileReading();
    };
    return events;
}

void FileFinderEngine::publish(const QList<QStringList> &groups)
{
    const ScanProfile profile = Configuration::instance()->scanProfile;
    ScanFindings *const findings = ScanFindings::instance();
    findings->groups = groups;
    findings->exactGroups = result.exactGroups.inOrder();
    findings->skipped = std::move(skipped);
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

QList<QStringList> FileFinderEngine::groupsOfSeveral() const
{
    QList<QStringList> groups;
    for (const QStringList &group : result.groups) {
        if (group.size() > 1) {
            groups.append(group);
        }
    }
    return groups;
}

void FileFinderEngine::resetCounters()
{
    result.groupedFiles = 0;
    result.groupedBytes = 0;
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

// What takes less time is waited for, whatever has been posted meanwhile.
bool FileFinderEngine::whileReading()
{
    return lastEventPass.isValid() && lastEventPass.elapsed() < maxMillisecondsOfReading
        ? !stopRequested
        : letEventsIn();
}
