// SPDX-License-Identifier: MIT
#include "ui/config/FileSystemTreeModel.h"

#include "ui/config/SystemFolders.h"

#include <QDir>
#include <QFileIconProvider>

#include <algorithm>

namespace
{
// The style's pictures where the desktop has no theme; of its own accord Qt 6 would show none there.
// Never deleted: the thread that loads folders may use it until the model has gone.
QFileIconProvider *folderIcons()
{
    static auto *const icons = new QFileIconProvider; // for as long as the process lives
    return icons;
}
} // namespace

FileSystemTreeModel::FileSystemTreeModel(QObject *parent)
    : QFileSystemModel(parent)
{
    setIconProvider(folderIcons());
    connect(this, &QAbstractItemModel::rowsInserted, this, &FileSystemTreeModel::onRowsInserted);
    connect(this,
            &QAbstractItemModel::rowsAboutToBeRemoved,
            this,
            &FileSystemTreeModel::onRowsAboutToBeRemoved);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &FileSystemTreeModel::takeBack);
    connect(this, &QFileSystemModel::directoryLoaded, this, [this](const QString &path) {
        loadingPaths.remove(path);
    });
}

QModelIndex FileSystemTreeModel::setRootPath(const QString &path)
{
    const QModelIndex folder = index(path);
    if (folder.isValid()) {
        // The base class sorts what is below its root path: here, everything.
        QFileSystemModel::setRootPath(QString());
        chosenPath = QDir::cleanPath(path);
        fetchMore(folder);
    }
    return folder;
}

QStringList FileSystemTreeModel::selectedFolders(const QModelIndex &index) const
{
    QStringList folders;
    appendSelected(index, filePath(index), &folders);
    return folders;
}

void FileSystemTreeModel::checkStateParents(const QModelIndex &index, Qt::CheckState state)
{
    Q_UNUSED(state)
    for (QModelIndex folder = index.parent(); folder.isValid(); folder = folder.parent()) {
        const Qt::CheckState ofChildren = stateOfChildren(folder);
        store(folder, ofChildren);
        if (ofChildren == Qt::Checked) {
            checkedByChildren.insert(folder.internalId());
        }
    }
}

void FileSystemTreeModel::checkStateChildrens(const QModelIndex &index, Qt::CheckState state)
{
    if (stateOf(index) == Qt::PartiallyChecked) {
        return;
    }
    const int count = rowCount(index);
    for (int row = 0; row < count; ++row) {
        const QModelIndex child = this->index(row, 0, index);
        store(child, state);
        if (expandedIndexes.contains(child.internalId())) {
            checkStateChildrens(child, state);
        }
    }
}

void FileSystemTreeModel::expandedIndex(const QModelIndex &index)
{
    const Qt::CheckState state = stateOf(index);
    // A folder that is partial now stays unknown here: a later tick above it reaches the folder
    // itself but not its children.
    if (state == Qt::PartiallyChecked) {
        return;
    }
    checkStateChildrens(index, state);
    expandedIndexes.insert(index.internalId());
}

void FileSystemTreeModel::unexpandedindex(const QModelIndex &index)
{
    expandedIndexes.remove(index.internalId());
}

bool FileSystemTreeModel::isOneOfSystemFolders() const
{
    const QStringList folders = selectedFolders(QModelIndex());
    return std::any_of(folders.cbegin(), folders.cend(), SystemFolders::touches);
}

int FileSystemTreeModel::columnCount(const QModelIndex &parent) const
{
    Q_UNUSED(parent)
    return 1;
}

Qt::ItemFlags FileSystemTreeModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags ofBase = QFileSystemModel::flags(index);
    return index.isValid() ? ofBase | Qt::ItemIsUserCheckable : ofBase;
}

QVariant FileSystemTreeModel::data(const QModelIndex &index, int role) const
{
    if (role == Qt::CheckStateRole && index.column() == 0) {
        return static_cast<int>(stateOf(index));
    }
    return QFileSystemModel::data(index, role);
}

bool FileSystemTreeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const bool result = QFileSystemModel::setData(index, value, role);
    if (role == Qt::CheckStateRole) {
        const auto state = static_cast<Qt::CheckState>(value.toInt());
        store(index, state);
        checkStateParents(index, state);
        checkStateChildrens(index, state);
    }
    return result;
}

