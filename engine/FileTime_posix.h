// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <sys/stat.h>

/** Times of files as whole numbers. */
namespace FileTime
{
/** When the content was modified: nanoseconds since 1970 (UTC), as fine as the file system keeps it. */
inline qint64 modified(const struct stat &status)
{
#ifdef Q_OS_DARWIN
    const timespec &time = status.st_mtimespec;
#else
    const timespec &time = status.st_mtim;
#endif
    return static_cast<qint64>(time.tv_sec) * 1000000000 + time.tv_nsec;
}
} // namespace FileTime
