// SPDX-License-Identifier: MIT
#include "engine/FileMasks.h"
#include "engine/FolderListing.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

FolderListing::Entries FolderListing::list(const QString &folder,
                                           const FileMasks &masks,
                                           const GoOn &goOn,
                                           bool takesHidden)
{
    const QDir::Filters hidden = takesHidden ? QDir::Hidden : QDir::Filters();
    const QDir dir(folder);
    Entries entries;
    if (!dir.isReadable() && QFileInfo(folder).isDir()) {
        entries.error = QStringLiteral("cannot be read");
    }
    const QFileInfoList files =
        dir.entryInfoList(QDir::Files | QDir::NoSymLinks | QDir::NoDotAndDotDot | hidden,
                          QDir::NoSort);
    for (const QFileInfo &file : files) {
        if (!goOn()) {
            return entries;
        }
        if (masks.match(file.fileName())) {
            entries.files.append({file.fileName(), file.size()});
        }
    }
    const QFileInfoList folders =
        dir.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | hidden, QDir::NoSort);
    for (const QFileInfo &subfolder : folders) {
        entries.folders.append({subfolder.fileName(), subfolder.isSymLink()});
    }
    // The toolkit leaves the order of names that differ in case alone to chance.
    sort(&entries);
    return entries;
}

QString FolderListing::canonicalPath(const QString &folder)
{
    return QFileInfo(folder).canonicalFilePath();
}

bool FolderListing::areOnOneFileSystem(const QString &folder, const QString &other)
{
    const QStorageInfo volume(folder);
    return volume.isValid() && volume == QStorageInfo(other);
}
