// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/FileState.h"

#include <QFile>

#include <unistd.h>

/** What is seen at a path, of real files. */
class tst_FileState final : public TestCase
{
    Q_OBJECT

private slots:
    void seesWhatStandsThere_data();
    void seesWhatStandsThere();
    void tellsAFileFromItsSuccessor();
    void tellsEntriesApart();
    void comparesBytes_data();
    void comparesBytes();
};

void tst_FileState::seesWhatStandsThere_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("exists");
    QTest::addColumn<bool>("isRegular");
    QTest::newRow("file") << QStringLiteral("file") << true << true;
    QTest::newRow("link") << QStringLiteral("link") << true << false;
    QTest::newRow("folder") << QStringLiteral("folder") << true << false;
    QTest::newRow("fifo") << QStringLiteral("fifo") << true << false;
    QTest::newRow("nothing") << QStringLiteral("nothing") << false << false;
    QTest::newRow("below a file") << QStringLiteral("file/nothing") << false << false;
}

void tst_FileState::seesWhatStandsThere()
{
    // A file is one only by its own entry: a link to one is none, and nothing waits for a pipe.
    QFETCH(QString, kind);
    QFETCH(bool, exists);
    QFETCH(bool, isRegular);
    const TempTree tree(path(QString()));
    tree.link(QStringLiteral("link"), tree.file(QStringLiteral("file"), "content"));
    tree.folder(QStringLiteral("folder"));
    tree.fifo(QStringLiteral("fifo"));
    const FileState state = FileState::of(tree.path(kind));
    QCOMPARE(state.exists, exists);
    QCOMPARE(state.isRegular, isRegular);
    QCOMPARE(state.size, isRegular ? 7 : state.size);
}

void tst_FileState::tellsAFileFromItsSuccessor()
{
    // A file is the same as long as it is neither written to nor replaced.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("file"), "content");
    const FileState seen = FileState::of(file);
    QVERIFY(FileState::of(file).isSameFileAs(seen));
    tree.file(QStringLiteral("file"), "longer content");
    QVERIFY(!FileState::of(file).isSameFileAs(seen));
    QVERIFY(QFile::rename(file, tree.path(QStringLiteral("aside"))));
    QVERIFY(!FileState::of(file).isSameFileAs(seen));
    QVERIFY(!FileState().isSameFileAs(FileState()));
}

void tst_FileState::tellsEntriesApart()
{
    // A path through a link leads to the same entry; another name of the file, in its folder or in
    // another one under the same name, is an entry of its own.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("folder/file"), "content");
    tree.file(QStringLiteral("folder/copy"), "content");
    tree.link(QStringLiteral("link"), tree.path(QStringLiteral("folder")));
    tree.folder(QStringLiteral("other"));
    const auto isSame = [&](const char *a, const char *b) {
        return FileState::of(tree.path(QString::fromLatin1(a)))
            .isSameEntryAs(FileState::of(tree.path(QString::fromLatin1(b))));
    };
    QVERIFY(isSame("folder/file", "link/file"));
    QVERIFY(!isSame("folder/file", "folder/copy"));
    const FileState withOneName = FileState::of(file);
    for (const char *name : {"folder/second", "other/file"}) {
        QCOMPARE(::link(QFile::encodeName(file).constData(),
                        QFile::encodeName(tree.path(QString::fromLatin1(name))).constData()),
                 0);
        QVERIFY(!isSame("folder/file", name));
    }
    QVERIFY(isSame("folder/file", "link/file"));
    QVERIFY(isSame("link/second", "folder/second"));
    // A name that was made in between tells nothing of the entry that was seen before.
    QVERIFY(withOneName.isSameEntryAs(FileState::of(tree.path(QStringLiteral("link/file")))));
    QVERIFY(FileState::of(tree.path(QStringLiteral("link/file"))).isSameEntryAs(withOneName));
}

void tst_FileState::comparesBytes_data()
{
    QTest::addColumn<QByteArray>("a");
    QTest::addColumn<QByteArray>("b");
    QTest::addColumn<bool>("areSame");
    const QByteArray long1(400000, 'x');
    QTest::newRow("empty") << QByteArray() << QByteArray() << true;
    QTest::newRow("short") << QByteArray("a") << QByteArray("a") << true;
    QTest::newRow("different") << QByteArray("a") << QByteArray("b") << false;
    QTest::newRow("the beginning of the other")
        << QByteArray(256, 'x') << QByteArray(512, 'x') << false;
    QTest::newRow("long") << long1 << long1 << true;
    QTest::newRow("different at the end") << long1 + 'a' << long1 + 'b' << false;
}

void tst_FileState::comparesBytes()
{
    // Contents are the same to the last byte; what cannot be read is not, and no line is logged.
    QFETCH(QByteArray, a);
    QFETCH(QByteArray, b);
    QFETCH(bool, areSame);
    const TempTree tree(path(QString()));
    const QString first = tree.file(QStringLiteral("a"), a);
    const QString second = tree.file(QStringLiteral("b"), b);
    QCOMPARE(FileState::haveSameBytes(first, second), areSame);
    QCOMPARE(FileState::haveSameBytes(second, first), areSame);
    QVERIFY(!FileState::haveSameBytes(first, tree.path(QStringLiteral("missing"))));
    QVERIFY(!FileState::haveSameBytes(tree.fifo(QStringLiteral("fifo")), first));
}

TWINSIFT_TEST_MAIN(tst_FileState)
#include "tst_FileState.moc"
