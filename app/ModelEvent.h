// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/** The numbers are part of the interface: receivers compare the integer. */
enum ModelEventType : qint32 {
    TypeCountingFilesInFolderEvent = 0,
    TypeCountingFindFilesDuplicatedEvent = 1,
    TypeFindAllFilesStartedEvent = 2,
    TypeFindAllFilesFinishedEvent = 3,
    TypeFindDuplicatedFilesStartedEvent = 4,
    TypeAnalyzingCurrentDuplicatedFileEvent = 5,
    TypeFindDuplicatedFilesFinishedEvent = 6,
    TypeFindDuplicatedFilesStoppedEvent = 7,
    TypeGetUpdateVersionEvent = 8
};

/**
 * What happened in a scan or in the update check, as Model hands it to the pages.
 *
 * Made on the stack of its sender and alive only while it is delivered: receivers neither keep nor
 * delete it, they copy what they need. The type tells which subclass it is.
 */
class ModelEvent
{
public:
    virtual ~ModelEvent() = default;
    /** The event's name in a form for logs; no subclass adds its payload. */
    virtual QString description() const;

    const qint32 type;

protected:
    explicit ModelEvent(ModelEventType eventType)
        : type(eventType)
    {
    }
    ModelEvent(const ModelEvent &) = default;
};

/** A folder has been walked; size counts the files of the whole scan so far. */
class CountingFilesInFolderEvent final : public ModelEvent
{
public:
    CountingFilesInFolderEvent(int filesCount, QString folderPath);

    int size;
    QString folder;
};

/** The counters of the grouping. What currentCountFiles counts depends on the mode of the scan. */
class CountingFindFilesDuplicatedEvent final : public ModelEvent
{
public:
    CountingFindFilesDuplicatedEvent(int currentCount, int foundCount, qint64 sizeInBytes);

    int currentCountFiles;
    int countFoundedDuplicated;
    qint64 summFileSize;
};

class FindAllFilesStartedEvent final : public ModelEvent
{
public:
    FindAllFilesStartedEvent()
        : ModelEvent(TypeFindAllFilesStartedEvent)
    {
    }
};

class FindAllFilesFinishedEvent final : public ModelEvent
{
public:
    FindAllFilesFinishedEvent()
        : ModelEvent(TypeFindAllFilesFinishedEvent)
    {
    }
};

class FindDuplicatedFilesStartedEvent final : public ModelEvent
{
public:
    FindDuplicatedFilesStartedEvent()
        : ModelEvent(TypeFindDuplicatedFilesStartedEvent)
    {
    }
};

/** Made on the engine's thread, where Model cannot pass it on to the pages. */
class AnalyzingCurrentDuplicatedFileEvent final : public ModelEvent
{
public:
    explicit AnalyzingCurrentDuplicatedFileEvent(QString path);

    QString currentFile;
};

/** The scan is over; each group holds two or more absolute paths. */
class FindDuplicatedFilesFinishedEvent final : public ModelEvent
{
public:
    explicit FindDuplicatedFilesFinishedEvent(QList<QStringList> groups);

    QList<QStringList> duplicatedFiles;
};

/** Made on the engine's thread, where Model cannot pass it on to the pages. */
class FindDuplicatedFilesStoppedEvent final : public ModelEvent
{
public:
    FindDuplicatedFilesStoppedEvent()
        : ModelEvent(TypeFindDuplicatedFilesStoppedEvent)
    {
    }
};

/** The maker's web site has answered; version and build are one character each. */
class GetUpdateVersionEvent final : public ModelEvent
{
public:
    GetUpdateVersionEvent(QString newVersion, QString newBuild, QString pageUrl);

    QString version;
    QString build;
    QString url;
};
