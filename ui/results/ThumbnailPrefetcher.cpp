// SPDX-License-Identifier: MIT
#include "ui/results/ThumbnailPrefetcher.h"

#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/PictureFile.h"

#include <QEvent>
#include <QMutex>
#include <QRunnable>
#include <QScrollBar>
#include <QSet>
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
    ThumbnailPrefetcher *receiver = nullptr;
    /** Paths, the most urgent first. */
    QStringList queue;
    QSet<QString> underWay;
    int workers = 0;
    std::atomic<bool> isClosed{false};
};

/** Takes one path after the other, so that the threads go on while the GUI thread is busy. */
class ThumbnailPrefetcher::Worker final : public QRunnable
{
public:
    explicit Worker(std::shared_ptr<Mailbox> to)
        : mailbox(std::move(to))
    {
    }

    void run() override
    {
        QMutexLocker locker(&mailbox->mutex);
        while (!mailbox->queue.isEmpty()) {
            const QString path = mailbox->queue.takeFirst();
            mailbox->underWay.insert(path);
            locker.unlock();
            const QImage icon = PictureFile(path, &mailbox->isClosed)
                                    .readAtHeight(DuplicatedFilesTableModel::iconPixels);
            locker.relock();
            mailbox->underWay.remove(path);
            send(path, icon);
        }
        --mailbox->workers;
    }

private:
    void send(const QString &path, const QImage &icon)
    {
        ThumbnailPrefetcher *const receiver = mailbox->receiver;
        if (receiver != nullptr) {
            QMetaObject::invokeMethod(
                receiver,
                [receiver, path, icon] { receiver->take(path, icon); },
                Qt::QueuedConnection);
        }
    }

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
    pause.setSingleShot(true);
    pause.setInterval(0);
    connect(&pause, SIGNAL(timeout()), this, SLOT(onPauseEnded()));
    connect(view->verticalScrollBar(), SIGNAL(valueChanged(int)), this, SLOT(onScrolled(int)));
    view->viewport()->installEventFilter(this);
}

ThumbnailPrefetcher::~ThumbnailPrefetcher()
{
    mailbox->isClosed = true;
    {
        const QMutexLocker locker(&mailbox->mutex);
        mailbox->receiver = nullptr;
        mailbox->queue.clear();
    }
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
    // Whatever comes into view is painted, and decoded as it is asked for: the threads begin when that
    // is done, and do not take the processor from it.
    if (event->type() == QEvent::Paint) {
        pause.start();
    }
    return QObject::eventFilter(watched, event);
}

void ThumbnailPrefetcher::onScrolled(int value)
{
    isDownwards = value >= lastScrollValue;
    lastScrollValue = value;
}

void ThumbnailPrefetcher::onPauseEnded()
{
    const QStringList paths = pathsToPrepare();
    const QMutexLocker locker(&mailbox->mutex);
    mailbox->queue.clear();
    for (const QString &path : paths) {
        if (!mailbox->underWay.contains(path)) {
            mailbox->queue.append(path);
        }
    }
    while (mailbox->workers < qMin(maxThreads, mailbox->queue.size())) {
        ++mailbox->workers;
        threads->start(new Worker(mailbox));
    }
}

QStringList ThumbnailPrefetcher::pathsToPrepare() const
{
    QStringList paths;
    const int rowCount = model != nullptr ? model->rowCount() : 0;
    if (rowCount == 0) {
        return paths;
    }
    const int first = qMax(0, view->rowAt(0));
    const int lastSeen = view->rowAt(view->viewport()->height() - 1);
    const int last = lastSeen < 0 ? rowCount - 1 : lastSeen;
    const QVector<int> rows = rowsToPrepare(first, last, isDownwards, rowCount);
    for (const int row : rows) {
        const QModelIndex index = model->index(row, DuplicatedFilesTableModel::FilepathColumn);
        const QString path = index.data().toString();
        // A tick resets the model as well: most of them are there already.
        if (model->lacksIcon(path)) {
            paths.append(path);
        }
    }
    return paths;
}

void ThumbnailPrefetcher::take(const QString &path, const QImage &icon)
{
    if (model != nullptr) {
        model->takeIcon(path, icon);
    }
}
