// SPDX-License-Identifier: MIT
#include "engine/ReaderCount.h"

#include <QThread>

namespace
{
constexpr int waitingReaders = 8;
}

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
    Q_UNUSED(folders)
    return QThread::idealThreadCount();
}

bool ReaderCount::isRotational(const QString &deviceFolder)
{
    Q_UNUSED(deviceFolder)
    return false;
}
