// SPDX-License-Identifier: MIT
#pragma once

#include "engine/FolderWalk.h"
#include "engine/Grouping.h"
#include "engine/ScanFindings.h"

#include <QElapsedTimer>
#include <QFileInfoList>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

class Controller;
class Model;

/**
 * The scan: finds the files of the chosen folders and groups the duplicates among them.
 *
 * Lives on a worker thread of its own; a whole scan runs inside startFinder(), with passes through
 * the event loop between its steps, in which a posted stopFinder() is seen. What is to be scanned,
 * and how, stands in Configuration; which files have the same content, whatever group they stand in,
 * in ScanFindings. A request to interrupt the thread ends a scan like a stop, at
 * the latest after the block of the file that is being read.
 */
class FileFinderEngine final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(FileFinderEngine)

public:
    /** Connects itself to the controller. Neither is owned, and either may be null. */
    FileFinderEngine(Model *eventModel, Controller *signalController, QObject *parent);

    /** Walks the folders in their order; afterwards foundFiles() holds what was accepted. */
    void startFindAllFiles(const QStringList &includeMasks,
                           const QStringList &excludeMasks,
                           const QStringList &folders);
    /**
     * Walks one folder with all below it and appends the accepted files to foundFiles(). Returns
     * the folder's own files that match the include masks, whether or not they were accepted.
     */
    QFileInfoList getFiles(const QStringList &includeMasks,
                           const QStringList &excludeMasks,
                           const QString &folder);
    /** Bytes; 0 for a file that does not exist. */
    qint64 sizeOfFile(const QString &path) const;

    /** Groups foundFiles() by size and chosen attributes, confirmed byte by byte. */
    void startFindDuplicatedFilesBase();
    /** Groups foundFiles() by a checksum of their content; also keeps groups of one file. */
    void startFindDuplicatedFilesAdvanced();

    /** The text by which the profile in Configuration groups the file; null if unreadable. */
    QString fileChecksum(const QString &path) const;
    /** See FileComparison::compare() about lengths and log lines. */
    bool compareByteByByte(const QString &a, const QString &b) const;

    // The state of the last scan, or of the one that runs.
    QStringList foundFiles() const { return files.paths; }
    QHash<QString, QStringList> foundGroups() const { return result.groups; }
    int groupedFilesCount() const { return result.groupedFiles; }
    qint32 groupedFilesSize() const { return result.groupedBytes; }
    bool isStopRequested() const { return stopRequested; }

public slots:
    /**
     * Runs a whole scan. When one is running already, because this call was delivered by one of its
     * event passes, that one ends as if stopped and the new one follows it.
     */
    void startFinder();
    /** Ends the running scan at its next step, and takes back a start that waits for its end. */
    void stopFinder();

signals:
    /** After all below the folder was walked; filesCount counts the files of the whole scan. */
    void countingFilesInFolder(int filesCount, const QString &folder);
    /**
     * In the Advanced mode after every file that has a key, with the number of files looked at;
     * in the other mode after a file has joined a group, with the index of its bucket from 0. The
     * size is in bytes, of 32 bits: it wraps to negative values.
     */
    void countingFindFilesDuplicated(int currentCountFiles,
                                     int countFoundedDuplicated,
                                     qint64 summFileSize);
    void findAllFilesStarted();
    /** Also after a stop, like all that follow. */
    void findAllFilesFinished();
    void findDuplicatedFilesStarted();
    /** Groups of two or more absolute paths, in no particular order. */
    void findDuplicatedFilesFinished(QList<QStringList> duplicatedFiles);
    /** Never emitted. */
    void addedDuplicatedPath(const QString &filepath);

private:
    void runScan();
    FolderWalk::Events walkEvents();
    Grouping::Events groupingEvents();
    void publish(const QList<QStringList> &groups);
    QList<QStringList> groupsOfSeveral() const;
    void resetCounters();
    bool letEventsIn();
    bool whileReading();

    Model *model;
    Controller *controller;
    bool stopRequested = false;
    bool isScanning = false;
    bool isRestartRequested = false;
    QElapsedTimer lastEventPass;
    FolderWalk::LinkEntries linkEntries;
    Grouping::Files files;
    Grouping::Result result;
    QVector<SkippedPath> skipped;
};
