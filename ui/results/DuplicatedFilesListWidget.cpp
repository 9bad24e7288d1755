// SPDX-License-Identifier: MIT
#include "ui/results/DuplicatedFilesListWidget.h"

#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/LocalText.h"
#include "ui/Picture.h"
#include "ui/progress/ClickableLabel.h"
#include "ui/results/Deletion.h"
#include "ui/results/DeletionPlan.h"
#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/FilepathDelegate.h"
#include "ui/results/LeftFiles.h"
#include "ui/results/ListFile.h"
#include "ui/results/MovingScreen.h"
#include "ui/results/ResultsTableView.h"
#include "ui/results/ThumbnailPrefetcher.h"
#include "ui/results/Trash.h"

#include <QAction>
#include <QCursor>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QTableView>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include <memory>

namespace
{
constexpr int configurationPage = 0;
constexpr int actionPictureHeight = 24;
constexpr int navigationPictureHeight = 48;
constexpr qreal rowHeightFactor = 1.2;
constexpr qreal groupWidthFactor = 1.5;

QString selectAllText()
{
    return QStringLiteral("Select All");
}

QString unselectAllText()
{
    return QStringLiteral("Unselect All");
}

QString saveListText()
{
    return QStringLiteral("Save List");
}

QString openFileText()
{
    return QStringLiteral("Open File");
}

QString openFileLocationText()
{
    return QStringLiteral("Open File Location");
}

QString deleteCurrentFileText()
{
    return QStringLiteral("Delete Current File");
}

// A menu hides before it triggers, and what it triggers may open a box. In the loop of that box the
// menu must not go, as its own code is still running.
void deleteWhenDismissed(QMenu *menu)
{
    const auto isChosen = std::make_shared<bool>(false);
    QObject::connect(menu, &QMenu::triggered, menu, [isChosen] { *isChosen = true; });
    QObject::connect(menu, &QMenu::aboutToHide, menu, [menu, isChosen] {
        QTimer::singleShot(0, menu, [menu, isChosen] {
            if (!*isChosen) {
                menu->deleteLater();
            }
        });
    });
}

DeletionPlan::Senses sensesOfTheDisk()
{
    return {FileState::of, FileState::haveSameBytes, Trash::holds};
}
} // namespace

DuplicatedFilesListWidget::DuplicatedFilesListWidget(Model *eventHub, MainWindow *window)
    : QWidget(window)
    , model(eventHub)
    , mainWindow(window)
{
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(createActionRow());
    createTable();
    layout->addWidget(tableView);
    layout->addLayout(createNavigationRow());
    connect(model,
            SIGNAL(modelEvent(const ModelEvent*)), this, SLOT(onModelEvent(const ModelEvent*)));
}

void DuplicatedFilesListWidget::deleteSelectedFiles()
{
    scanConfigurationButton->setEnabled(false);
    const LeftFiles left = moveTickedFiles();
    scanConfigurationButton->setEnabled(true);
    // The rows of the files that have gone are red from now on.
    tableView->viewport()->update();
    showBox(QMessageBox::Information,
            QStringLiteral("Complete!"),
            QStringLiteral("Duplicated files was deleted!"),
            Qt::PlainText,
            left.summary(),
            left.list());
}

void DuplicatedFilesListWidget::saveList()
{
    const QString path = QFileDialog::getSaveFileName(this,
                                                      QStringLiteral("Save File"),
                                                      QDir::homePath(),
                                                      QStringLiteral("Text files (*.txt *.csv)"));
    if (path.isEmpty()) {
        return;
    }
    QByteArray list;
    for (int row = 0; row < tableModel->rowCount(); ++row) {
        list.append(LocalText::encode(lineOfRow(row)));
    }
    if (ListFile::write(path, list)) {
        showBox(QMessageBox::Information,
                QStringLiteral("File saved"),
                QStringLiteral("File saving complete!"));
    }
}

bool DuplicatedFilesListWidget::moveFileToTrash(const QString &path,
                                                const FileState *seen,
                                                const std::function<bool()> &mayStay)
{
    return Trash::moveFile(path, seen, mayStay);
}

