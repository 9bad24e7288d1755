// SPDX-License-Identifier: MIT
#pragma once

#include "engine/FileSystemKind.h"
#include "engine/GoOn.h"

#include <QByteArray>
#include <QString>
#include <QVector>

class FileMasks;

/** Lists a folder as QDir::entryInfoList() does, without a QFileInfo for each entry. */
namespace FolderListing
{
struct File {
    QString name;
    qint64 size; // bytes; 0 when it could not be told
};

struct Folder {
    QString name;
    bool isLink;
};

struct Entries {
    QVector<File> files;
    QVector<Folder> folders;
    FileSystemKind fileSystem = FileSystemKind::Storage;
    /** Why the folder could not be read to its end; empty if it could. */
    QString error;
    /** Names of files and folders that are no valid UTF-8. */
    QVector<QByteArray> unlisted;
};

/**
 * The names in a folder, hidden ones left out unless they are asked for: the regular files that
 * match the masks, and the folders, among which are links to folders. Like the toolkit it also counts links to devices, to
 * FIFOs and to sockets among the folders, and leaves out names that are no valid UTF-8. A folder
 * that cannot be read is empty, with its reason; a link to no folder has none.
 *
 * Both lists are sorted by name ignoring case, names that differ in case alone by their characters.
 * The toolkit sorts so when it is asked for QDir::NoSort, which stands for the sorting of the QDir.
 *
 * Asks at each name whether to go on; without leave the rest is left out. Usable on any thread.
 */
Entries list(const QString &folder,
             const FileMasks &masks,
             const GoOn &goOn,
             bool takesHidden = false);

/** The absolute path without links, of a folder that exists; null when it cannot be told. */
QString canonicalPath(const QString &folder);

/** Whether two folders lie on one file system; false when it cannot be told. */
bool areOnOneFileSystem(const QString &folder, const QString &other);

/** The sorting of list(), for its implementations. */
void sort(Entries *entries);
} // namespace FolderListing
