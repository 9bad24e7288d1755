// SPDX-License-Identifier: MIT
#include "tests/faults/Scan.h"

#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"

#include <QSignalSpy>

ScanProfile Scan::profile(Mode mode)
{
    ScanProfile profile;
    profile.matchByteByByte = mode == ByteByByte;
    profile.advancedMatch = mode != ByteByByte;
    profile.md5Hash = mode == Md5;
    profile.sha1Hash = mode == Sha1;
    profile.crcHash = mode == Crc;
    return profile;
}

QList<QStringList> Scan::run(const QStringList &folders, const ScanProfile &profile)
{
    Configuration::instance()->folders = folders;
    Configuration::instance()->scanProfile = profile;
    FileFinderEngine engine(nullptr, nullptr, nullptr);
    const QSignalSpy finished(&engine, SIGNAL(findDuplicatedFilesFinished(QList<QStringList>)));
    engine.startFinder();
    if (finished.count() != 1) {
        qFatal("The scan has not ended once.");
    }
    return finished.at(0).at(0).value<QList<QStringList>>();
}

QSet<QSet<QString>> Scan::asSets(const QList<QStringList> &groups)
{
    QSet<QSet<QString>> sets;
    for (const QStringList &group : groups) {
        sets.insert(QSet<QString>(group.cbegin(), group.cend()));
    }
    return sets;
}
