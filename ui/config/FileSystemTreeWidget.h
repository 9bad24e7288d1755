// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QWidget>

class FileSystemTreeModel;
class QModelIndex;
class QStackedWidget;
class QTreeView;

/**
 * The left half of the configuration page: a button that asks for a first folder, then the tree of
 * all folders with check boxes, and below it a warning while a system folder is selected.
 *
 * Lives on the GUI thread, owned by ScanConfigurationWidget. Nothing leads back to the button.
 */
class FileSystemTreeWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(FileSystemTreeWidget)

public:
    explicit FileSystemTreeWidget(QWidget *parent);

    /** The highest ticked folders in tree order; empty before a folder was chosen. */
    QStringList selectedFolders() const;
    /** Repaints the visible rows and shows or hides the warning. */
    void updateViewport();

public slots:
    void onItemClicked(const QModelIndex &index);
    void onItemExpanded(const QModelIndex &index);
    void onItemUnexpanded(const QModelIndex &index);
    /** Asks for a folder and shows the tree at it; a cancelled dialog changes nothing. */
    void getRootFolder();

private:
    QWidget *createTreePage();
    QWidget *createWarning();
    QWidget *createPickingPage();
    FileSystemTreeModel *folderModel() const;
    void showFolder(const QModelIndex &folder);

    QTreeView *treeView = nullptr;
    QWidget *warningWidget = nullptr;
    QStackedWidget *stackedWidget = nullptr;
};
