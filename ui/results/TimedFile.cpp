// SPDX-License-Identifier: MIT
#include "ui/results/TimedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

TimedFile::TimedFile(qint64 milliseconds, const std::atomic<bool> *isEnded)
    : maxMilliseconds(milliseconds)
    , isTimeEnded(isEnded)
{
}

bool TimedFile::openFile(const QString &path)
{
    timer.start();
    const QByteArray name = encodeName(path);
    struct stat status = {};
    if (::stat(name.constData(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    // What has come to its place since is not waited for either.
    const int descriptor = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && open(descriptor, ReadOnly, AutoCloseHandle)) {
        return true;
    }
    ::close(descriptor);
    return false;
}

qint64 TimedFile::readData(char *data, qint64 maxBytes)
{
    late = late || timer.hasExpired(maxMilliseconds)
        || (isTimeEnded != nullptr && isTimeEnded->load());
    return late ? -1 : QFile::readData(data, maxBytes);
}
