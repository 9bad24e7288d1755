// SPDX-License-Identifier: MIT
#pragma once

#include <QFileSystemModel>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

/**
 * The file system as a tree of folders with tri-state check boxes. Ticking a folder ticks what is
 * loaded below it; the folders above show whether all, some or none of their loaded children are
 * ticked. A folder that the user has not ticked never becomes selected by a change on the disk.
 *
 * Lives on the GUI thread, owned by FileSystemTreeWidget. The base class loads folders on a thread
 * of its own, so children arrive after the call that asks for them.
 */
class FileSystemTreeModel final : public QFileSystemModel
{
    Q_OBJECT
    Q_DISABLE_COPY(FileSystemTreeModel)

public:
    explicit FileSystemTreeModel(QObject *parent);

    /**
     * Loads the folder and watches it. In place of the base class's function, which would leave what
     * stands beside and above its root path in the order of the disk.
     */
    QModelIndex setRootPath(const QString &path);
    /** The folder that was set last. */
    QString rootPath() const { return chosenPath; }
    /**
     * The highest ticked folders below and including the index, in tree order; an invalid index
     * takes the whole tree. Never "/" or the folder of everybody's homes: what is ticked in them
     * stands for them.
     */
    QStringList selectedFolders(const QModelIndex &index) const;
    /** Re-evaluates every folder above the index from its loaded children; ignores the state. */
    void checkStateParents(const QModelIndex &index, Qt::CheckState state);
    /** Gives the state to the loaded children, and below them to those of expanded folders. */
    void checkStateChildrens(const QModelIndex &index, Qt::CheckState state);
    /** The view has expanded the folder: its children take its state, unless that is partial. */
    void expandedIndex(const QModelIndex &index);
    void unexpandedindex(const QModelIndex &index);
    /** True when a selected folder touches one of the system's own. */
    bool isOneOfSystemFolders() const;

    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /** Returns what the base class returns, also where a check state was stored: false. */
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    void fetchMore(const QModelIndex &parent) override;

private:
    // Folders are known by the internal id of their index: rows move while the disk changes, the
    // id stays with its folder until the folder leaves the model.
    using FolderId = quintptr;

    Qt::CheckState stateOf(const QModelIndex &index) const;
    Qt::CheckState stateOfChildren(const QModelIndex &parent) const;
    void store(const QModelIndex &index, Qt::CheckState state);
    void forget(const QModelIndex &index);
    void takeBack(const QModelIndex &folder);
    bool handsDownItsTick(const QModelIndex &folder) const;
    void appendSelected(const QModelIndex &index, const QString &path, QStringList *folders) const;

    void onRowsInserted(const QModelIndex &parent, int first, int last);
    void onRowsAboutToBeRemoved(const QModelIndex &parent, int first, int last);

    QHash<FolderId, Qt::CheckState> checkStates;
    // The ids of the indexes that expandedIndex() was told of, and unexpandedindex() not since.
    QSet<FolderId> expandedIndexes;
    // Checked only because all their loaded children are, not by a tick of their own.
    QSet<FolderId> checkedByChildren;
    QSet<QString> loadingPaths;
    QString chosenPath;
};
