// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ScanReport.h"

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QThread>

#include <atomic>

class FileFinderEngine;
struct ScanArguments;

/**
 * Runs one scan on a worker thread and hands over what it has found.
 *
 * Lives on the main thread. Its destructor ends a scan that still runs and waits for the worker.
 */
class ScanRunner final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ScanRunner)

public:
    /** Puts what is to be scanned into Configuration. */
    ScanRunner(const ScanArguments &arguments, QObject *parent);
    ~ScanRunner() override;

    /**
     * Returns at once; finished() follows when the event loop runs. False when the system gives no
     * thread to scan on.
     */
    bool start();
    /**
     * Ends the scan as the window does; finished() follows with what has been found. Where that is
     * being proven, what has been proven.
     */
    void stop();
    /** Of the scan that is finished. */
    const ScanReport &report() const { return result; }

signals:
    /** Once, at the end of the scan, also of one that has been stopped. */
    void finished();

private:
    void review(const QList<QStringList> &joinedGroups);
    void addChecksums();

    QThread thread;
    FileFinderEngine *engine;
    bool isJoined;
    QElapsedTimer timer;
    std::atomic<bool> isStopRequested{false};
    // Written by the worker before finished() is posted.
    ScanReport result;
};
