// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanFindings.h"

#include <QFont>
#include <QMessageBox>
#include <QModelIndex>
#include <QWidget>

#include <functional>

struct FileState;

class ClickableLabel;
class DuplicatedFilesTableModel;
class LeftFiles;
class MainWindow;
class Model;
class ModelEvent;
class QAction;
class QHBoxLayout;
class QMenu;
class QTableView;

/**
 * The page of results: the table of duplicates, the buttons that act on the ticked files, and the
 * way back to the configuration of a scan.
 *
 * Lives on the GUI thread as long as the main window, its parent, which like the event hub must
 * outlive it. It shows what the last scan has found until the next one is done.
 */
class DuplicatedFilesListWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(DuplicatedFilesListWidget)

public:
    DuplicatedFilesListWidget(Model *eventHub, MainWindow *window);

    /**
     * Moves the ticked files to the trash, without events in between, and says that it is done
     * whatever became of them, and which ones it has left because no other copy of them would be.
     * Rows and ticks stay; the row of a file that has gone turns red.
     */
    void deleteSelectedFiles();
    /** Asks for a file and writes one line a row to it; says so only if all of it is written. */
    void saveList();
    /**
     * True if the file is in the trash now, false if it is still in its place, as any other one is
     * than the one that was seen there, if that is told.
     */
    bool moveFileToTrash(const QString &path,
                         const FileState *seen = nullptr,
                         const std::function<bool()> &mayStay = nullptr);
    /** Asks, and says so if no other copy of it is known, then deletes for good. */
    void removeFile(const QString &path);

public slots:
    void onModelEvent(const ModelEvent *modelEvent);
    void onModelIndexClicked(QModelIndex index);
    void onButtonClicked();
    void onCustomContextMenuRequested(const QPoint &pos);
    void onActionTriggered(QAction *action);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    /** The space bar in the table toggles the tick of the current row; the columns follow its size. */
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QHBoxLayout *createActionRow();
    QHBoxLayout *createNavigationRow();
    void createTable();
    ClickableLabel *createButton(const QString &text,
                                 const QString &picture,
                                 int height,
                                 QFont::Weight weight);
    void fitColumns();
    /** Widens the paths until the columns fill the view beside its scroll bar. */
    void fillView();
    /** No horizontal scroll bar for the few pixels that lie under the view's frame. */
    void offerScrolling();
    /** By whomever: until the next time that they fill the view, the columns are left alone. */
    void onSectionResized();
    void toggleRow(const QModelIndex &index);
    void askToDeleteSelectedFiles();
    LeftFiles moveTickedFiles();
    /** The text is plain unless it is announced as rich; the answer is No for a closed question. */
    QMessageBox::StandardButton showBox(QMessageBox::Icon icon,
                                        const QString &title,
                                        const QString &text,
                                        Qt::TextFormat format = Qt::PlainText,
                                        const QString &more = QString(),
                                        const QString &details = QString());
    QString lineOfRow(int row) const;

    Model *model;
    MainWindow *mainWindow;
    QTableView *tableView = nullptr;
    DuplicatedFilesTableModel *tableModel = nullptr;
    ClickableLabel *selectAllButton = nullptr;
    ClickableLabel *unselectAllButton = nullptr;
    ClickableLabel *saveListButton = nullptr;
    ClickableLabel *deleteSelectedFilesButton = nullptr;
    ClickableLabel *scanConfigurationButton = nullptr;
    /** The row that the open context menu is about. */
    qint32 contextRow = -1;
    bool areColumnsOutdated = false;
    /** What is shown, and what the scan knew when it handed that over. */
    QList<QStringList> shownGroups;
    ScanFindings findings;
    static constexpr int noWidth = -1;
    /** The view's width for which the columns were widened, while nobody has resized one since. */
    int filledWidth = noWidth;
};
