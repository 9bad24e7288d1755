// SPDX-License-Identifier: MIT
#include "engine/ReaderCount.h"

#include <QFile>
#include <QThread>

#include <algorithm>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace
{
// Eight read the beginnings of a cold tree in a quarter of the time of one; more were not tried.
constexpr int waitingReaders = 8;
constexpr int readersOfRotationalDisk = 2;

bool liesOnRotationalDisk(const QString &folder)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(folder).constData(), &status) == 0
        && ReaderCount::isRotational(QStringLiteral("/sys/dev/block/%1:%2")
                                         .arg(major(status.st_dev))
                                         .arg(minor(status.st_dev)));
}
} // namespace

int ReaderCount::ofFolders()
{
    return waitingReaders;
}

int ReaderCount::ofHeads()
{
    return waitingReaders;
}

int ReaderCount::ofContents(const QStringList &folders)
{
    const int processors = QThread::idealThreadCount();
    return std::any_of(folders.cbegin(), folders.cend(), liesOnRotationalDisk)
        ? std::min(processors, readersOfRotationalDisk)
        : processors;
}

// A partition is a folder inside that of its disk. What cannot be told does not turn.
bool ReaderCount::isRotational(const QString &deviceFolder)
{
    for (const char *place : {"/queue/rotational", "/../queue/rotational"}) {
        QFile file(deviceFolder + QLatin1String(place));
        if (file.open(QIODevice::ReadOnly)) {
            return file.readAll().trimmed() == "1";
        }
    }
    return false;
}
