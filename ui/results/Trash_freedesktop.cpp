// SPDX-License-Identifier: MIT
#include "engine/FileTime_posix.h"
#include "ui/results/FileState.h"
#include "ui/results/Trash.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cerrno>
#include <cstdio>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef Q_OS_LINUX
#include <sys/sysmacros.h>
#endif
#include <unistd.h>

// The toolkit's own way to the trash is not taken: it tries for ever where it cannot make a note (of
// a long name, in a folder that is full or closed), and takes any folder for the trash, a link to
// somewhere else included.

namespace
{
constexpr mode_t ownerOnly = 0700;
constexpr mode_t ownerReadsAndWrites = 0600;
constexpr int maxNameBytes = 255;
constexpr char noteEnding[] = ".trashinfo";
constexpr int maxCountedNames = 10;

enum class Outcome { Done, NameIsTaken, Failed };

/** Closes what it was opened with. */
class Descriptor final
{
    Q_DISABLE_COPY(Descriptor)

public:
    explicit Descriptor(int opened)
        : descriptor(opened)
    {
    }
    ~Descriptor()
    {
        if (isOpen()) {
            ::close(descriptor);
        }
    }
    int get() const { return descriptor; }
    bool isOpen() const { return descriptor >= 0; }

private:
    int descriptor;
};

/**
 * What is moved. Its folder is held open, so that a folder on its path that is put in another's place
 * changes nothing any more.
 */
struct MovedFile {
    const Descriptor &folder;
    QByteArray name;
    QByteArray note;
    FileIdentity identity;
    /** Null where any file that stands there is meant. */
    const FileState *seen;
    /** The file that was seen, open where a renaming may number it anew. */
    const Descriptor &held;
    const std::function<bool()> &mayStay;
};

#ifdef O_PATH
// Needs no right to read.
constexpr int openToHold = O_PATH | O_CLOEXEC;
#else
constexpr int openToHold = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
#endif

int openFolder(int parent, const QByteArray &name)
{
    return ::openat(parent, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

// Makes it first where it is missing. What is a link or belongs to another user may lie anywhere,
// and is not opened.
int openOwnFolder(int parent, const QByteArray &name)
{
    ::mkdirat(parent, name.constData(), ownerOnly);
    const int folder = openFolder(parent, name);
    struct stat status = {};
    if (folder >= 0 && (::fstat(folder, &status) != 0 || status.st_uid != ::geteuid())) {
        ::close(folder);
        return -1;
    }
    return folder;
}

// The trash that the administrator has made for all users goes before the user's own. Without the
// sticky bit anybody could put another folder in its place.
int openTrashOfVolume(const QString &topFolder)
{
    const Descriptor top(openFolder(AT_FDCWD, QFile::encodeName(topFolder)));
    const QByteArray user = QByteArray::number(::geteuid());
    const Descriptor shared(openFolder(top.get(), ".Trash"));
    struct stat status = {};
    if (shared.isOpen() && ::fstat(shared.get(), &status) == 0 && (status.st_mode & S_ISVTX) != 0) {
        const int trash = openOwnFolder(shared.get(), user);
        if (trash >= 0) {
            return trash;
        }
    }
    return openOwnFolder(top.get(), ".Trash-" + user);
}

// Short enough for the name of its note, and cut between two letters.
QByteArray nameInTrash(const QByteArray &name, int number)
{
    const QByteArray ending = number > 1 ? '-' + QByteArray::number(number) : QByteArray();
    auto bytes = qMin(name.size(), maxNameBytes - int(sizeof noteEnding - 1) - ending.size());
    while (bytes > 0 && bytes < name.size()
           && (static_cast<uchar>(name.at(bytes)) & 0xc0U) == 0x80U) {
        --bytes;
    }
    return name.left(bytes) + ending;
}

QByteArray noteOf(const QByteArray &path)
{
    return "[Trash Info]\nPath=" + path.toPercentEncoding("/")
        + "\nDeletionDate=" + QDateTime::currentDateTime().toString(Qt::ISODate).toLatin1() + '\n';
}

// A note that exists keeps its name from every other file.
Outcome writeNote(int folder, const QByteArray &name, const QByteArray &note)
{
    const int file = ::openat(folder,
                              name.constData(),
                              O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                              ownerReadsAndWrites);
    if (file < 0) {
        return errno == EEXIST ? Outcome::NameIsTaken : Outcome::Failed;
    }
    const ssize_t written = ::write(file, note.constData(), static_cast<size_t>(note.size()));
    if (::close(file) == 0 && written == note.size()) {
        return Outcome::Done;
    }
    ::unlinkat(folder, name.constData(), 0);
    return Outcome::Failed;
}

// Over nothing: a file may lie in the trash without a note.
int renameToNewName(int oldFolder, const QByteArray &oldName, int folder, const QByteArray &name)
{
#ifdef RENAME_NOREPLACE
    if (::renameat2(oldFolder, oldName.constData(), folder, name.constData(), RENAME_NOREPLACE)
        == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
#endif
    struct stat status = {};
    if (::fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        return EEXIST;
    }
    if (errno != ENOENT) {
        return errno;
    }
    return ::renameat(oldFolder, oldName.constData(), folder, name.constData()) == 0 ? 0 : errno;
}

FileIdentity identityOf(const struct stat &status)
{
    return {static_cast<quint64>(status.st_dev), static_cast<quint64>(status.st_ino)};
}

bool isFileIn(int folder, const QByteArray &name, const FileIdentity &file)
{
    struct stat status = {};
    return ::fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0
        && identityOf(status) == file;
}

// Over a network a renaming may be done and the answer lost.
bool hasArrived(const MovedFile &file, int folder, const QByteArray &name)
{
    struct stat status = {};
    return isFileIn(folder, name, file.identity)
        && ::fstatat(file.folder.get(), file.name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0
        && errno == ENOENT;
}

bool isSeenFile(const struct stat &status, const FileState &seen)
{
    return seen.isRegular && S_ISREG(status.st_mode) && identityOf(status) == seen.file
        && status.st_size == seen.size && FileTime::modified(status) == seen.modified;
}

// A renaming changes neither the size nor the time; an inode that was given to another file does.
bool isTheOneSeen(const MovedFile &file, int folder, const QByteArray &name)
{
    struct stat now = {};
    if (file.seen == nullptr) {
        return true;
    }
    if (file.held.isOpen()) {
        return isFileIn(folder, name, file.identity)
            || (::fstat(file.held.get(), &now) == 0 && isFileIn(folder, name, identityOf(now)));
    }
    return ::fstatat(folder, name.constData(), &now, AT_SYMLINK_NOFOLLOW) == 0
        && isSeenFile(now, *file.seen);
}

Outcome moveUnder(const QByteArray &name, const MovedFile &file, int files, int notes)
{
    const QByteArray noteName = name + noteEnding;
    const Outcome noted = writeNote(notes, noteName, file.note);
    if (noted != Outcome::Done) {
        return noted;
    }
    const int error = renameToNewName(file.folder.get(), file.name, files, name);
    if (error == 0 || hasArrived(file, files, name)) {
        if (isTheOneSeen(file, files, name) && (!file.mayStay || file.mayStay())) {
            return Outcome::Done;
        }
        // Put in its place in the last moment, or wanted back. Where that is taken again it can be restored.
        if (renameToNewName(files, name, file.folder.get(), file.name) == 0) {
            ::unlinkat(notes, noteName.constData(), 0);
        }
        return Outcome::Failed;
    }
    ::unlinkat(notes, noteName.constData(), 0);
    return error == EEXIST ? Outcome::NameIsTaken : Outcome::Failed;
}

// A trash may hold thousands of one name, and a deletion put thousands more there.
int nextNumber(int number)
{
    return number < maxCountedNames
        ? number + 1
        : QRandomGenerator::global()->bounded(maxCountedNames, std::numeric_limits<int>::max());
}

// By renaming alone: nothing is copied, so nothing can be lost half way.
bool moveInto(int trash, const MovedFile &file)
{
    const Descriptor files(openOwnFolder(trash, "files"));
    const Descriptor notes(openOwnFolder(trash, "info"));
    if (!files.isOpen() || !notes.isOpen()) {
        return false;
    }
    Outcome outcome = Outcome::NameIsTaken;
    for (int number = 1; outcome == Outcome::NameIsTaken; number = nextNumber(number)) {
        outcome = moveUnder(nameInTrash(file.name, number), file, files.get(), notes.get());
    }
    return outcome == Outcome::Done;
}

// The number of the mount that the folder lies in, which costs far less than to read the list of all
// mounts; 0 where the system does not tell it.
quint64 mountOf(const Descriptor &folder)
{
#ifdef STATX_MNT_ID
    struct statx status = {};
    if (::statx(folder.get(), "", AT_EMPTY_PATH, STATX_MNT_ID, &status) == 0
        && (status.stx_mask & STATX_MNT_ID) != 0) {
        return status.stx_mnt_id;
    }
#else
    Q_UNUSED(folder)
#endif
    return 0;
}

// Of the folder: a link may lead to another volume than the one it lies on.
QString canonicalFolderOf(const QString &path)
{
    return QFileInfo(QFileInfo(path).absolutePath()).canonicalFilePath();
}

bool isOnMountOf(const QString &folder, const QString &other)
{
    const Descriptor a(::open(QFile::encodeName(folder).constData(), openToHold | O_DIRECTORY));
    const Descriptor b(::open(QFile::encodeName(other).constData(), openToHold | O_DIRECTORY));
    const quint64 mount = mountOf(a);
    if (mount != 0) {
        return mount == mountOf(b);
    }
    struct stat one = {};
    struct stat two = {};
    return ::fstat(a.get(), &one) == 0 && ::fstat(b.get(), &two) == 0 && one.st_dev == two.st_dev;
}

// Step by step. The list of all mounts, which the toolkit looks at, has no name for the root of a
// process that was put into a folder.
QString topFolderOf(const QString &folder)
{
    QString top = folder;
    QString above = QFileInfo(top).path();
    while (above != top && isOnMountOf(above, top)) {
        top = above;
        above = QFileInfo(top).path();
    }
    return top;
}

// Empty where the home trash serves: a file is renamed within its mount alone.
QString topFolderOfAnotherVolume(const Descriptor &folder,
                                 const QString &path,
                                 const Descriptor &data,
                                 const QString &dataFolder)
{
    const quint64 mount = mountOf(folder);
    if (mount != 0 && mount == mountOf(data)) {
        return {};
    }
    const QString topFolder = topFolderOf(canonicalFolderOf(path));
    const QString topOfData = topFolderOf(QFileInfo(dataFolder).canonicalFilePath());
    return topFolder == topOfData ? QString() : topFolder;
}

// Those of a disk keep a file's number when they rename it; a program or a machine that serves files
// may not.
bool mayRenumberByRenaming(const FileState &seen)
{
#ifdef Q_OS_LINUX
    return major(static_cast<dev_t>(seen.file.device)) == 0;
#else
    Q_UNUSED(seen)
    return true;
#endif
}

// False where there is none, or the held one is another one than was seen. What is not held is looked
// at once it is renamed: between that and the look that saw it no more time passes than here.
bool identify(MovedFile *file)
{
    struct stat status = {};
    if (file->seen == nullptr) {
        const bool exists =
            ::fstatat(file->folder.get(), file->name.constData(), &status, AT_SYMLINK_NOFOLLOW)
            == 0;
        file->identity = identityOf(status);
        return exists;
    }
    file->identity = file->seen->file;
    return !mayRenumberByRenaming(*file->seen)
        || (::fstat(file->held.get(), &status) == 0 && isSeenFile(status, *file->seen));
}
} // namespace

bool Trash::moveFile(const QString &path,
                     const FileState *seen,
                     const std::function<bool()> &mayStay)
{
    const QByteArray whole = QFile::encodeName(QFileInfo(path).absoluteFilePath());
    const auto slash = whole.lastIndexOf('/');
    const QByteArray name = whole.mid(slash + 1);
    const Descriptor folder(::open(whole.left(slash + 1).constData(), openToHold | O_DIRECTORY));
    const Descriptor held(seen != nullptr && mayRenumberByRenaming(*seen)
                              ? ::openat(folder.get(), name.constData(), openToHold | O_NOFOLLOW)
                              : -1);
    MovedFile file = {folder, name, {}, {}, seen, held, mayStay};
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (!identify(&file) || !QDir::isAbsolutePath(data) || !QDir().mkpath(data)) {
        return false;
    }
    const Descriptor place(
        ::open(QFile::encodeName(data).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const QString otherVolume = topFolderOfAnotherVolume(folder, path, place, data);
    if (otherVolume.isEmpty()) {
        const Descriptor trash(openOwnFolder(place.get(), "Trash"));
        file.note = noteOf(whole);
        return moveInto(trash.get(), file);
    }
    const Descriptor trash(openTrashOfVolume(otherVolume));
    // The note is relative to the volume, which may be mounted elsewhere the next time.
    const QString moved = canonicalFolderOf(path) % QLatin1Char('/') % QFileInfo(path).fileName();
    file.note = noteOf(QFile::encodeName(QDir(otherVolume).relativeFilePath(moved)));
    return moveInto(trash.get(), file);
}

// Those of volumes are told by their names, which the rules of the desktops give them.
bool Trash::holds(const QString &path)
{
    // Asked for each file of a deletion, of which none may be.
    if (!path.contains(QLatin1String("/files/"))) {
        return false;
    }
    static const QRegularExpression ofVolume(
        QStringLiteral("/(\\.Trash-[0-9]+|\\.Trash/[0-9]+)/files/"));
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return path.startsWith(data + QStringLiteral("/Trash/files/")) || path.contains(ofVolume);
}
