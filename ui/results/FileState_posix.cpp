// SPDX-License-Identifier: MIT
#include "engine/FileTime_posix.h"
#include "engine/RegularFile.h"
#include "ui/results/FileState.h"

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
    const QByteArray whole = QFile::encodeName(path);
    struct stat status = {};
    if (::lstat(whole.constData(), &status) != 0) {
        return {};
    }
    FileState state = {true,
                       S_ISREG(status.st_mode),
                       status.st_size,
                       FileTime::modified(status),
                       static_cast<quint64>(status.st_nlink),
                       identityOf(status),
                       {},
                       {}};
    if (state.links > 1) {
        const auto slash = whole.lastIndexOf('/');
        state.name = whole.mid(slash + 1);
        if (::stat(whole.left(slash + 1).constData(), &status) == 0) {
            state.folder = identityOf(status);
        }
    }
    return state;
}

bool FileState::isSameEntryAs(const FileState &other) const
{
    return file == other.file
        && (links <= 1 || other.links <= 1 || (folder == other.folder && name == other.name));
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
            || std::memcmp(buffer.get(), buffer.get() + blockBytes, static_cast<std::size_t>(bytes))
                != 0) {
            return false;
        }
        left -= bytes;
    }
    return true;
}
