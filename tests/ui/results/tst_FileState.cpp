// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/FileState.h"

#include <QFile>

#include <unistd.h>
#ifdef Q_OS_LINUX
#include <sys/sysmacros.h>
#endif

/** What is seen at a path, of real files. */
class tst_FileState final : public TestCase
{
    Q_OBJECT

private slots:
    void seesWhatStandsThere_data();
    void seesWhatStandsThere();
    void tellsAFileFromItsSuccessor();
    void tellsEntriesApart();
    void tellsViewsFromCopies_data();
    void tellsViewsFromCopies();
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

void tst_FileState::tellsViewsFromCopies_data()
{
    QTest::addColumn<quint64>("device");
    QTest::addColumn<qint64>("modified");
    QTest::addColumn<qint64>("changed");
    QTest::addColumn<bool>("isSame");
    const auto disk = static_cast<quint64>(::makedev(8, 2));
    const auto view = static_cast<quint64>(::makedev(0, 50));
    const qint64 time = 1700000000123456789;
    const qint64 coarse = 1700000000120000000;
    QTest::newRow("through a file system without a disk") << view << time << time << true;
    QTest::newRow("a copy that kept its time") << view << time << time + 1 << false;
    QTest::newRow("written to") << view << time + 1 << time << false;
    QTest::newRow("where times are coarse") << view << time << coarse << false;
    QTest::newRow("on a disk that is a copy as a whole") << disk << time << time << false;
}

void tst_FileState::tellsViewsFromCopies()
{
    // A file that another file system shows is the same entry, whatever number it has there; a copy
    // is none, also on a disk that was copied block by block.
#ifdef Q_OS_LINUX
    QFETCH(quint64, device);
    QFETCH(qint64, modified);
    QFETCH(qint64, changed);
    QFETCH(bool, isSame);
    FileState file;
    file.exists = true;
    file.isRegular = true;
    file.size = 7;
    file.links = 1;
    file.modified = 1700000000123456789;
    file.changed = changed == 1700000000120000000 ? changed : file.modified;
    file.file = {static_cast<quint64>(::makedev(8, 1)), 12};
    FileState other = file;
    other.modified = modified;
    other.changed = changed;
    other.file = {device, 34};
    QCOMPARE(file.isSameEntryAs(other), isSame);
    QCOMPARE(other.isSameEntryAs(file), isSame);
    other.size = 8;
    QVERIFY(!file.isSameEntryAs(other));
#else
    QSKIP("devices are numbered by their kind on Linux alone");
#endif
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
