// SPDX-License-Identifier: MIT
#include "ui/results/ListFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace
{
// A pipe or a device is no place for a list: opening one may wait for ever, and putting the finished
// list in its place would destroy it.
bool canHoldList(const QString &path)
{
    const QFileInfo file(path);
    return !file.exists() || file.isFile();
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
    if (file.seek(0) && file.write(list) == list.size() && file.resize(list.size())) {
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
    // A write that was cut short is no error to the toolkit.
    return file.write(list) == list.size() && file.commit();
}
