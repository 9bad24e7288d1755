// SPDX-License-Identifier: MIT
#include "engine/FileTime_posix.h"
#include "engine/RegularFile.h"
#include "ui/results/FileState.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <memory>

#include <sys/stat.h>
#ifdef Q_OS_LINUX
#include <sys/sysmacros.h>
#endif

namespace
{
constexpr qint64 blockBytes = qint64(128) * 1024;
// Nanoseconds. Sticks and cards keep times no finer, and only one of them: that of their modification.
constexpr qint64 coarsestTimeOfViews = 10000000;

FileIdentity identityOf(const struct stat &status)
{
    return {static_cast<quint64>(status.st_dev), static_cast<quint64>(status.st_ino)};
}

// A file system that lies on no disk of its own may show the files of another one.
bool mayBeView(const FileIdentity &file)
{
#ifdef Q_OS_LINUX
    return major(static_cast<dev_t>(file.device)) == 0;
#else
    Q_UNUSED(file)
    return true;
#endif
}

// A copy can be given the time of modification of its original, but not that of its last change; a view
// tells both as it finds them. Two files change in the same nanosecond only where times are coarse.
bool isSeenThroughView(const FileState &a, const FileState &b)
{
    return (mayBeView(a.file) || mayBeView(b.file)) && a.size == b.size && a.modified == b.modified
        && a.changed == b.changed && a.changed % coarsestTimeOfViews != 0;
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
                       {},
                       FileTime::changed(status)};
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
    if (file.device != other.file.device) {
        return isSeenThroughView(*this, other);
    }
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
