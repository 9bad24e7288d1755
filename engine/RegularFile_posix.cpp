// SPDX-License-Identifier: MIT
#include "engine/FileTime_posix.h"
#include "engine/RegularFile.h"
#include "engine/ScanProgress.h"

#include <QFile>

#include <cerrno>
#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr qint64 nanosecondsInASecond = 1000000000;
// What file systems with whole seconds, and with finer times, may take for one moment.
constexpr qint64 coarseMoment = 2 * nanosecondsInASecond;
constexpr qint64 fineMoment = nanosecondsInASecond / 50;

// The clock of another machine may be ahead of this one's.
qint64 settled(qint64 changed)
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const qint64 moment = changed % nanosecondsInASecond == 0 ? coarseMoment : fineMoment;
    return FileTime::nanoseconds(now) - changed > moment ? changed : -1;
}
} // namespace

struct RegularFile::Handle {
    int descriptor = -1;
    qint64 bytes = 0;
    qint64 modified = 0;
    qint64 changed = 0;
    QString error;

    Handle() = default;
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    ~Handle() { close(); }

    void close()
    {
        if (descriptor >= 0) {
            ::close(descriptor);
            descriptor = -1;
        }
    }

    bool fail(const QString &reason)
    {
        error = reason;
        close();
        return false;
    }
};

RegularFile::RegularFile()
    : handle(std::make_unique<Handle>())
{
}

RegularFile::RegularFile(RegularFile &&other) noexcept = default;

RegularFile &RegularFile::operator=(RegularFile &&other) noexcept = default;

RegularFile::~RegularFile() = default;

bool RegularFile::open(const QString &path)
{
    handle->close();
    // A FIFO without a writer would hold a blocking open, and a terminal would become our own.
    do {
        handle->descriptor = ::open(QFile::encodeName(path).constData(),
                                    O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    } while (handle->descriptor < 0 && errno == EINTR);
    struct stat status = {};
    if (handle->descriptor < 0 || ::fstat(handle->descriptor, &status) != 0) {
        return handle->fail(qt_error_string(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        return handle->fail(QStringLiteral("file to open is a directory"));
    }
    if (!S_ISREG(status.st_mode)) {
        return handle->fail(QStringLiteral("not a regular file"));
    }
    handle->bytes = status.st_size;
    handle->modified = FileTime::modified(status);
    handle->changed = settled(FileTime::changed(status));
    return true;
}

qint64 RegularFile::size() const
{
    return handle->bytes;
}

qint64 RegularFile::modified() const
{
    return handle->modified;
}

qint64 RegularFile::changed() const
{
    return handle->changed;
}

qint64 RegularFile::read(char *data, qint64 maxBytes)
{
    return read(data, maxBytes, maxBytes);
}

qint64 RegularFile::read(char *data, qint64 enoughBytes, qint64 maxBytes)
{
    qint64 done = 0;
    while (done < enoughBytes) {
        const ssize_t bytes =
            ::read(handle->descriptor, data + done, static_cast<std::size_t>(maxBytes - done));
        if (bytes == 0) {
            break;
        }
        if (bytes > 0) {
            done += bytes;
        } else if (errno != EINTR) {
            handle->error = qt_error_string(errno);
            return -1;
        }
    }
    ScanProgress::instance()->bytesRead += done;
    return done;
}

bool RegularFile::isAtEnd()
{
    char byte = 0;
    return read(&byte, 1) <= 0;
}

bool RegularFile::skip(qint64 toOffset)
{
    if (::lseek(handle->descriptor, toOffset, SEEK_SET) == toOffset) {
        return true;
    }
    handle->error = qt_error_string(errno);
    return false;
}

QString RegularFile::errorString() const
{
    return handle->error;
}

qint64 RegularFile::sizeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_size : 0;
}
