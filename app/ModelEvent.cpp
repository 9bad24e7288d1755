// SPDX-License-Identifier: MIT
#include "app/ModelEvent.h"

#include <array>
#include <utility>

namespace
{
// The stopped event carries the finished event's name; their types still tell them apart.
constexpr std::array<const char *, 9> names = {
    "TypeCountingFilesInFolderEvent",
    "TypeCountingFindFilesDuplicatedEvent",
    "TypeFindAllFilesStartedEvent",
    "TypeFindAllFilesFinishedEvent",
    "TypeFindDuplicatedFilesStartedEvent",
    "TypeAnalyzingCurrentDuplicatedFileEvent",
    "TypeFindDuplicatedFilesFinishedEvent",
    "TypeFindDuplicatedFilesFinishedEvent",
    "TypeGetUpdateVersionEvent",
};
} // namespace

QString ModelEvent::description() const
{
    const QString name = QLatin1String(names.at(static_cast<std::size_t>(type)));
    return QStringLiteral("Name of event: %1\r\nAddinfo: %2").arg(name, QString());
}

CountingFilesInFolderEvent::CountingFilesInFolderEvent(int filesCount, QString folderPath)
    : ModelEvent(TypeCountingFilesInFolderEvent)
    , size(filesCount)
    , folder(std::move(folderPath))
{
}

CountingFindFilesDuplicatedEvent::CountingFindFilesDuplicatedEvent(int currentCount,
                                                                   int foundCount,
                                                                   qint64 sizeInBytes)
    : ModelEvent(TypeCountingFindFilesDuplicatedEvent)
    , currentCountFiles(currentCount)
    , countFoundedDuplicated(foundCount)
    , summFileSize(sizeInBytes)
{
}

AnalyzingCurrentDuplicatedFileEvent::AnalyzingCurrentDuplicatedFileEvent(QString path)
    : ModelEvent(TypeAnalyzingCurrentDuplicatedFileEvent)
    , currentFile(std::move(path))
{
}

FindDuplicatedFilesFinishedEvent::FindDuplicatedFilesFinishedEvent(QList<QStringList> groups)
    : ModelEvent(TypeFindDuplicatedFilesFinishedEvent)
    , duplicatedFiles(std::move(groups))
{
}

GetUpdateVersionEvent::GetUpdateVersionEvent(QString newVersion, QString newBuild, QString pageUrl)
    : ModelEvent(TypeGetUpdateVersionEvent)
    , version(std::move(newVersion))
    , build(std::move(newBuild))
    , url(std::move(pageUrl))
{
}
