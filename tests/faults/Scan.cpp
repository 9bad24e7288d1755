// SPDX-License-Identifier: MIT
#include "tests/faults/Scan.h"

#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"

#include <QSignalSpy>
#include <QTest>

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

void Scan::addModes()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("byte by byte") << static_cast<int>(ByteByByte);
    QTest::newRow("MD5") << static_cast<int>(Md5);
    QTest::newRow("SHA-1") << static_cast<int>(Sha1);
    QTest::newRow("CRC") << static_cast<int>(Crc);
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
