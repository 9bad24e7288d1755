// SPDX-License-Identifier: MIT
#include "ui/config/FileSystemTreeWidget.h"

#include "ui/Picture.h"
#include "ui/config/FileSystemTreeModel.h"

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QPersistentModelIndex>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTreeView>
#include <QVBoxLayout>

#include <functional>
#include <utility>

namespace
{
constexpr int minimumWidthPixels = 480;
constexpr int warningIconWidthPixels = 66;
constexpr int warningIconHeightPixels = 64;
constexpr int folderPictureHeightPixels = 256;
constexpr int treePage = 0;
constexpr int pickingPage = 1;

/**
 * Says when a check box is toggled by a key, which emits no clicked(). Folders that are sorted while
 * more are loaded move no row under the user's eyes: the current one, or else the first, stays.
 */
class FolderTreeView final : public QTreeView
{
public:
    explicit FolderTreeView(std::function<void()> afterToggle)
        : onToggle(std::move(afterToggle))
    {
    }

    void setModel(QAbstractItemModel *model) override
    {
        // Before the view hears of the change, and after.
        connect(model, &QAbstractItemModel::layoutAboutToBeChanged, this, [this] {
            rememberRow();
        });
        QTreeView::setModel(model);
        connect(model, &QAbstractItemModel::layoutChanged, this, [this] { restoreRow(); });
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        QTreeView::keyPressEvent(event);
        if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Select) {
            onToggle();
        }
    }

private:
    void rememberRow()
    {
        const QRect rect = visualRect(currentIndex());
        const bool isCurrentShown = !rect.isEmpty() && viewport()->rect().intersects(rect);
        row = isCurrentShown ? currentIndex() : indexAt(QPoint(0, 0));
        top = visualRect(row).top();
    }

    void restoreRow()
    {
        const int height = rowHeight(row);
        if (row.isValid() && height > 0) {
            executeDelayedItemsLayout();
            // Scrolled by rows, all of one height.
            const int rows = (visualRect(row).top() - top) / height;
            verticalScrollBar()->setValue(verticalScrollBar()->value() + rows);
        }
    }

    std::function<void()> onToggle;
    QPersistentModelIndex row;
    int top = 0;
};
} // namespace

FileSystemTreeWidget::FileSystemTreeWidget(QWidget *parent)
    : QWidget(parent)
{
    setMinimumWidth(minimumWidthPixels);
    stackedWidget = new QStackedWidget;
    stackedWidget->addWidget(createTreePage());
    stackedWidget->addWidget(createPickingPage());
    stackedWidget->setCurrentIndex(pickingPage);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(stackedWidget);
}

QStringList FileSystemTreeWidget::selectedFolders() const
{
    const FileSystemTreeModel *const model = folderModel();
    return model == nullptr ? QStringList() : model->selectedFolders(QModelIndex());
}

void FileSystemTreeWidget::updateViewport()
{
    FileSystemTreeModel *const model = folderModel();
    if (model == nullptr) {
        return;
    }
    const QModelIndex first = treeView->indexAt(QPoint(0, 0));
    const QModelIndex last =
        treeView->indexAt(QPoint(treeView->width() - 1, treeView->height() - 1));
    emit model->dataChanged(first, last);
    warningWidget->setVisible(model->isOneOfSystemFolders());
}

void FileSystemTreeWidget::onItemClicked(const QModelIndex &index)
{
    if (index.column() == 0) {
        updateViewport();
    }
}

void FileSystemTreeWidget::onItemExpanded(const QModelIndex &index)
{
    if (FileSystemTreeModel *const model = folderModel()) {
        model->expandedIndex(index);
    }
    updateViewport();
}

void FileSystemTreeWidget::onItemUnexpanded(const QModelIndex &index)
{
    if (FileSystemTreeModel *const model = folderModel()) {
        model->unexpandedindex(index);
    }
    updateViewport();
}

void FileSystemTreeWidget::getRootFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(
        this,
        tr("Choose Directory"),
        QDir::homePath(),
        QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
    // The toolkit's dialog also offers what is compiled into the program, as ":/".
    if (folder.isEmpty() || folder.startsWith(QLatin1Char(':'))) {
        return;
    }
    auto *const model = new FileSystemTreeModel(this);
    model->setFilter(QDir::AllDirs | QDir::NoDot | QDir::NoDotDot);
    model->setRootPath(folder);
    model->setReadOnly(true);
    treeView->setModel(model);

    const QModelIndex index = model->index(folder);
    showFolder(index);
    for (QModelIndex above = index; model->canFetchMore(above); above = above.parent()) {
        model->fetchMore(above);
    }
    stackedWidget->setCurrentIndex(treePage);
    treeView->setFocus();
    updateViewport();
}

QWidget *FileSystemTreeWidget::createTreePage()
{
    auto *const page = new QWidget;
    auto *const caption = new QLabel(QStringLiteral("Select folders to scan:"));
    treeView = new FolderTreeView([this] { updateViewport(); });
    treeView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    // All rows show an icon and a check box; measuring one row spares the view the others.
    treeView->setUniformRowHeights(true);
    caption->setBuddy(treeView);
    connect(treeView, SIGNAL(clicked(QModelIndex)), this, SLOT(onItemClicked(QModelIndex)));
    connect(treeView, SIGNAL(expanded(QModelIndex)), this, SLOT(onItemExpanded(QModelIndex)));
    connect(treeView, SIGNAL(collapsed(QModelIndex)), this, SLOT(onItemUnexpanded(QModelIndex)));
    warningWidget = createWarning();

    auto *const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(caption);
    layout->addWidget(treeView);
    layout->addWidget(warningWidget);
    return page;
}

QWidget *FileSystemTreeWidget::createWarning()
{
    auto *const row = new QWidget;
    auto *const icon = new QLabel;
    icon->setFixedWidth(warningIconWidthPixels);
    icon->setAlignment(Qt::AlignCenter);
    icon->setPixmap(Picture::scaledToHeight(QStringLiteral(":/content/warning.png"),
                                            warningIconHeightPixels,
                                            devicePixelRatioF()));
    auto *const text = new QLabel(
        QStringLiteral("<b>You have selected one of the system directories.</b><br>We recommend "
                       "that you do not include the search for duplicates in these folders."));
    text->setWordWrap(true);

    auto *const layout = new QHBoxLayout(row);
    layout->addWidget(icon);
    layout->addWidget(text);
    row->hide();
    return row;
}

QWidget *FileSystemTreeWidget::createPickingPage()
{
    auto *const page = new QWidget;
    auto *const picture = new QLabel;
    picture->setAlignment(Qt::AlignCenter);
    picture->setPixmap(Picture::scaledToHeight(QStringLiteral(":/content/folder.png"),
                                               folderPictureHeightPixels,
                                               devicePixelRatioF()));
    auto *const button = new QPushButton(tr("Select folder..."));
    connect(button, SIGNAL(clicked()), this, SLOT(getRootFolder()));

    auto *const layout = new QVBoxLayout(page);
    layout->addWidget(picture);
    layout->addStretch();
    layout->addWidget(button);
    layout->addStretch();
    return page;
}

FileSystemTreeModel *FileSystemTreeWidget::folderModel() const
{
    return qobject_cast<FileSystemTreeModel *>(treeView->model());
}

void FileSystemTreeWidget::showFolder(const QModelIndex &folder)
{
    treeView->expand(folder);
    treeView->scrollTo(folder, QAbstractItemView::EnsureVisible);
    treeView->selectionModel()->select(folder,
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
    treeView->setCurrentIndex(folder);
}
