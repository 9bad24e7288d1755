// SPDX-License-Identifier: MIT
#include "engine/Configuration.h"
#include "engine/FolderListing.h"
#include "tests/engine/EngineRig.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QTemporaryDir>

#include <memory>

class tst_WalkOptions final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void hidden();
    void links();
    void sizes_data();
    void sizes();
    void otherFileSystem();

private:
    QStringList walk(const WalkOptions &options);

    std::unique_ptr<TempTree> tree;
    std::unique_ptr<EngineRig> rig;
};

void tst_WalkOptions::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    rig = std::make_unique<EngineRig>();
}

void tst_WalkOptions::cleanup()
{
    rig.reset();
    Configuration::instance()->walkOptions = WalkOptions();
    TestCase::cleanup();
}

// What is found, relative to the tree.
QStringList tst_WalkOptions::walk(const WalkOptions &options)
{
    Configuration::instance()->walkOptions = options;
    rig->scan({tree->root()});
    QStringList files = rig->engine()->foundFiles();
    for (QString &file : files) {
        file.remove(0, tree->root().size() + 1);
    }
    return files;
}

void tst_WalkOptions::hidden()
{
    // Hidden files and the files in hidden folders are found when they are asked for, once each.
    tree->file(QStringLiteral(".file"));
    tree->file(QStringLiteral(".folder/inside"));
    tree->file(QStringLiteral("plain"));
    WalkOptions options;
    QCOMPARE(walk(options), QStringList(QStringLiteral("plain")));
    options.takesHidden = true;
    QCOMPARE(
        walk(options),
        QStringList(
            {QStringLiteral(".file"), QStringLiteral("plain"), QStringLiteral(".folder/inside")}));
}

void tst_WalkOptions::links()
{
    // Links to folders can be left alone; links to files always are.
    tree->file(QStringLiteral("folder/inside"));
    tree->link(QStringLiteral("link"), QStringLiteral("folder"));
    tree->link(QStringLiteral("link to a file"), QStringLiteral("folder/inside"));
    WalkOptions options;
    QCOMPARE(walk(options),
             QStringList({QStringLiteral("folder/inside"), QStringLiteral("link/inside")}));
    options.followsLinks = false;
    QCOMPARE(walk(options), QStringList(QStringLiteral("folder/inside")));
}

void tst_WalkOptions::sizes_data()
{
    QTest::addColumn<qint64>("minBytes");
    QTest::addColumn<qint64>("maxBytes");
    QTest::addColumn<QString>("found");
    const qint64 most = std::numeric_limits<qint64>::max();
    QTest::newRow("any") << qint64(0) << most << QStringLiteral("0 10 11 12");
    QTest::newRow("from") << qint64(11) << most << QStringLiteral("11 12");
    QTest::newRow("to") << qint64(0) << qint64(11) << QStringLiteral("0 10 11");
    QTest::newRow("one size") << qint64(11) << qint64(11) << QStringLiteral("11");
    QTest::newRow("empty files") << qint64(0) << qint64(0) << QStringLiteral("0");
    QTest::newRow("none") << qint64(12) << qint64(11) << QString();
}

void tst_WalkOptions::sizes()
{
    // Limits in bytes include their own value.
    QFETCH(qint64, minBytes);
    QFETCH(qint64, maxBytes);
    QFETCH(QString, found);
    for (const int bytes : {0, 10, 11, 12}) {
        tree->file(QString::number(bytes), QByteArray(bytes, 'x'));
    }
    WalkOptions options;
    options.minBytes = minBytes;
    options.maxBytes = maxBytes;
    QCOMPARE(walk(options).join(QLatin1Char(' ')), found);
}

void tst_WalkOptions::otherFileSystem()
{
    // A folder of another file system is walked, unless the walk is to stay where it began.
    const QTemporaryDir other(QStringLiteral("/dev/shm/twinsift-XXXXXX"));
    if (!other.isValid() || FolderListing::areOnOneFileSystem(other.path(), tree->root())) {
        QSKIP("There is no second file system at /dev/shm to write to.");
    }
    TempTree(other.path()).file(QStringLiteral("inside"));
    tree->link(QStringLiteral("far"), other.path());
    tree->file(QStringLiteral("near/inside"));
    WalkOptions options;
    QCOMPARE(walk(options),
             QStringList({QStringLiteral("far/inside"), QStringLiteral("near/inside")}));
    options.staysOnFileSystem = true;
    QCOMPARE(walk(options), QStringList(QStringLiteral("near/inside")));
}

TWINSIFT_TEST_MAIN(tst_WalkOptions)
#include "tst_WalkOptions.moc"