void DuplicatedFilesListWidget::removeFile(const QString &path)
{
    const DeletionPlan plan(shownGroups, {}, findings, sensesOfTheDisk());
    const auto answer =
        showBox(QMessageBox::Question,
                QStringLiteral("Delete Duplicated Files"),
                QStringLiteral("Start deleting %1 file. Are you sure?").arg(path),
                Qt::PlainText,
                plan.isLastOfItsContent(path)
                    ? QStringLiteral("No other copy of this file is left among those found.")
                    : QString());
    if (answer == QMessageBox::Yes) {
        QFile::remove(path);
        tableView->viewport()->update();
    }
}

void DuplicatedFilesListWidget::onModelEvent(const ModelEvent *modelEvent)
{
    if (modelEvent->type != TypeFindDuplicatedFilesFinishedEvent) {
        return;
    }
    const auto *const event = static_cast<const FindDuplicatedFilesFinishedEvent *>(modelEvent);
    // Kept beside the rows, because the next scan replaces them before it hands its own groups over.
    shownGroups = event->duplicatedFiles;
    findings = ScanFindings(*ScanFindings::instance());
    tableModel->setDuplicatedFilesInList(event->duplicatedFiles);
    tableView->reset();
    areColumnsOutdated = true;
    if (isVisible()) {
        fitColumns();
    }
}

// Looks at up to a thousand rows, so the end of a scan does not wait for it.
void DuplicatedFilesListWidget::fitColumns()
{
    areColumnsOutdated = false;
    tableView->resizeColumnToContents(DuplicatedFilesTableModel::SizeColumn);
    // The last, because any other column that changes lets it fill the view.
    tableView->resizeColumnToContents(DuplicatedFilesTableModel::FilepathColumn);
}

void DuplicatedFilesListWidget::onModelIndexClicked(QModelIndex index)
{
    if (index.column() == DuplicatedFilesTableModel::CheckColumn) {
        toggleRow(index);
    }
}

void DuplicatedFilesListWidget::onButtonClicked()
{
    const QObject *const button = sender();
    if (button == selectAllButton) {
        tableModel->setCheckStateAll(true);
    } else if (button == unselectAllButton) {
        tableModel->setCheckStateAll(false);
    } else if (button == saveListButton) {
        saveList();
    } else if (button == scanConfigurationButton) {
        mainWindow->setCurrentWidget(configurationPage);
    } else if (button == deleteSelectedFilesButton) {
        askToDeleteSelectedFiles();
    }
}

void DuplicatedFilesListWidget::onCustomContextMenuRequested(const QPoint &pos)
{
    Q_UNUSED(pos)
    const QModelIndex current = tableView->currentIndex();
    if (!current.isValid()) {
        return;
    }
    contextRow = current.row();
    const QModelIndex cell =
        tableModel->index(contextRow, DuplicatedFilesTableModel::FilepathColumn);
    auto *const menu = new QMenu(this);
    deleteWhenDismissed(menu);
    connect(menu, SIGNAL(triggered(QAction*)), this, SLOT(onActionTriggered(QAction*)));
    connect(menu, SIGNAL(triggered(QAction*)), menu, SLOT(deleteLater()));
    if (QFileInfo::exists(cell.data().toString())) {
        menu->addAction(openFileText());
        menu->addAction(openFileLocationText());
        menu->addAction(deleteCurrentFileText());
        menu->addSeparator();
    }
    menu->addAction(saveListText());
    menu->addSeparator();
    menu->addAction(selectAllText());
    menu->addAction(unselectAllText());
    menu->popup(QCursor::pos());
}

void DuplicatedFilesListWidget::onActionTriggered(QAction *action)
{
    const QModelIndex cell =
        tableModel->index(contextRow, DuplicatedFilesTableModel::FilepathColumn);
    if (!cell.isValid()) {
        return;
    }
    const QString path = cell.data().toString();
    // Some desktops put access keys into the texts of a menu.
    const QString text = action->text().remove(QLatin1Char('&'));
    // The addresses are made of the bare path, so a "#" or a "%" in it is read as in any address.
    if (text == openFileText()) {
        QDesktopServices::openUrl(QUrl(QFileInfo(path).absoluteFilePath()));
    } else if (text == openFileLocationText()) {
        QDesktopServices::openUrl(QUrl(QFileInfo(path).absolutePath()));
    } else if (text == deleteCurrentFileText()) {
        removeFile(path);
    } else if (text == saveListText()) {
        saveList();
    } else if (text == selectAllText()) {
        tableModel->setCheckStateAll(true);
    } else if (text == unselectAllText()) {
        tableModel->setCheckStateAll(false);
    }
}

void DuplicatedFilesListWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fillView();
}

void DuplicatedFilesListWidget::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (areColumnsOutdated) {
        fitColumns();
    }
    fillView();
    tableView->setFocus();
}

bool DuplicatedFilesListWidget::eventFilter(QObject *watched, QEvent *event)
{
    // The vertical scroll bar comes and goes inside the view, which keeps its own size.
    if (watched == tableView->viewport() && event->type() == QEvent::Resize) {
        fillView();
    }
    if (watched == tableView && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space
        && tableView->currentIndex().isValid()) {
        toggleRow(tableView->currentIndex());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

QHBoxLayout *DuplicatedFilesListWidget::createActionRow()
{
    const auto create = [this](const QString &text, const QString &picture) {
        return createButton(text, picture, actionPictureHeight, QFont::Normal);
    };
    selectAllButton = create(selectAllText(), QStringLiteral(":/content/actionCheck.png"));
    unselectAllButton = create(unselectAllText(), QStringLiteral(":/content/actionUncheck.png"));
    saveListButton = create(saveListText(), QStringLiteral(":/content/actionSave.png"));
    deleteSelectedFilesButton = create(QStringLiteral("Delete Selected Files"),
                                       QStringLiteral(":/content/actionTrash.png"));
    auto *const row = new QHBoxLayout;
    row->addWidget(selectAllButton);
    row->addWidget(unselectAllButton);
    row->addStretch();
    row->addWidget(saveListButton);
    row->addWidget(deleteSelectedFilesButton);
    return row;
}

QHBoxLayout *DuplicatedFilesListWidget::createNavigationRow()
{
    scanConfigurationButton = createButton(QStringLiteral("Scan Configuration"),
                                           QStringLiteral(":/content/arrow_prev.png"),
                                           navigationPictureHeight,
                                           QFont::Bold);
    auto *const row = new QHBoxLayout;
    row->addWidget(scanConfigurationButton);
    row->addStretch();
    return row;
}

void DuplicatedFilesListWidget::createTable()
{
    tableModel = new DuplicatedFilesTableModel;
    tableModel->setParent(this);
    tableView = new ResultsTableView(this);
    tableView->setTextElideMode(Qt::ElideMiddle);
    tableView->setModel(tableModel);
    tableView->setItemDelegateForColumn(DuplicatedFilesTableModel::FilepathColumn,
                                        new FilepathDelegate(tableView));
    tableView->setAccessibleName(QStringLiteral("Duplicate files"));
    QHeaderView *const rowHeader = tableView->verticalHeader();
    const int rowHeight = static_cast<int>(rowHeader->defaultSectionSize() * rowHeightFactor);
    rowHeader->hide();
    rowHeader->setDefaultSectionSize(rowHeight);
    tableView->setContextMenuPolicy(Qt::CustomContextMenu);
    // clang-format off
    connect(tableView, SIGNAL(customContextMenuRequested(QPoint)),
            this, SLOT(onCustomContextMenuRequested(QPoint)));
    // clang-format on
    tableView->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    tableView->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    connect(tableView, SIGNAL(clicked(QModelIndex)), this, SLOT(onModelIndexClicked(QModelIndex)));
    tableView->horizontalHeader()->setSectionResizeMode(DuplicatedFilesTableModel::CheckColumn,
                                                        QHeaderView::Fixed);
    // By default no column is narrower than the widest letter of the font.
    tableView->horizontalHeader()->setMinimumSectionSize(rowHeight);
    tableView->setColumnWidth(DuplicatedFilesTableModel::CheckColumn, rowHeight);
    tableView->setColumnWidth(DuplicatedFilesTableModel::GroupColumn,
                              static_cast<int>(rowHeight * groupWidthFactor));
    fitColumns();
    tableView->setSelectionMode(QAbstractItemView::SingleSelection);
    tableView->setSelectionBehavior(QAbstractItemView::SelectRows);
    // There is nothing to edit in a cell, so Tab goes on to the next control.
    tableView->setTabKeyNavigation(false);
    tableView->installEventFilter(this);
    tableView->viewport()->installEventFilter(this);
    new ThumbnailPrefetcher(tableView, tableModel);
    connect(tableView->horizontalHeader(),
            &QHeaderView::sectionResized,
            this,
            &DuplicatedFilesListWidget::onSectionResized);
}

ClickableLabel *DuplicatedFilesListWidget::createButton(const QString &text,
                                                        const QString &picture,
                                                        int height,
                                                        QFont::Weight weight)
{
    QFont font;
    font.setWeight(weight);
    auto *const button = new ClickableLabel(text, this);
    button->setPixmap(Picture::scaledToHeight(picture, height, devicePixelRatioF()));
    button->setTextFont(font);
    button->textColor = QColor(QStringLiteral("#696969"));
    connect(button, SIGNAL(clicked()), this, SLOT(onButtonClicked()));
    return button;
}

void DuplicatedFilesListWidget::fillView()
{
    const int columns = tableView->horizontalHeader()->length();
    const int missing = tableView->viewport()->width() + 2 * tableView->frameWidth() - columns;
    // What was widened here makes room for the scroll bar; other widths are left alone.
    if (missing > 0 || filledWidth == tableView->width()) {
        const int filepath = DuplicatedFilesTableModel::FilepathColumn;
        tableView->setColumnWidth(filepath, tableView->columnWidth(filepath) + missing);
        filledWidth = tableView->width();
    }
    offerScrolling();
}

void DuplicatedFilesListWidget::onSectionResized()
{
    filledWidth = noWidth;
    offerScrolling();
}

void DuplicatedFilesListWidget::offerScrolling()
{
    const int hidden = tableView->horizontalHeader()->length() - tableView->viewport()->width();
    tableView->setHorizontalScrollBarPolicy(
        hidden > 2 * tableView->frameWidth() ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

// Ticking resets the model, and with it the current row.
void DuplicatedFilesListWidget::toggleRow(const QModelIndex &index)
{
    const int row = index.row();
    tableModel->setCheckState(index);
    tableView->selectRow(row);
}

void DuplicatedFilesListWidget::askToDeleteSelectedFiles()
{
    showBox(QMessageBox::Warning,
            QStringLiteral("Warning"),
            QStringLiteral("<b>Warning!<br><br>Deleting files may cause some applications to "
                           "crash.<br></b><br>Before deleting, we recommend to you check the list "
                           "of files to be deleted."),
            Qt::RichText);
    const auto count = tableModel->selectedFiles().size();
    const auto answer = showBox(
        QMessageBox::Question,
        QStringLiteral("Delete Duplicate Files"),
        QStringLiteral("Start moving %1 duplicate files to trash. Are you sure?").arg(count));
    if (answer == QMessageBox::Yes) {
        MovingScreen(tableView).letBoxesGo();
        deleteSelectedFiles();
    }
}

LeftFiles DuplicatedFilesListWidget::moveTickedFiles()
{
    MovingScreen screen(tableView);
    const QStringList paths = tableModel->selectedFiles();
    DeletionPlan plan(shownGroups, paths, findings, sensesOfTheDisk());
    const auto move =
        [this](const QString &path, const FileState *seen, const std::function<bool()> &mayStay) {
            return moveFileToTrash(path, seen, mayStay);
        };
    return Deletion::run(&plan, paths, move, [&screen] { screen.showProgress(); });
}

QMessageBox::StandardButton DuplicatedFilesListWidget::showBox(QMessageBox::Icon icon,
                                                               const QString &title,
                                                               const QString &text,
                                                               Qt::TextFormat format,
                                                               const QString &more,
                                                               const QString &details)
{
    const bool isQuestion = icon == QMessageBox::Question;
    QMessageBox box(icon,
                    title,
                    text,
                    isQuestion ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok,
                    this);
    box.setTextFormat(format);
    box.setInformativeText(more);
    box.setDetailedText(details);
    box.setDefaultButton(isQuestion ? QMessageBox::No : QMessageBox::Ok);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

// One field after the other: a path with a place marker in it takes the size there.
QString DuplicatedFilesListWidget::lineOfRow(int row) const
{
    const auto field = [this, row](int column) {
        return tableModel->index(row, column).data().toString();
    };
    return QStringLiteral("%1;%2;%3\r\n")
        .arg(field(DuplicatedFilesTableModel::GroupColumn))
        .arg(field(DuplicatedFilesTableModel::FilepathColumn))
        .arg(field(DuplicatedFilesTableModel::SizeColumn));
}
