// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <sys/stat.h>

/** Times of files as whole numbers. */
namespace FileTime
{
inline qint64 nanoseconds(const timespec &time)
{
    return static_cast<qint64>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

/** When the content was modified: nanoseconds since 1970 (UTC), as fine as the file system keeps it. */
inline qint64 modified(const struct stat &status)
{
#ifdef Q_OS_DARWIN
    return nanoseconds(status.st_mtimespec);
#else
    return nanoseconds(status.st_mtim);
#endif
}

/** When the file was changed last, its rights, owner and names included; likewise. Nobody can set it. */
inline qint64 changed(const struct stat &status)
{
#ifdef Q_OS_DARWIN
    return nanoseconds(status.st_ctimespec);
#else
    return nanoseconds(status.st_ctim);
#endif
}
} // namespace FileTime
