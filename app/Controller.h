// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUrl>

class Model;
class ModelEvent;
class QNetworkAccessManager;
class QNetworkReply;

/**
 * Turns the engine's signals into events for the pages, and asks the maker's web site for updates.
 *
 * Lives on the GUI thread: the engine's signals reach its slots as queued calls. Every slot builds
 * its event on the stack and delivers it before it returns.
 */
class Controller final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Controller)

public:
    /** The model is not owned; what happens after its end is told to nobody. */
    Controller(Model *model, QObject *parent);

    /**
     * Asks for the update file and returns at once. A good answer becomes a GetUpdateVersionEvent;
     * anything else (no answer within 30 seconds, more than 64 KiB, a malformed one) stays silent.
     */
    void checkUpdate();
    /** Where checkUpdate() asks from now on; Product::updateFile until then. */
    void setUpdateFileUrl(const QUrl &url);

public slots:
    void onFindAllFilesStarted();
    void onFindAllFilesFinished();
    void onCountingFilesInFolderChanged(int size, const QString &folder);
    void onFindDuplicatedFilesStarted();
    void onFindDuplicatedFilesFinished(QList<QStringList> duplicatedFiles);
    void onCountingFindFilesDuplicated(int currentCountFiles,
                                       int countFoundedDuplicated,
                                       qint64 summFileSize);
    /** Does nothing, and nothing connects to it. */
    void addedDuplicatedPath(const QString &filepath);
    void onReplyFinished(QNetworkReply *reply);

private:
    // Signals of a scan that is cut off by the end of the window are delivered after it.
    void deliver(const ModelEvent &event);

    QPointer<Model> model;
    QNetworkAccessManager *networkManager;
    QUrl updateFileUrl;
};
