// SPDX-License-Identifier: MIT
#include "ui/results/ThumbnailPrefetcher.h"

#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/PictureFile.h"

#include <QEvent>
#include <QMutex>
#include <QRunnable>
#include <QScrollBar>
#include <QTableView>
#include <QThreadPool>

#include <atomic>

namespace
{
constexpr int maxWaitMilliseconds = 500;

/** Pools with a thread that did not come back. A pool that goes waits for its threads. */
QVector<QThreadPool *> &abandonedPools()
{
    static auto *const pools = new QVector<QThreadPool *>;
    return *pools;
}
} // namespace

/** What the threads know. It outlives the prefetcher. */
struct ThumbnailPrefetcher::Mailbox {
    QMutex mutex;
    ThumbnailPrefetcher *receiver;
    std::atomic<bool> isClosed{false};
};

class ThumbnailPrefetcher::Decoding final : public QRunnable
{
public:
    Decoding(QString pathOfFile, std::shared_ptr<Mailbox> to)
        : path(std::move(pathOfFile))
        , mailbox(std::move(to))
    {
    }

    void run() override
    {
        const QImage icon = PictureFile(path, &mailbox->isClosed)
                                .readAtHeight(DuplicatedFilesTableModel::iconPixels);
        const QMutexLocker locker(&mailbox->mutex);
        ThumbnailPrefetcher *const receiver = mailbox->receiver;
        if (receiver != nullptr) {
            QMetaObject::invokeMethod(
                receiver,
                [receiver, file = path, icon] { receiver->take(file, icon); },
                Qt::QueuedConnection);
        }
    }

private:
    QString path;
    std::shared_ptr<Mailbox> mailbox;
};

ThumbnailPrefetcher::ThumbnailPrefetcher(QTableView *tableView,
                                         DuplicatedFilesTableModel *tableModel)
    : QObject(tableView)
    , view(tableView)
    , model(tableModel)
    , threads(std::make_unique<QThreadPool>())
    , mailbox(std::make_shared<Mailbox>())
{
    mailbox->receiver = this;
    threads->setMaxThreadCount(maxThreads);
    // What is in view is painted first: it is decoded as it is asked for.
    pause.setSingleShot(true);
    pause.setInterval(0);
    connect(&pause, SIGNAL(timeout()), this, SLOT(onPauseEnded()));
    connect(view->verticalScrollBar(), SIGNAL(valueChanged(int)), this, SLOT(onScrolled(int)));
    connect(model, SIGNAL(modelReset()), this, SLOT(onModelReset()));
    view->viewport()->installEventFilter(this);
}

ThumbnailPrefetcher::~ThumbnailPrefetcher()
{
    mailbox->isClosed = true;
    {
        const QMutexLocker locker(&mailbox->mutex);
        mailbox->receiver = nullptr;
    }
    threads->clear();
    if (!threads->waitForDone(maxWaitMilliseconds)) {
        abandonedPools().append(threads.release());
    }
}

QVector<int> ThumbnailPrefetcher::rowsToPrepare(int first, int last, bool isDownwards, int rowCount)
{
    const int page = last - first + 1;
    const int ahead = qMin(pagesAhead * page, maxRows - maxRows / (pagesAhead + pagesBehind));
    const int behind = qMin(pagesBehind * page, maxRows / (pagesAhead + pagesBehind));
    QVector<int> rows;
    const auto append = [&](int steps, bool isBelow) {
        for (int step = 1; step <= steps; ++step) {
            const int row = isBelow ? last + step : first - step;
            if (row >= 0 && row < rowCount) {
                rows.append(row);
            }
        }
    };
    // At an end there is one direction.
    const bool isBelowNext = first == 0 || (isDownwards && last < rowCount - 1);
    append(ahead, isBelowNext);
    append(behind, !isBelowNext);
    return rows;
}

bool ThumbnailPrefetcher::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) {
        pause.start();
    }
    return QObject::eventFilter(watched, event);
}

void ThumbnailPrefetcher::onScrolled(int value)
{
    isDownwards = value >= lastScrollValue;
    lastScrollValue = value;
    pause.start();
}

void ThumbnailPrefetcher::onModelReset()
{
    // A tick resets the model as well: what is wanted is found anew, and most of it is there.
    wanted.clear();
    pause.start();
}

void ThumbnailPrefetcher::onPauseEnded()
{
    wanted.clear();
    const int rowCount = model != nullptr ? model->rowCount() : 0;
    if (!view->isVisible() || rowCount == 0) {
        return;
    }
    const int first = qMax(0, view->rowAt(0));
    const int lastSeen = view->rowAt(view->viewport()->height() - 1);
    const int last = lastSeen < 0 ? rowCount - 1 : lastSeen;
    const QVector<int> rows = rowsToPrepare(first, last, isDownwards, rowCount);
    for (const int row : rows) {
        const QModelIndex index = model->index(row, DuplicatedFilesTableModel::FilepathColumn);
        wanted.append(index.data().toString());
    }
    startDecodings();
}

void ThumbnailPrefetcher::startDecodings()
{
    while (underWay.size() < maxThreads && !wanted.isEmpty()) {
        const QString path = wanted.takeFirst();
        // Most are there already, and the view may be faster.
        if (!underWay.contains(path) && model->lacksIcon(path)) {
            underWay.insert(path);
            threads->start(new Decoding(path, mailbox));
        }
    }
}

void ThumbnailPrefetcher::take(const QString &path, const QImage &icon)
{
    underWay.remove(path);
    if (model != nullptr) {
        model->takeIcon(path, icon);
        startDecodings();
    }
}
