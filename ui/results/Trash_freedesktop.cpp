// SPDX-License-Identifier: MIT
#include "ui/results/Trash.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QStorageInfo>

#include <cerrno>
#include <cstdio>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
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

/** What is moved, and how it is told apart from what lies in the trash. */
struct MovedFile {
    QByteArray path;
    QByteArray note;
    struct stat status;
};

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
    int bytes = qMin(name.size(), maxNameBytes - int(sizeof noteEnding - 1) - ending.size());
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
int renameToNewName(const QByteArray &path, int folder, const QByteArray &name)
{
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, path.constData(), folder, name.constData(), RENAME_NOREPLACE) == 0) {
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
    return ::renameat(AT_FDCWD, path.constData(), folder, name.constData()) == 0 ? 0 : errno;
}

// Over a network a renaming may be done and the answer lost.
bool hasArrived(const MovedFile &file, int folder, const QByteArray &name)
{
    struct stat status = {};
    return ::fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0
        && status.st_dev == file.status.st_dev && status.st_ino == file.status.st_ino
        && ::lstat(file.path.constData(), &status) != 0 && errno == ENOENT;
}

Outcome moveUnder(const QByteArray &name, const MovedFile &file, int files, int notes)
{
    const QByteArray noteName = name + noteEnding;
    const Outcome noted = writeNote(notes, noteName, file.note);
    if (noted != Outcome::Done) {
        return noted;
    }
    const int error = renameToNewName(file.path, files, name);
    if (error == 0 || hasArrived(file, files, name)) {
        return Outcome::Done;
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
    const QByteArray fileName = file.path.mid(file.path.lastIndexOf('/') + 1);
    Outcome outcome = Outcome::NameIsTaken;
    for (int number = 1; outcome == Outcome::NameIsTaken; number = nextNumber(number)) {
        outcome = moveUnder(nameInTrash(fileName, number), file, files.get(), notes.get());
    }
    return outcome == Outcome::Done;
}
} // namespace

bool Trash::moveFile(const QString &path)
{
    const QFileInfo info(path);
    MovedFile file = {QFile::encodeName(info.absoluteFilePath()), {}, {}};
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (::lstat(file.path.constData(), &file.status) != 0 || !QDir::isAbsolutePath(data)
        || !QDir().mkpath(data)) {
        return false;
    }
    // Of the folder: a link may lead to another volume than the one it lies on.
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    const QString topFolder = QStorageInfo(folder).rootPath();
    if (topFolder == QStorageInfo(data).rootPath()) {
        const Descriptor place(
            ::open(QFile::encodeName(data).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const Descriptor trash(openOwnFolder(place.get(), "Trash"));
        file.note = noteOf(file.path);
        return moveInto(trash.get(), file);
    }
    const Descriptor trash(openTrashOfVolume(topFolder));
    // The note is relative to the volume, which may be mounted elsewhere the next time.
    const QString moved = folder % QLatin1Char('/') % info.fileName();
    file.note = noteOf(QFile::encodeName(QDir(topFolder).relativeFilePath(moved)));
    return moveInto(trash.get(), file);
}
