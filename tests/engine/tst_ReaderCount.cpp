// SPDX-License-Identifier: MIT
#include "engine/ReaderCount.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QScopeGuard>
#include <QThread>

#include <sys/resource.h>

class tst_ReaderCount final : public TestCase
{
    Q_OBJECT

private slots:
    void rotationalDisks();
    void counts();
    void fewOpenFiles_data();
    void fewOpenFiles();
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

void tst_ReaderCount::fewOpenFiles_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("readers");
    QTest::newRow("next to none") << 32 << 1;
    QTest::newRow("192") << 192 << 1;
    QTest::newRow("256") << 256 << 5;
    QTest::newRow("431") << 431 << 15;
    QTest::newRow("432") << 432 << 16;
    QTest::newRow("1024") << 1024 << 16;
}

void tst_ReaderCount::fewOpenFiles()
{
    // What the readers hold open leaves room for everything else.
    QFETCH(int, files);
    QFETCH(int, readers);
    struct rlimit before = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const auto restore = qScopeGuard([&before] { ::setrlimit(RLIMIT_NOFILE, &before); });
    const struct rlimit limit = {static_cast<rlim_t>(files), before.rlim_max};
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    QCOMPARE(ReaderCount::ofHeads(), readers);
}

TWINSIFT_TEST_MAIN(tst_ReaderCount)
#include "tst_ReaderCount.moc"
