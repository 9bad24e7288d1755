// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include <memory>

class DuplicatedFilesTableModel;
class QTableView;
class QThreadPool;

/**
 * Decodes the icons of the rows that come into view next, so that the model has them when it is
 * asked: first those ahead in the direction of the scrolling, then those behind, a few pages in all.
 *
 * Lives on the GUI thread and belongs to its view. The decoding runs on a few threads of its own, a
 * picture each, which touch neither the view nor the model: what they make comes back by a queued
 * call. Going away waits for them half a second at most; one that hangs in a read is left behind.
 */
class ThumbnailPrefetcher final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ThumbnailPrefetcher)

public:
    /** Pictures that are decoded at a time, and with it the memory: each obeys PictureFile's limits. */
    static constexpr int maxThreads = 2;
    static constexpr int pagesAhead = 3;
    static constexpr int pagesBehind = 1;
    /** In all, however many a page holds. */
    static constexpr int maxRows = 400;

    /** The model is the one that the view shows. */
    ThumbnailPrefetcher(QTableView *tableView, DuplicatedFilesTableModel *tableModel);
    ~ThumbnailPrefetcher() override;

    /** The rows from first to last are in view: those to prepare, the most urgent first. */
    static QVector<int> rowsToPrepare(int first, int last, bool isDownwards, int rowCount);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void onScrolled(int value);
    void onPauseEnded();

private:
    struct Mailbox;
    class Worker;

    QStringList pathsToPrepare() const;
    void take(const QString &path, const QImage &icon);

    QTableView *view;
    QPointer<DuplicatedFilesTableModel> model;
    std::unique_ptr<QThreadPool> threads;
    std::shared_ptr<Mailbox> mailbox;
    QTimer pause;
    int lastScrollValue = 0;
    bool isDownwards = true;
};
