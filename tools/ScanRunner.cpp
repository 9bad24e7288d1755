// SPDX-License-Identifier: MIT
#include "tools/ScanRunner.h"

#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"
#include "engine/ScanFindings.h"
#include "tools/GroupReview.h"
#include "tools/ScanArguments.h"
#include "tools/SignalTrace.h"

#include <QHash>

#include <utility>

#include <unistd.h>

ScanRunner::ScanRunner(const ScanArguments &arguments, QObject *parent)
    : QObject(parent)
    , engine(new FileFinderEngine(nullptr, nullptr, nullptr))
    , isJoined(arguments.isJoined)
{
    Configuration *const configuration = Configuration::instance();
    configuration->folders = arguments.folders;
    configuration->scanProfile = arguments.profile;
    configuration->walkOptions = arguments.walkOptions;
    configuration->keepsSkipped = true;
    if (arguments.printsEvents || arguments.stopAfter > 0) {
        auto *const trace = new SignalTrace(engine,
                                            arguments.printsEvents ? STDERR_FILENO : -1,
                                            arguments.stopAfter);
        trace->moveToThread(&thread);
        connect(&thread, &QThread::finished, trace, &QObject::deleteLater);
    }
    engine->moveToThread(&thread);
    connect(&thread, &QThread::finished, engine, &QObject::deleteLater);
    // On the worker, which may take its time with it.
    connect(
        engine,
        &FileFinderEngine::findDuplicatedFilesFinished,
        engine,
        [this](const QList<QStringList> &groups) { review(groups); },
        Qt::DirectConnection);
    thread.start();
}

ScanRunner::~ScanRunner()
{
    stop();
    thread.requestInterruption();
    thread.quit();
    thread.wait();
}

bool ScanRunner::start()
{
    if (!thread.isRunning()) {
        return false;
    }
    timer.start();
    QMetaObject::invokeMethod(engine, "startFinder", Qt::QueuedConnection);
    return true;
}

void ScanRunner::stop()
{
    isStopRequested = true;
    QMetaObject::invokeMethod(engine, "stopFinder", Qt::QueuedConnection);
}

void ScanRunner::review(const QList<QStringList> &joinedGroups)
{
    const ScanFindings &findings = *ScanFindings::instance();
    result.filesFound = static_cast<int>(engine->foundFiles().size());
    result.wasStopped = engine->isStopRequested();
    result.joinedGroups = joinedGroups;
    result.skipped = findings.skipped;
    QVector<QVector<ScannedFile>> groups = isJoined ? decltype(groups)() : findings.exactGroups;
    if (!findings.areContentsProven) {
        // What was found until a stop is still to be proven; another stop ends that.
        isStopRequested = false;
        const auto goOn = [this] {
            return !isStopRequested;
        };
        groups = GroupReview::prove(groups, goOn, &result.skipped);
        result.wasStopped = result.wasStopped || isStopRequested;
    }
    for (const QVector<ScannedFile> &files : std::as_const(groups)) {
        ReportedGroup group = GroupReview::review(files, &result.skipped);
        if (!group.paths.isEmpty()) {
            result.groups.append(std::move(group));
        }
    }
    addChecksums();
    result.milliseconds = timer.elapsed();
    emit finished();
}

// The engine keeps its checksums as keys of the joined groups.
void ScanRunner::addChecksums()
{
    const ScanProfile profile = Configuration::instance()->scanProfile;
    if (!profile.advancedMatch) {
        return;
    }
    QHash<QString, int> groupOfFirst;
    for (int i = 0; i < result.groups.size(); ++i) {
        groupOfFirst.insert(result.groups.at(i).paths.first(), i);
    }
    const QHash<QString, QStringList> keyed = engine->foundGroups();
    for (auto group = keyed.cbegin(); group != keyed.cend(); ++group) {
        const QByteArray checksum = profile.crcHash
            ? QByteArray::number(group.key().toUInt(), 16).rightJustified(8, '0')
            : QByteArray::fromBase64(group.key().toLatin1()).toHex();
        for (const QString &path : *group) {
            const auto index = groupOfFirst.constFind(path);
            if (index != groupOfFirst.cend()) {
                result.groups[*index].checksum = checksum;
            }
        }
    }
}
