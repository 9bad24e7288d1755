// SPDX-License-Identifier: MIT
#include "engine/ReaderCount.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QThread>

class tst_ReaderCount final : public TestCase
{
    Q_OBJECT

private slots:
    void rotationalDisks();
    void counts();
};

void tst_ReaderCount::rotationalDisks()
{
    // A disk says whether it turns, for its partitions as well; what says nothing does not turn.
    const TempTree tree(path(QStringLiteral("devices")));
    tree.file(QStringLiteral("turning/queue/rotational"), QByteArrayLiteral("1\n"));
    tree.folder(QStringLiteral("turning/partition"));
    tree.file(QStringLiteral("still/queue/rotational"), QByteArrayLiteral("0\n"));
    tree.folder(QStringLiteral("still/partition"));
    tree.folder(QStringLiteral("silent"));
    QVERIFY(ReaderCount::isRotational(tree.path(QStringLiteral("turning"))));
    QVERIFY(ReaderCount::isRotational(tree.path(QStringLiteral("turning/partition"))));
    QVERIFY(!ReaderCount::isRotational(tree.path(QStringLiteral("still"))));
    QVERIFY(!ReaderCount::isRotational(tree.path(QStringLiteral("still/partition"))));
    QVERIFY(!ReaderCount::isRotational(tree.path(QStringLiteral("silent"))));
    QVERIFY(!ReaderCount::isRotational(tree.path(QStringLiteral("none"))));
}

void tst_ReaderCount::counts()
{
    // Contents are read by no more threads than there are processors.
    QVERIFY(ReaderCount::ofContents({home()}) >= 1);
    QVERIFY(ReaderCount::ofContents({home(), QStringLiteral("/none")})
            <= QThread::idealThreadCount());
    QVERIFY(ReaderCount::ofHeads() >= 4);
    QVERIFY(ReaderCount::ofFolders() >= 4);
}

TWINSIFT_TEST_MAIN(tst_ReaderCount)
#include "tst_ReaderCount.moc"
