// SPDX-License-Identifier: MIT
#include "ui/results/TimedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

TimedFile::TimedFile(qint64 milliseconds)
    : maxMilliseconds(milliseconds)
{
}

bool TimedFile::openFile(const QString &path)
{
    timer.start();
    // Opening a pipe would wait for its writer. It is looked at when it is open, so that nobody can
    // put something else in its place in between.
    const int descriptor =
        ::open(encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    struct stat status = {};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && open(descriptor, ReadOnly, AutoCloseHandle)) {
        return true;
    }
    ::close(descriptor);
    return false;
}

qint64 TimedFile::readData(char *data, qint64 maxBytes)
{
    late = late || timer.hasExpired(maxMilliseconds);
    return late ? -1 : QFile::readData(data, maxBytes);
}
