// SPDX-License-Identifier: MIT
#pragma once

#include "app/ModelEvent.h"

#include <QObject>
#include <QStringList>

/** Notes every event that reaches it as one line, the way a page would receive it. */
class EventRecorder final : public QObject
{
    Q_OBJECT

public:
    explicit EventRecorder(QObject *model)
    {
        connect(model,
                SIGNAL(modelEvent(const ModelEvent*)), this, SLOT(onModelEvent(const ModelEvent*)));
    }

    QStringList events;

public slots:
    void onModelEvent(const ModelEvent *modelEvent)
    {
        events.append(QString::number(modelEvent->type) + payload(modelEvent));
    }

private:
    static QString payload(const ModelEvent *event)
    {
        switch (event->type) {
        case TypeCountingFilesInFolderEvent: {
            const auto *const files = static_cast<const CountingFilesInFolderEvent *>(event);
            return QStringLiteral(" %1 %2").arg(QString::number(files->size), files->folder);
        }
        case TypeCountingFindFilesDuplicatedEvent: {
            const auto *const found = static_cast<const CountingFindFilesDuplicatedEvent *>(event);
            return QStringLiteral(" %1 %2 %3")
                .arg(found->currentCountFiles)
                .arg(found->countFoundedDuplicated)
                .arg(found->summFileSize);
        }
        case TypeAnalyzingCurrentDuplicatedFileEvent:
            return QLatin1Char(' ')
                + static_cast<const AnalyzingCurrentDuplicatedFileEvent *>(event)->currentFile;
        case TypeFindDuplicatedFilesFinishedEvent: {
            QStringList groups;
            for (const QStringList &group :
                 static_cast<const FindDuplicatedFilesFinishedEvent *>(event)->duplicatedFiles) {
                groups.append(group.join(QLatin1Char('=')));
            }
            return QLatin1Char(' ') + groups.join(QLatin1Char(';'));
        }
        case TypeGetUpdateVersionEvent: {
            const auto *const update = static_cast<const GetUpdateVersionEvent *>(event);
            return QStringLiteral(" %1 %2 %3").arg(update->version, update->build, update->url);
        }
        default:
            return {};
        }
    }
};
