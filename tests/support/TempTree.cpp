// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
void require(bool done, const char *step, const QString &path)
{
    if (!done) {
        qFatal("TempTree: cannot %s %s", step, qPrintable(path));
    }
}
} // namespace

TempTree::TempTree(const QString &root)
    : rootPath(QDir(root).absolutePath())
{
    require(QDir().mkpath(rootPath), "make", rootPath);
}

QString TempTree::path(const QString &name) const
{
    return rootPath + QLatin1Char('/') + name;
}

QString TempTree::root() const
{
    return rootPath;
}

QString TempTree::file(const QString &name, const QByteArray &content) const
{
    const QString whole = path(name);
    require(QDir().mkpath(QFileInfo(whole).path()), "make the folder of", whole);
    QFile file(whole);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            "write",
            whole);
    return whole;
}

QString TempTree::sparseFile(const QString &name, qint64 bytes) const
{
    const QString whole = file(name);
    require(QFile::resize(whole, bytes), "resize", whole);
    return whole;
}

QString TempTree::folder(const QString &name) const
{
    require(QDir().mkpath(path(name)), "make", path(name));
    return path(name);
}

QString TempTree::link(const QString &name, const QString &target) const
{
    const QString whole = path(name);
    require(QDir().mkpath(QFileInfo(whole).path()), "make the folder of", whole);
    require(::symlink(QFile::encodeName(target).constData(), QFile::encodeName(whole).constData())
                == 0,
            "link",
            whole);
    return whole;
}

QString TempTree::fifo(const QString &name) const
{
    const QString whole = path(name);
    require(::mkfifo(QFile::encodeName(whole).constData(), 0600) == 0, "make the FIFO", whole);
    return whole;
}

void TempTree::setMode(const QString &name, unsigned mode) const
{
    require(::chmod(QFile::encodeName(path(name)).constData(), mode) == 0, "change", path(name));
}

QByteArray TempTree::read(const QString &path)
{
    QFile file(path);
    require(file.open(QIODevice::ReadOnly), "read", path);
    return file.readAll();
}
