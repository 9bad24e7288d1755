// SPDX-License-Identifier: MIT
#include "ui/results/ListFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace
{
// A pipe or a device is no place for a list: opening one may wait for ever, and putting the finished
// list in its place would destroy it.
bool canHoldList(const QString &path)
{
    const QFileInfo file(path);
    return !file.exists() || file.isFile();
}

// The disk may turn out to be full as late as here, on a network even when all of it was taken. Some
// file systems have no such call.
bool reachesDisk(QFileDevice &file)
{
    return file.flush() && (::fsync(file.handle()) == 0 || errno == EINVAL || errno == ENOTSUP);
}

// So that the new name outlives a power failure. Without it one of the two lists is there, and whole.
void syncFolderOf(const QString &path)
{
    const QString folder = QFileInfo(QFileInfo(path).canonicalFilePath()).path();
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

// For a file in a folder that takes no new one. What it held is put back if there is no room for all
// of the list; until then it is not cut, so that on most file systems its own room stays its own.
bool writeOver(const QString &path, const QByteArray &list)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        return false;
    }
    const qint64 oldSize = file.size();
    const QByteArray old = file.read(list.size());
    if (old.size() != qMin<qint64>(oldSize, list.size())) {
        return false;
    }
    // Cut last: what is behind the list could not be put back. A cut takes no room.
    if (file.seek(0) && file.write(list) == list.size() && reachesDisk(file)
        && file.resize(list.size())) {
        reachesDisk(file);
        return true;
    }
    file.seek(0);
    file.write(old);
    file.resize(oldSize);
    return false;
}
} // namespace

bool ListFile::write(const QString &path, const QByteArray &list)
{
    if (!canHoldList(path)) {
        return false;
    }
    // The old list is whole until the new one is.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return writeOver(path, list);
    }
    // Neither a write that was cut short nor a buffer that could not be written is an error to the
    // toolkit when it puts the new file in the place of the old one.
    if (file.write(list) != list.size() || !reachesDisk(file) || !file.commit()) {
        return false;
    }
    syncFolderOf(path);
    return true;
}
