// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ExactGroups.h"
#include "engine/GoOn.h"

#include <QElapsedTimer>
#include <QFileInfoList>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

class BucketPairs;
class ContentClasses;
class Controller;
class DuplicateGroup;
class Model;
namespace FolderListing
{
struct Entries;
}

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
    QStringList foundFiles() const { return allFiles; }
    QHash<QString, QStringList> foundGroups() const { return duplicatedGroups; }
    int groupedFilesCount() const { return countFoundedDuplicated; }
    qint32 groupedFilesSize() const { return summFileSize; }
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
    struct Walk;
    struct Frame;
    struct Chain;
    struct Bucket;
    using Buckets = QHash<QString, Chain>;

    struct Placement;
    struct ReadFile;

    void runScan();
    void walkFolder(const Walk &walk,
                    const QString &folder,
                    const Frame *parent,
                    QStringList *names);
    bool walkSubfolders(const Walk &walk, const Frame &frame);
    void announceFile(const QString &path);
    bool sortIntoBuckets(const QStringList &files, Buckets *buckets, QVector<int> *next);
    void expectWork(const QStringList &files, const Buckets &buckets, const QVector<int> &next);
    void expectWork(const QStringList &files);
    bool confirmBucket(const Bucket &bucket);
    void skip(const QByteArray &path, const QString &reason);
    void skipUnlisted(const QString &folder, const FolderListing::Entries &entries);
    void keepExactGroups(const Bucket &bucket, const ContentClasses &classes);
    bool addLonger(const Bucket &bucket, const ContentClasses &classes, BucketPairs *pairs);
    bool placeRow(Placement *placement, int first);
    void placePair(Placement *placement, int first, int second);
    void storeByKey(const QString &path, const QString &key, qint64 size);
    void keepExactGroups(const QStringList &files, const QVector<ReadFile> &readFiles);
    void publish(const QList<QStringList> &groups) const;
    QList<QStringList> groupsOfSeveral() const;
    void addToSum(qint64 bytes);
    void resetCounters();
    bool letEventsIn();
    GoOn whileReading();

    Model *model;
    Controller *controller;
    bool stopRequested = false;
    bool isScanning = false;
    bool isRestartRequested = false;
    QElapsedTimer lastEventPass;
    QStringList allFiles;
    QHash<QString, QStringList> duplicatedGroups;
    ExactGroups exactGroups;
    QVector<SkippedPath> skipped;
    int countFoundedDuplicated = 0;
    qint32 summFileSize = 0;
};
