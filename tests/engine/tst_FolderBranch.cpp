// SPDX-License-Identifier: MIT
#include "engine/FolderBranch.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QFileInfo>

#include <functional>
#include <limits>
#include <memory>

class tst_FolderBranch final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void promisedFoldersFollow_data();
    void promisedFoldersFollow();
    void linksAreNotListed();
    void slowFolderIsAlone();
    void systemFolderIsAlone();
    void missingFolderIsListed();

private:
    QStringList listed(const FolderBranch::Options &options);

    std::unique_ptr<TempTree> tree;
};

namespace
{
constexpr qint64 whateverTime = std::numeric_limits<qint64>::max();

GoOn always()
{
    return [] {
        return true;
    };
}
} // namespace

void tst_FolderBranch::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    Background::setThreadCount(2);
}

void tst_FolderBranch::cleanup()
{
    QVERIFY(Background::waitForDone(60000));
    TestCase::cleanup();
}

// Walks down what is told to follow, names each folder by its only file, and what is left out by a
// dash.
QStringList tst_FolderBranch::listed(const FolderBranch::Options &options)
{
    FolderBranch branch(tree->root(), options, 0);
    QStringList record;
    const std::function<void()> walk = [&] {
        FolderBranch::Listed listed;
        if (!branch.take(&listed, always())) {
            record.append(QStringLiteral("none"));
            return;
        }
        record.append(listed.entries.files.value(0, {QStringLiteral("."), 0}).name);
        for (int i = 0; i < listed.entries.folders.size(); ++i) {
            const FolderListing::Folder &subfolder = listed.entries.folders.at(i);
            if (i < listed.listedSubfolders && !subfolder.isLink) {
                walk();
            } else {
                record.append(QLatin1Char('-') + subfolder.name);
            }
        }
    };
    walk();
    FolderBranch::Listed listed;
    if (branch.take(&listed, always())) {
        record.append(QStringLiteral("more than told"));
    }
    return record;
}

void tst_FolderBranch::promisedFoldersFollow_data()
{
    QTest::addColumn<int>("folders");
    QTest::addColumn<QString>("record");
    QTest::newRow("one") << 1 << ". -a -b -c";
    QTest::newRow("one below") << 2 << ". A -a -b -b -c";
    QTest::newRow("some of one level") << 3 << ". A -a -b B -c";
    QTest::newRow("one level") << 4 << ". A -a -b B C -a";
    QTest::newRow("the next level") << 5 << ". A A_A -b B C -a";
    QTest::newRow("two levels") << 7 << ". A A_A A_B A_B_A B C -a";
    QTest::newRow("all") << 8 << ". A A_A A_B A_B_A B C C_A";
    QTest::newRow("more than there are") << 100 << ". A A_A A_B A_B_A B C C_A";
}

void tst_FolderBranch::promisedFoldersFollow()
{
    // What is told to be listed behind a folder comes in the order of a walk, however few it may be.
    QFETCH(int, folders);
    QFETCH(QString, record);
    for (const char *name : {"a", "a/a", "a/b", "a/b/a", "b", "c", "c/a"}) {
        const QString relative = QLatin1String(name);
        tree->file(relative + QLatin1Char('/')
                   + relative.toUpper().replace(QLatin1Char('/'), QLatin1Char('_')));
    }
    QCOMPARE(listed({FileMasks({}), false, folders, whateverTime}).join(QLatin1Char(' ')), record);
}

void tst_FolderBranch::linksAreNotListed()
{
    // A link counts as one of the folders, and nothing is listed for it.
    tree->file(QStringLiteral("a/in_a"));
    tree->file(QStringLiteral("c/in_c"));
    tree->link(QStringLiteral("b"), tree->path(QStringLiteral("a")));
    QCOMPARE(listed({FileMasks({}), false, 100, whateverTime}),
             QStringList({QStringLiteral("."),
                          QStringLiteral("in_a"),
                          QStringLiteral("-b"),
                          QStringLiteral("in_c")}));
}

void tst_FolderBranch::slowFolderIsAlone()
{
    tree->file(QStringLiteral("a/in_a"));
    QCOMPARE(listed({FileMasks({}), false, 100, 0}),
             QStringList({QStringLiteral("."), QStringLiteral("-a")}));
}

void tst_FolderBranch::systemFolderIsAlone()
{
    // Few walks enter what is below it, and it may change while it is listed.
    const QString proc = QStringLiteral("/proc/self");
    if (!QFileInfo::exists(proc)) {
        QSKIP("no /proc here");
    }
    FolderBranch branch(proc, {FileMasks({}), false, 8, whateverTime}, 0);
    FolderBranch::Listed listed;
    QVERIFY(branch.take(&listed, always()));
    QVERIFY(!listed.entries.folders.isEmpty());
    QCOMPARE(listed.listedSubfolders, 0);
}

void tst_FolderBranch::missingFolderIsListed()
{
    // With its reason, as one that could not be read.
    FolderBranch branch(tree->path(QStringLiteral("gone")), {FileMasks({}), false, 8}, 0);
    FolderBranch::Listed listed;
    QVERIFY(branch.take(&listed, always()));
    QVERIFY(!listed.entries.error.isEmpty());
    QVERIFY(!branch.take(&listed, always()));
}

TWINSIFT_TEST_MAIN(tst_FolderBranch)
#include "tst_FolderBranch.moc"