void FileSystemTreeModel::fetchMore(const QModelIndex &parent)
{
    if (canFetchMore(parent)) {
        loadingPaths.insert(filePath(parent));
    }
    QFileSystemModel::fetchMore(parent);
}

Qt::CheckState FileSystemTreeModel::stateOf(const QModelIndex &index) const
{
    return index.column() == 0 ? checkStates.value(index.internalId(), Qt::Unchecked)
                               : Qt::Unchecked;
}

Qt::CheckState FileSystemTreeModel::stateOfChildren(const QModelIndex &parent) const
{
    const int count = rowCount(parent);
    int checked = 0;
    for (int row = 0; row < count; ++row) {
        const Qt::CheckState state = stateOf(index(row, 0, parent));
        if (state == Qt::Checked) {
            ++checked;
        }
        const bool isMixed = checked > 0 && checked <= row;
        if (state == Qt::PartiallyChecked || isMixed) {
            return Qt::PartiallyChecked;
        }
    }
    return checked > 0 ? Qt::Checked : Qt::Unchecked;
}

void FileSystemTreeModel::store(const QModelIndex &index, Qt::CheckState state)
{
    if (index.column() == 0) {
        checkStates.insert(index.internalId(), state);
        checkedByChildren.remove(index.internalId());
    }
}

void FileSystemTreeModel::forget(const QModelIndex &index)
{
    checkStates.remove(index.internalId());
    expandedIndexes.remove(index.internalId());
    checkedByChildren.remove(index.internalId());
    const int count = rowCount(index);
    for (int row = 0; row < count; ++row) {
        forget(this->index(row, 0, index));
    }
}

// Children have come or gone: a folder that is marked only because of its children loses what they
// no longer bear out, and so do the folders above it. None of them gains a tick.
void FileSystemTreeModel::takeBack(const QModelIndex &folder)
{
    for (QModelIndex above = folder; above.isValid(); above = above.parent()) {
        const Qt::CheckState state = stateOf(above);
        const bool followsChildren =
            state == Qt::PartiallyChecked || checkedByChildren.contains(above.internalId());
        const Qt::CheckState ofChildren = followsChildren ? stateOfChildren(above) : state;
        if (ofChildren == state || ofChildren == Qt::Checked) {
            return;
        }
        store(above, ofChildren);
    }
}

// The view reports an expansion before the children of a folder are loaded. Those that its own
// first loading brings take the tick of the user; those that are made on the disk later do not.
bool FileSystemTreeModel::handsDownItsTick(const QModelIndex &folder) const
{
    const FolderId id = folder.internalId();
    return stateOf(folder) == Qt::Checked && !checkedByChildren.contains(id)
        && expandedIndexes.contains(id) && loadingPaths.contains(filePath(folder));
}

// The path is built on the way down: asking the base class for it costs a search among the
// siblings at each level.
void FileSystemTreeModel::appendSelected(const QModelIndex &index,
                                         const QString &path,
                                         QStringList *folders) const
{
    const Qt::CheckState state = stateOf(index);
    if (state == Qt::Checked && !SystemFolders::isExcludedRoot(path)) {
        folders->append(path);
        return;
    }
    // What the whole tree hangs on has no box.
    if (state == Qt::Unchecked && index.isValid()) {
        return;
    }
    const QString prefix = path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
    const int count = rowCount(index);
    for (int row = 0; row < count; ++row) {
        const QModelIndex child = this->index(row, 0, index);
        if (stateOf(child) != Qt::Unchecked) {
            const QString childPath = index.isValid()
                ? prefix + QFileSystemModel::data(child, FileNameRole).toString()
                : filePath(child);
            appendSelected(child, childPath, folders);
        }
    }
}

void FileSystemTreeModel::onRowsInserted(const QModelIndex &parent, int first, int last)
{
    const bool areTicked = handsDownItsTick(parent);
    for (int row = first; row <= last; ++row) {
        const QModelIndex child = index(row, 0, parent);
        // A new folder may get the id of one that has left the model without a word.
        forget(child);
        if (areTicked) {
            store(child, Qt::Checked);
        }
    }
    if (checkedByChildren.contains(parent.internalId())) {
        takeBack(parent);
    }
}

void FileSystemTreeModel::onRowsAboutToBeRemoved(const QModelIndex &parent, int first, int last)
{
    for (int row = first; row <= last; ++row) {
        forget(index(row, 0, parent));
    }
}
