// SPDX-License-Identifier: MIT
#include "engine/FileMasks.h"
#include "engine/FolderListing.h"
#include "engine/Utf8.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace
{
// Those that the system's header does not name, from the sources of Linux.
constexpr quint32 configfsMagic = 0x62656570;
constexpr quint32 fusectlMagic = 0x65735543;
constexpr quint32 mqueueMagic = 0x19800202;
constexpr quint32 rpcPipefsMagic = 0x67596969;

struct CloseDir {
    void operator()(DIR *dir) const { ::closedir(dir); }
};

struct FreeText {
    void operator()(char *text) const { std::free(text); }
};

bool isAscii(const QByteArray &name)
{
    return std::all_of(name.cbegin(), name.cend(), [](char c) { return (c & 0x80) == 0; });
}

// A null string for a name that the toolkit does not list.
QString decode(const char *rawName)
{
    const QByteArray name(rawName);
    if (isAscii(name)) {
        return QString::fromLatin1(name);
    }
    // The slash keeps a byte order mark at the start of the name from being swallowed.
    return Utf8::isValid(name) ? QFile::decodeName('/' + name).mid(1) : QString();
}

mode_t typeOf(int dirDescriptor, const char *name, int flags)
{
    struct stat status = {};
    return ::fstatat(dirDescriptor, name, &status, flags) == 0 ? status.st_mode & S_IFMT : 0;
}

mode_t typeOf(int dirDescriptor, const dirent &entry)
{
    // Some file systems do not tell the type of an entry with its name.
    return entry.d_type != DT_UNKNOWN ? DTTOIF(entry.d_type)
                                      : typeOf(dirDescriptor, entry.d_name, AT_SYMLINK_NOFOLLOW);
}

FileSystemKind fileSystemOf(int dirDescriptor)
{
    struct statfs status = {};
    if (::fstatfs(dirDescriptor, &status) != 0) {
        return FileSystemKind::Storage;
    }
    // On some systems the type is a signed number.
    switch (static_cast<quint32>(status.f_type)) {
    case ANON_INODE_FS_MAGIC:
    case BINFMTFS_MAGIC:
    case BPF_FS_MAGIC:
    case CGROUP2_SUPER_MAGIC:
    case CGROUP_SUPER_MAGIC:
    case DEBUGFS_MAGIC:
    case DEVPTS_SUPER_MAGIC:
    case EFIVARFS_MAGIC:
    case HUGETLBFS_MAGIC:
    case NSFS_MAGIC:
    case PIPEFS_MAGIC:
    case PROC_SUPER_MAGIC:
    case PSTOREFS_MAGIC:
    case SECURITYFS_MAGIC:
    case SELINUX_MAGIC:
    case SMACK_MAGIC:
    case SOCKFS_MAGIC:
    case SYSFS_MAGIC:
    case TRACEFS_MAGIC:
    case configfsMagic:
    case fusectlMagic:
    case mqueueMagic:
    case rpcPipefsMagic:
        return FileSystemKind::Pseudo;
    case AFS_SUPER_MAGIC:
    case CEPH_SUPER_MAGIC:
    case CIFS_SUPER_MAGIC:
    case CODA_SUPER_MAGIC:
    case FUSE_SUPER_MAGIC:
    case NFS_SUPER_MAGIC:
    case SMB2_SUPER_MAGIC:
    case SMB_SUPER_MAGIC:
    case V9FS_MAGIC:
        return FileSystemKind::Remote;
    default:
        return FileSystemKind::Storage;
    }
}

bool isDotOrDotDot(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

void addEntry(FolderListing::Entries *entries,
              const FileMasks &masks,
              int dirDescriptor,
              const dirent &entry)
{
    const mode_t type = typeOf(dirDescriptor, entry);
    if (type != S_IFREG && type != S_IFDIR && type != S_IFLNK) {
        return;
    }
    if (type == S_IFLNK) {
        const mode_t target = typeOf(dirDescriptor, entry.d_name, 0);
        if (target == 0 || target == S_IFREG) {
            return;
        }
    }
    const QString name = decode(entry.d_name);
    if (name.isNull()) {
        entries->unlisted.append(entry.d_name);
        return;
    }
    if (type != S_IFREG) {
        entries->folders.append({name, type == S_IFLNK});
    } else if (masks.match(name)) {
        struct stat status = {};
        const bool isKnown = ::fstatat(dirDescriptor, entry.d_name, &status, 0) == 0;
        entries->files.append({name, isKnown ? qint64(status.st_size) : 0});
    }
}
} // namespace

FolderListing::Entries FolderListing::list(const QString &folder,
                                           const FileMasks &masks,
                                           const GoOn &goOn,
                                           bool takesHidden)
{
    Entries entries;
    const QByteArray path = QFile::encodeName(QDir(folder).path());
    const std::unique_ptr<DIR, CloseDir> dir(::opendir(path.constData()));
    if (!dir) {
        entries.error = errno == ENOTDIR ? QString() : qt_error_string(errno);
        return entries;
    }
    entries.fileSystem = fileSystemOf(::dirfd(dir.get()));
    errno = 0;
    for (const dirent *entry = nullptr; (entry = ::readdir(dir.get())) != nullptr; errno = 0) {
        if (!goOn()) {
            break;
        }
        if (entry->d_name[0] != '.' || (takesHidden && !isDotOrDotDot(entry->d_name))) {
            addEntry(&entries, masks, ::dirfd(dir.get()), *entry);
        }
    }
    if (errno != 0) {
        entries.error = qt_error_string(errno);
    }
    sort(&entries);
    return entries;
}

// The toolkit gives the path itself back when the system did not resolve it.
QString FolderListing::canonicalPath(const QString &folder)
{
    const std::unique_ptr<char, FreeText> path(
        ::realpath(QFile::encodeName(folder).constData(), nullptr));
    return path ? QFile::decodeName(path.get()) : QString();
}

bool FolderListing::areOnOneFileSystem(const QString &folder, const QString &other)
{
    struct stat a = {};
    struct stat b = {};
    return ::stat(QFile::encodeName(folder).constData(), &a) == 0
        && ::stat(QFile::encodeName(other).constData(), &b) == 0 && a.st_dev == b.st_dev;
}
