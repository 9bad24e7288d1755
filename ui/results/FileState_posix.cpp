// SPDX-License-Identifier: MIT
#include "ui/results/FileState.h"

#include "engine/FileTime_posix.h"
#include "engine/RegularFile.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <memory>

#include <sys/stat.h>

namespace
{
constexpr qint64 blockBytes = qint64(128) * 1024;

FileIdentity identityOf(const struct stat &status)
{
    return {static_cast<quint64>(status.st_dev), static_cast<quint64>(status.st_ino)};
}
} // namespace

FileState FileState::of(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const int slash = name.lastIndexOf('/');
    struct stat status = {};
    struct stat folder = {};
    if (slash < 0 || ::lstat(name.constData(), &status) != 0
        || ::stat(name.left(slash + 1).constData(), &folder) != 0) {
        return {};
    }
    return {true,
            S_ISREG(status.st_mode),
            status.st_size,
            FileTime::modified(status),
            static_cast<quint64>(status.st_nlink),
            identityOf(status),
            identityOf(folder),
            name.mid(slash + 1)};
}

bool FileState::isSameEntryAs(const FileState &other) const
{
    return (folder == other.folder && name == other.name)
        || (file == other.file && (links <= 1 || other.links <= 1));
}

bool FileState::isSameFileAs(const FileState &other) const
{
    return exists && other.exists && isRegular == other.isRegular && file == other.file
        && size == other.size && modified == other.modified;
}

bool FileState::haveSameBytes(const QString &a, const QString &b)
{
    RegularFile fileA;
    RegularFile fileB;
    if (!fileA.open(a) || !fileB.open(b) || fileA.size() != fileB.size()) {
        return false;
    }
    const std::unique_ptr<char[]> buffer(new char[2 * static_cast<std::size_t>(blockBytes)]);
    qint64 left = fileA.size();
    while (left > 0) {
        const qint64 bytes = std::min(left, blockBytes);
        if (fileA.read(buffer.get(), bytes) != bytes
            || fileB.read(buffer.get() + blockBytes, bytes) != bytes
            || std::memcmp(buffer.get(),
                           buffer.get() + blockBytes,
                           static_cast<std::size_t>(bytes))
                != 0) {
            return false;
        }
        left -= bytes;
    }
    return true;
}
