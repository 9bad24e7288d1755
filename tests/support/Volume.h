// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/OwnMounts.h"
#include "tests/support/TempTree.h"

#include <QByteArray>
#include <QFile>

#include <sys/mount.h>

/**
 * A file system in memory, mounted on a new folder for as long as it lives. Only the super-user of
 * Linux can mount one.
 */
class Volume final
{
    Q_DISABLE_COPY(Volume)

public:
    /** The options are those of tmpfs, such as "size=64k". */
    Volume(const QString &folder, const char *options)
        : tree(folder)
        , place(QFile::encodeName(folder))
        , mounted(ownsMounts() && ::mount("tmpfs", place.constData(), "tmpfs", 0, options) == 0)
    {
    }
    ~Volume()
    {
        if (mounted && ::umount2(place.constData(), MNT_DETACH) != 0) {
            qFatal("cannot unmount %s", place.constData());
        }
    }
    bool isMounted() const { return mounted; }
    bool makeReadOnly() const
    {
        return ::mount(nullptr, place.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }
    /** Takes all the room that is left. */
    void fill() const
    {
        QFile filler(tree.path(QStringLiteral("filler")));
        if (filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            while (filler.write(QByteArray(4096, 'x')) == 4096) {
            }
        }
    }

    const TempTree tree;

private:
    QByteArray place;
    bool mounted;
};
