// SPDX-License-Identifier: MIT
#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"
#include "tests/faults/FaultShim.h"
#include "tests/faults/Scan.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>
#include <QTimer>

/** Stops scans of a file system that takes its time for each call. */
class tst_SlowFiles final : public TestCase
{
    Q_OBJECT

private slots:
    void stopIsSeenBetweenFiles_data();
    void stopIsSeenBetweenFiles();
};

namespace
{
constexpr int fileCount = 400;
constexpr int delayMilliseconds = 50;
// What the readers may still take in hand until the timer that carries the stop has fired: each of
// sixteen two calls.
constexpr long maxCallsAfterStop = 32;
constexpr qint64 maxPostMilliseconds = 5000;
constexpr int maxWaitMilliseconds = 60000;
} // namespace

void tst_SlowFiles::stopIsSeenBetweenFiles_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("kind");
    QTest::newRow("byte by byte, slow opening")
        << static_cast<int>(Scan::ByteByByte) << static_cast<int>(FaultShim::Open);
    QTest::newRow("byte by byte, slow sizes")
        << static_cast<int>(Scan::ByteByByte) << static_cast<int>(FaultShim::Stat);
    QTest::newRow("MD5, slow opening")
        << static_cast<int>(Scan::Md5) << static_cast<int>(FaultShim::Open);
    QTest::newRow("SHA-1, slow reading")
        << static_cast<int>(Scan::Sha1) << static_cast<int>(FaultShim::Read);
    QTest::newRow("CRC, slow opening")
        << static_cast<int>(Scan::Crc) << static_cast<int>(FaultShim::Open);
}

void tst_SlowFiles::stopIsSeenBetweenFiles()
{
    // A stop that is posted while each call takes long ends the scan a few calls later, and who
    // posts it does not wait for the file system.
    QFETCH(int, mode);
    QFETCH(int, kind);
    const TempTree tree(path(QStringLiteral("tree")));
    for (int i = 0; i < fileCount; ++i) {
        tree.file(QStringLiteral("file%1.bin").arg(i), QByteArray(10, static_cast<char>(i % 128)));
    }
    Configuration::instance()->folders = QStringList(tree.root());
    Configuration::instance()->scanProfile = Scan::profile(static_cast<Scan::Mode>(mode));
    const auto slowKind = static_cast<FaultShim::Kind>(kind);
    FaultShim::watch(QFile::encodeName(tree.root()).constData());
    FaultShim::delay(slowKind, delayMilliseconds);

    QThread thread;
    auto *const engine = new FileFinderEngine(nullptr, nullptr, nullptr);
    engine->moveToThread(&thread);
    connect(&thread, SIGNAL(finished()), engine, SLOT(deleteLater()));
    QSignalSpy finished(engine, SIGNAL(findDuplicatedFilesFinished(QList<QStringList>)));
    thread.start();
    QTimer::singleShot(10, engine, SLOT(startFinder()));
    QTRY_VERIFY_WITH_TIMEOUT(FaultShim::calls(slowKind) >= 10, maxWaitMilliseconds);

    QElapsedTimer posting;
    posting.start();
    QTimer::singleShot(10, engine, SLOT(stopFinder()));
    QVERIFY(posting.elapsed() < maxPostMilliseconds);
    const long calls = FaultShim::calls(slowKind);
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, maxWaitMilliseconds);
    const long callsAfterStop = FaultShim::calls(slowKind) - calls;
    thread.quit();
    QVERIFY(thread.wait(maxWaitMilliseconds));
    QVERIFY2(callsAfterStop <= maxCallsAfterStop, qPrintable(QString::number(callsAfterStop)));
    QVERIFY(calls + maxCallsAfterStop < fileCount);
}

TWINSIFT_TEST_MAIN(tst_SlowFiles)
#include "tst_SlowFiles.moc"
