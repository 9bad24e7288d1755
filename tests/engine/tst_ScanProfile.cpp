// SPDX-License-Identifier: MIT
#include "engine/Configuration.h"
#include "engine/ScanProfile.h"
#include "tests/support/TestCase.h"

class tst_ScanProfile final : public TestCase
{
    Q_OBJECT

private slots:
    void defaults();
    void copies();
    void configuration();
};

void tst_ScanProfile::defaults()
{
    // A new profile matches byte by byte, without any restriction.
    const ScanProfile profile;
    QVERIFY(profile.matchByteByByte);
    QVERIFY(!profile.sameFileName);
    QVERIFY(!profile.sameFileExtension);
    QVERIFY(!profile.sameDateOfCreation);
    QVERIFY(!profile.advancedMatch);
    QVERIFY(!profile.md5Hash);
    QVERIFY(!profile.sha1Hash);
    QVERIFY(!profile.crcHash);
    QCOMPARE(profile.includeMasks, QStringList());
    QCOMPARE(profile.excludeMasks, QStringList());
    QVERIFY(!profile.minSizeEnabled);
    QCOMPARE(profile.minSizeInKbytes, 0);
    QVERIFY(!profile.maxSizeEnabled);
    QCOMPARE(profile.maxSizeInKbytes, 0);
}

void tst_ScanProfile::copies()
{
    // A copy holds every field and lives on its own.
    ScanProfile profile;
    profile.matchByteByByte = false;
    profile.sameFileName = profile.sameFileExtension = profile.sameDateOfCreation = true;
    profile.advancedMatch = profile.md5Hash = profile.sha1Hash = profile.crcHash = true;
    profile.includeMasks = QStringList{QStringLiteral("*.a")};
    profile.excludeMasks = QStringList{QStringLiteral("*.b")};
    profile.minSizeEnabled = profile.maxSizeEnabled = true;
    profile.minSizeInKbytes = 1;
    profile.maxSizeInKbytes = Q_INT64_C(1) << 40;
    const ScanProfile copy = profile;
    profile = ScanProfile();
    QVERIFY(!copy.matchByteByByte);
    QVERIFY(copy.sameFileName && copy.sameFileExtension && copy.sameDateOfCreation);
    QVERIFY(copy.advancedMatch && copy.md5Hash && copy.sha1Hash && copy.crcHash);
    QCOMPARE(copy.includeMasks, QStringList{QStringLiteral("*.a")});
    QCOMPARE(copy.excludeMasks, QStringList{QStringLiteral("*.b")});
    QVERIFY(copy.minSizeEnabled && copy.maxSizeEnabled);
    QCOMPARE(copy.minSizeInKbytes, 1);
    QCOMPARE(copy.maxSizeInKbytes, Q_INT64_C(1) << 40);
    QVERIFY(profile.includeMasks.isEmpty());
}

void tst_ScanProfile::configuration()
{
    // There is one configuration, empty at first.
    Configuration *const configuration = Configuration::instance();
    QCOMPARE(Configuration::instance(), configuration);
    QCOMPARE(configuration->folders, QStringList());
    QVERIFY(configuration->scanProfile.matchByteByByte);
    QVERIFY(configuration->scanProfile.includeMasks.isEmpty());
}

TWINSIFT_TEST_MAIN(tst_ScanProfile)
#include "tst_ScanProfile.moc"
