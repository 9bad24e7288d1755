// SPDX-License-Identifier: MIT
#include "engine/DuplicateGroup.h"
#include "engine/ExactGroups.h"
#include "tests/support/TestCase.h"

#include <QStringList>

/** The files of one content, and those of one bucket, each known by its path. */
class tst_ExactGroups final : public TestCase
{
    Q_OBJECT

private slots:
    void keepsEachPathOnce_data();
    void keepsEachPathOnce();
    void believesThatNoneRepeats();
    void standInTheOrderOfTheirFirstFiles();
    void endsWhereItMayNotGoOn_data();
    void endsWhereItMayNotGoOn();

private:
    static QVector<ScannedFile> filesOf(const QStringList &paths)
    {
        QVector<ScannedFile> files;
        for (const QString &path : paths) {
            files.append({path, 1, 2});
        }
        return files;
    }
    static QStringList pathsOf(const QVector<ScannedFile> &files)
    {
        QStringList paths;
        for (const ScannedFile &file : files) {
            paths.append(file.path);
        }
        return paths;
    }
    static QStringList names(int count)
    {
        QStringList all;
        for (int i = 0; i < count; ++i) {
            all.append(QString::number(i));
        }
        return all;
    }
    static bool always() { return true; }
};

void tst_ExactGroups::keepsEachPathOnce_data()
{
    QTest::addColumn<int>("files");
    for (const int files : {1, 2, 4, 5, 40}) {
        QTest::addRow("%d", files) << files;
    }
}

void tst_ExactGroups::keepsEachPathOnce()
{
    // However many files there are, a path that was found twice is one of them, where it was first.
    QFETCH(int, files);
    const QStringList once = names(files);
    ExactGroups groups;
    QVERIFY(groups.add(0, filesOf(once + once), true, always));
    QCOMPARE(groups.inOrder().size(), files > 1 ? 1 : 0);
    if (files > 1) {
        QCOMPARE(pathsOf(groups.inOrder().first()), once);
    }
}

void tst_ExactGroups::believesThatNoneRepeats()
{
    // Where no path can stand there twice all are taken as they come, and nothing is asked.
    ExactGroups groups;
    QVERIFY(groups.add(0, filesOf(names(20)), false, [] { return false; }));
    QCOMPARE(pathsOf(groups.inOrder().first()), names(20));
    DuplicateGroup group(names(3), false, [] { return false; });
    QVERIFY(group.knowsAllFiles());
    QVERIFY(group.add(0, 2));
    QVERIFY(!group.add(0, 2));
    QVERIFY(group.add(0, 1));
}

void tst_ExactGroups::standInTheOrderOfTheirFirstFiles()
{
    // Whatever the order in which they are added.
    ExactGroups groups;
    const QStringList late = {QStringLiteral("c"), QStringLiteral("d")};
    const QStringList early = {QStringLiteral("a"), QStringLiteral("b")};
    QVERIFY(groups.add(7, filesOf(late), true, always));
    QVERIFY(groups.add(3, filesOf(early), true, always));
    QCOMPARE(pathsOf(groups.inOrder().at(0)), early);
    QCOMPARE(pathsOf(groups.inOrder().at(1)), late);
}

void tst_ExactGroups::endsWhereItMayNotGoOn_data()
{
    QTest::addColumn<int>("files");
    for (const int files : {4, 40}) {
        QTest::addRow("%d", files) << files;
    }
}

void tst_ExactGroups::endsWhereItMayNotGoOn()
{
    // A stop is seen at every file, however many are of one content, and leaves nothing half done.
    QFETCH(int, files);
    for (int leave = 0; leave <= files; ++leave) {
        int asked = 0;
        const auto goOn = [&asked, leave] {
            return asked++ < leave;
        };
        ExactGroups groups;
        QCOMPARE(groups.add(0, filesOf(names(files)), true, goOn), leave == files);
        QCOMPARE(groups.inOrder().size(), leave == files ? 1 : 0);
        asked = 0;
        QCOMPARE(DuplicateGroup(names(files), true, goOn).knowsAllFiles(), leave == files);
    }
}

TWINSIFT_TEST_MAIN(tst_ExactGroups)
#include "tst_ExactGroups.moc"
