// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/** What tells one file of the system from any other, as long as it exists. */
struct FileIdentity {
    quint64 device = 0;
    quint64 inode = 0;

    bool operator==(const FileIdentity &other) const
    {
        return device == other.device && inode == other.inode;
    }
};

/** What stands at a path at one moment. The last name is not followed where it is a link. */
struct FileState {
    bool exists = false;
    bool isRegular = false; // a link is none
    qint64 size = 0; // bytes
    qint64 modified = 0; // nanoseconds since 1970 (UTC)
    quint64 links = 0; // names that the file has, on its whole volume
    FileIdentity file;
    /** Of a file with several names, which of them this is: the folder, links followed, and the name. */
    FileIdentity folder;
    QByteArray name;
    /** When anything of the file changed last, its name or its rights included; as above. */
    qint64 changed = 0;

    /** A call of the system or two; all but exists is meaningless where there is nothing. */
    static FileState of(const QString &path);

    /**
     * True when both are one entry of one folder, reached by two paths: through a link to a folder,
     * through a folder that is mounted twice, or through a file system that shows the files of another
     * one. Two hard links of one file are two entries.
     */
    bool isSameEntryAs(const FileState &other) const;
    /** True when nothing shows that the file has been written to, or replaced, in between. */
    bool isSameFileAs(const FileState &other) const;

    /**
     * Reads both files up to the first difference; false where one of them cannot be read to its
     * end. Nothing is logged.
     */
    static bool haveSameBytes(const QString &a, const QString &b);
};
