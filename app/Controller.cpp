// SPDX-License-Identifier: MIT
#include "app/Controller.h"

#include "app/BoundedNetworkManager.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "app/Product.h"
#include "app/UpdateAnswer.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <utility>

namespace
{
constexpr qint64 maxAnswerBytes = qint64(64) * 1024;
constexpr int maxAnswerMilliseconds = 30000;
} // namespace

Controller::Controller(Model *eventModel, QObject *parent)
    : QObject(parent)
    , model(eventModel)
    , networkManager(new BoundedNetworkManager(this))
    , updateFileUrl(QString::fromLatin1(Product::updateFile))
{
    connect(networkManager,
            SIGNAL(finished(QNetworkReply*)), this, SLOT(onReplyFinished(QNetworkReply*)));
}

void Controller::checkUpdate()
{
    QNetworkReply *const reply = networkManager->get(QNetworkRequest(updateFileUrl));
    // One byte more than is taken, to tell an answer that is too large; no more is held in memory.
    reply->setReadBufferSize(maxAnswerBytes + 1);
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > maxAnswerBytes) {
            reply->abort();
        }
    });
    QTimer::singleShot(maxAnswerMilliseconds, reply, &QNetworkReply::abort);
}

void Controller::setUpdateFileUrl(const QUrl &url)
{
    updateFileUrl = url;
}

void Controller::deliver(const ModelEvent &event)
{
    if (!model.isNull()) {
        model->emitModelEvent(event);
    }
}

void Controller::onFindAllFilesStarted()
{
    deliver(FindAllFilesStartedEvent());
}

void Controller::onFindAllFilesFinished()
{
    deliver(FindAllFilesFinishedEvent());
}

void Controller::onCountingFilesInFolderChanged(int size, const QString &folder)
{
    deliver(CountingFilesInFolderEvent(size, folder));
}

void Controller::onFindDuplicatedFilesStarted()
{
    deliver(FindDuplicatedFilesStartedEvent());
}

void Controller::onFindDuplicatedFilesFinished(QList<QStringList> duplicatedFiles)
{
    deliver(FindDuplicatedFilesFinishedEvent(std::move(duplicatedFiles)));
}

void Controller::onCountingFindFilesDuplicated(int currentCountFiles,
                                               int countFoundedDuplicated,
                                               qint64 summFileSize)
{
    deliver(
        CountingFindFilesDuplicatedEvent(currentCountFiles, countFoundedDuplicated, summFileSize));
}

void Controller::addedDuplicatedPath(const QString &filepath)
{
    Q_UNUSED(filepath)
}

void Controller::onReplyFinished(QNetworkReply *reply)
{
    reply->deleteLater();
    if (reply->bytesAvailable() > maxAnswerBytes) {
        return;
    }
    // The error state is not looked at: a request that failed has no lines, or malformed ones.
    QList<QByteArray> lines;
    while (!reply->atEnd()) {
        const QByteArray line = reply->readLine();
        if (line.isEmpty()) {
            break;
        }
        lines.append(line);
    }
    if (const auto answer = UpdateAnswer::fromLines(lines)) {
        deliver(GetUpdateVersionEvent(answer->version, answer->build, answer->url));
    }
}
