// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QThread>

class FileFinderEngine;
struct ScanArguments;

/**
 * Runs one scan on a worker thread and hands over its groups.
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

    /** Returns at once; finished() follows when the event loop runs. */
    void start();

signals:
    /** Once, at the end of the scan, also of one that has been stopped. */
    void finished(const QList<QStringList> &groups);

private:
    QThread thread;
    FileFinderEngine *engine;
};
