// SPDX-License-Identifier: MIT
#include "ui/results/Trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace
{
QString infoFileOf(const QString &pathInTrash)
{
    const QFileInfo file(pathInTrash);
    return QDir::cleanPath(file.path() % QStringLiteral("/../info/") % file.fileName()
                           % QStringLiteral(".trashinfo"));
}

// The toolkit writes the path as it is, but its readers undo percent encoding, and take a line break
// for the end of the path.
bool writeOriginalPath(const QString &infoFile, const QString &path)
{
    QFile old(infoFile);
    if (!old.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray info = old.readAll();
    const int date = info.lastIndexOf("\nDeletionDate=");
    QSaveFile file(infoFile);
    if (date < 0 || !file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write("[Trash Info]\nPath=");
    file.write(QFile::encodeName(path).toPercentEncoding("/"));
    file.write(info.mid(date));
    return file.commit();
}

bool isRestorable(const QString &path, const QString &pathInTrash)
{
    return QDir::isAbsolutePath(pathInTrash) && QFileInfo::exists(pathInTrash)
        && !QFileInfo::exists(path) && writeOriginalPath(infoFileOf(pathInTrash), path);
}
} // namespace

bool Trash::moveFile(const QString &path)
{
    const QString original = QFileInfo(path).absoluteFilePath();
    // Without this folder the toolkit takes the working directory for the trash, and calls it done.
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (path.isEmpty() || !QDir().mkpath(data)) {
        return false;
    }
    QString pathInTrash;
    if (!QFile::moveToTrash(original, &pathInTrash)) {
        return false;
    }
    if (isRestorable(original, pathInTrash)) {
        return true;
    }
    if (QFile::rename(pathInTrash, original)) {
        QFile::remove(infoFileOf(pathInTrash));
    }
    return false;
}
