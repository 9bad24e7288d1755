// SPDX-License-Identifier: MIT
#pragma once

#include "engine/FileFinderEngine.h"
#include "engine/ScanProfile.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QThread>

#include <functional>
#include <memory>

class Controller;
class Model;

/**
 * An engine on a worker thread of its own, with a record of every signal of its scans.
 *
 * A record is the signal's name and its arguments, separated by spaces; of the groups only their
 * number. Actions run on the worker thread, inside the emission of the signal.
 */
class EngineRig final
{
public:
    explicit EngineRig(Model *model = nullptr, Controller *controller = nullptr);
    ~EngineRig();

    /** Runs a whole scan and returns its record. */
    QStringList scan(const QStringList &folders, const ScanProfile &profile = ScanProfile());
    /** Runs the function on the worker thread and waits for its end. */
    void run(const std::function<void()> &function);
    /** Puts the action behind the n-th signal (from 1) of the scans to come. */
    void atSignal(int number, const std::function<void()> &action);
    /** Posts stopFinder() behind the n-th signal. */
    void stopAtSignal(int number);
    /** Posts the slot to the engine, from whatever thread. */
    void post(const char *slot);

    FileFinderEngine *engine() const { return finder.get(); }
    QThread *worker() { return &thread; }
    /** What the last scan ended with. */
    QList<QStringList> groups() const { return lastGroups; }
    QStringList record() const { return lines; }

    static ScanProfile advanced(const QString &checksum);

private:
    void add(const QString &line);

    QThread thread;
    std::unique_ptr<FileFinderEngine> finder;
    QStringList lines;
    QMap<int, std::function<void()>> actions;
    QList<QStringList> lastGroups;
};
