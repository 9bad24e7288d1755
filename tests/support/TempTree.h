// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/**
 * Builds a tree of files below a folder. Names are relative to it, missing folders are made on the
 * way, and a step that fails ends the process with a line that says which.
 */
class TempTree final
{
public:
    /** Makes the folder if it does not exist; never deletes it. */
    explicit TempTree(const QString &root);

    /** Each returns the absolute path of what it made. */
    QString file(const QString &name, const QByteArray &content = QByteArray()) const;
    /** A file of that many bytes without blocks on the disk. */
    QString sparseFile(const QString &name, qint64 bytes) const;
    QString folder(const QString &name) const;
    /** A symbolic link; the target is taken as it is. */
    QString link(const QString &name, const QString &target) const;
    QString fifo(const QString &name) const;
    void setMode(const QString &name, unsigned mode) const;

    QString path(const QString &name) const;
    QString root() const;
    static QByteArray read(const QString &path);

private:
    QString rootPath;
};
