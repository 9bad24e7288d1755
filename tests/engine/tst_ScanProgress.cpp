// SPDX-License-Identifier: MIT
#include "engine/ScanProgress.h"
#include "tests/engine/EngineRig.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <memory>

class tst_ScanProgress final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void byteByByte();
    void advanced();
    void unwatched();

private:
    std::unique_ptr<TempTree> tree;
};

void tst_ScanProgress::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    tree->file(QStringLiteral("a"), QByteArray(1000, 'a'));
    tree->file(QStringLiteral("b"), QByteArray(1000, 'a'));
    tree->file(QStringLiteral("c"), QByteArray(1000, 'b'));
    tree->file(QStringLiteral("single"), "single");
    ScanProgress::instance()->isWatched = true;
}

void tst_ScanProgress::cleanup()
{
    ScanProgress::instance()->isWatched = false;
    TestCase::cleanup();
}

void tst_ScanProgress::byteByByte()
{
    // Files that share their size are to be compared, and are when the scan ends; the next scan begins
    // anew.
    const ScanProgress &progress = *ScanProgress::instance();
    EngineRig rig;
    for (int scan = 1; scan <= 2; ++scan) {
        rig.scan({tree->root()});
        QCOMPARE(progress.filesFound.load(), 4);
        QCOMPARE(progress.filesToCompare.load(), 3);
        QCOMPARE(progress.bytesToCompare.load(), 3000);
        QCOMPARE(progress.filesCompared.load(), 3);
        QCOMPARE(progress.bytesCompared.load(), 3000);
        QCOMPARE(progress.bytesRead.load(), 3000);
    }
}

void tst_ScanProgress::advanced()
{
    // For checksums all files are read, each counted as it is done.
    const ScanProgress &progress = *ScanProgress::instance();
    EngineRig rig;
    qint64 comparedAtSecond = -1;
    // The walk and the beginnings give four signals, then each file gives one.
    rig.atSignal(6, [&] { comparedAtSecond = progress.filesCompared; });
    rig.scan({tree->root()}, EngineRig::advanced(QStringLiteral("md5")));
    QCOMPARE(comparedAtSecond, 2);
    QCOMPARE(progress.filesToCompare.load(), 4);
    QCOMPARE(progress.bytesToCompare.load(), 3006);
    QCOMPARE(progress.filesCompared.load(), 4);
    QCOMPARE(progress.bytesCompared.load(), 3006);
    QCOMPARE(progress.bytesRead.load(), 3006);
}

void tst_ScanProgress::unwatched()
{
    // Nobody's watching costs no look at the files: what is to be done stays unknown.
    ScanProgress::instance()->isWatched = false;
    EngineRig rig;
    for (const ScanProfile &profile : {ScanProfile(), EngineRig::advanced(QStringLiteral("md5"))}) {
        rig.scan({tree->root()}, profile);
        QCOMPARE(ScanProgress::instance()->filesFound.load(), 4);
        QCOMPARE(ScanProgress::instance()->filesToCompare.load(), 0);
        QCOMPARE(ScanProgress::instance()->bytesToCompare.load(), 0);
    }
}

TWINSIFT_TEST_MAIN(tst_ScanProgress)
#include "tst_ScanProgress.moc"
