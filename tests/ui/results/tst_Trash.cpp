// SPDX-License-Identifier: MIT
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/Trash.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>
#include <QStorageInfo>

#include <unistd.h>

class tst_Trash final : public TestCase
{
    Q_OBJECT

private slots:
    void movesAFile_data();
    void movesAFile();
    void keepsFilesOfOneNameApart();
    void movesALinkNotItsTarget();
    void makesTheDataFolder();
    void failsWithoutADataFolder();
    void putsBackWhatLandsElsewhere();
    void failsForAFileThatHasGone();
    void failsInAFolderThatCannotBeWritten();
    void movesToTheTrashOfAnotherVolume();

private:
    QString trash() const { return home() + QStringLiteral("/.local/share/Trash"); }
    QByteArray infoOf(const QString &name) const
    {
        return TempTree::read(trash() + QStringLiteral("/info/") + name
                              + QStringLiteral(".trashinfo"));
    }
    QStringList inTrash(const QString &part) const
    {
        return QDir(trash() + QLatin1Char('/') + part).entryList(QDir::Files | QDir::System);
    }
};

void tst_Trash::movesAFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("written");
    QTest::newRow("plain") << QStringLiteral("a.txt") << QByteArray("a.txt");
    QTest::newRow("a blank") << QStringLiteral("a b.txt") << QByteArray("a%20b.txt");
    QTest::newRow("a per cent sign") << QStringLiteral("a%41.txt") << QByteArray("a%2541.txt");
    QTest::newRow("a line break") << QStringLiteral("a\nPath=b") << QByteArray("a%0APath%3Db");
    QTest::newRow("another script")
        << QStringLiteral("\u00fc\u65e5") << QByteArray("%C3%BC%E6%97%A5");
}

void tst_Trash::movesAFile()
{
    // The file is in the trash with its content, and its note names the place it came from.
    QFETCH(QString, name);
    QFETCH(QByteArray, written);
    const QString file = TempTree(path(QString())).file(name, "content");
    QVERIFY(Trash::moveFile(file));
    QVERIFY(!QFileInfo::exists(file));
    QCOMPARE(TempTree::read(trash() + QStringLiteral("/files/") + name), QByteArray("content"));
    const QList<QByteArray> lines = infoOf(name).split('\n');
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(0), QByteArray("[Trash Info]"));
    QCOMPARE(lines.at(1), "Path=" + QFile::encodeName(path(QString())) + "/" + written);
    QVERIFY(QDateTime::fromString(QString::fromLatin1(lines.at(2).mid(13)), Qt::ISODate).isValid());
    QVERIFY(lines.at(2).startsWith("DeletionDate="));
    QCOMPARE(lines.at(3), QByteArray());
}

void tst_Trash::keepsFilesOfOneNameApart()
{
    // Two files of one name are both in the trash, each with a note of its own.
    const TempTree tree(path(QString()));
    QVERIFY(Trash::moveFile(tree.file(QStringLiteral("one/a.txt"), "first")));
    QVERIFY(Trash::moveFile(tree.file(QStringLiteral("two/a.txt"), "second")));
    QCOMPARE(inTrash(QStringLiteral("files")).size(), 2);
    QStringList contents;
    for (const QString &name : inTrash(QStringLiteral("files"))) {
        const QByteArray content = TempTree::read(trash() + QStringLiteral("/files/") + name);
        QVERIFY(infoOf(name).contains(content == "first" ? "/one/a.txt\n" : "/two/a.txt\n"));
        contents.append(QString::fromLatin1(content));
    }
    contents.sort();
    QCOMPARE(contents, QStringList({QStringLiteral("first"), QStringLiteral("second")}));
}

void tst_Trash::movesALinkNotItsTarget()
{
    // Of a link, the link goes and its target stays.
    const TempTree tree(path(QString()));
    const QString target = tree.file(QStringLiteral("target"), "content");
    QVERIFY(Trash::moveFile(tree.link(QStringLiteral("link"), target)));
    QVERIFY(QFileInfo::exists(target));
    QVERIFY(!QFileInfo(tree.path(QStringLiteral("link"))).isSymLink());
    QVERIFY(QFileInfo(trash() + QStringLiteral("/files/link")).isSymLink());
}

void tst_Trash::makesTheDataFolder()
{
    // A user without a data folder gets one, and the file is in it.
    QVERIFY(QDir(home() + QStringLiteral("/.local")).removeRecursively());
    const QString file = TempTree(path(QString())).file(QStringLiteral("a.txt"), "content");
    QVERIFY(Trash::moveFile(file));
    QCOMPARE(inTrash(QStringLiteral("files")), QStringList(QStringLiteral("a.txt")));
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("files"))));
}

void tst_Trash::failsWithoutADataFolder()
{
    // Where no data folder can be made the file stays in its place.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("a.txt"), "content");
    qputenv("XDG_DATA_HOME", QFile::encodeName(file + QStringLiteral("/below")));
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QCOMPARE(QDir(tree.root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(QStringLiteral("a.txt")));
}

void tst_Trash::putsBackWhatLandsElsewhere()
{
    // A file that the toolkit has put where no desktop looks for it is back in its place.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("a.txt"), "content");
    qputenv("XDG_DATA_HOME", "data");
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    const QDir places(tree.path(QStringLiteral("data/Trash")));
    QVERIFY(QDir(places.filePath(QStringLiteral("files"))).isEmpty());
    QVERIFY(QDir(places.filePath(QStringLiteral("info"))).isEmpty());
}

void tst_Trash::failsForAFileThatHasGone()
{
    // There is nothing to move, and nothing is left in the trash.
    QVERIFY(!Trash::moveFile(path(QStringLiteral("missing"))));
    QVERIFY(!Trash::moveFile(QString()));
    QCOMPARE(inTrash(QStringLiteral("files")), QStringList());
    QCOMPARE(inTrash(QStringLiteral("info")), QStringList());
}

void tst_Trash::failsInAFolderThatCannotBeWritten()
{
    // A file that may not leave its folder is still there, and so is no note of it in the trash.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("folder/a.txt"), "content");
    tree.setMode(QStringLiteral("folder"), 0555);
    const auto writable = qScopeGuard([&] { tree.setMode(QStringLiteral("folder"), 0755); });
    {
        const RestrictedRights rights;
        QVERIFY(!Trash::moveFile(file));
    }
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QCOMPARE(inTrash(QStringLiteral("files")), QStringList());
    QCOMPARE(inTrash(QStringLiteral("info")), QStringList());
}

void tst_Trash::movesToTheTrashOfAnotherVolume()
{
    // A file on another volume than HOME is in that volume's own trash, with a note of its place.
    const QString root = QStringLiteral("/dev/shm");
    const QStorageInfo volume(root);
    if (volume.rootPath() != root || volume.device() == QStorageInfo(home()).device()
        || !QFileInfo(root).isWritable()) {
        QSKIP("there is no second volume to write to");
    }
    const QString name = QStringLiteral("twinsift-test-%1").arg(QCoreApplication::applicationPid());
    const QString file = TempTree(root).file(name, "content");
    const QString place = QStringLiteral("%1/.Trash-%2").arg(root).arg(::getuid());
    const QString moved = place + QStringLiteral("/files/") + name;
    const QString note = place + QStringLiteral("/info/") + name + QStringLiteral(".trashinfo");
    const auto clean = qScopeGuard([&] {
        QFile::remove(file);
        QFile::remove(moved);
        QFile::remove(note);
        for (const char *part : {"files", "info", "."}) {
            QDir().rmdir(QDir::cleanPath(place + QLatin1Char('/') + QLatin1String(part)));
        }
    });
    QVERIFY(Trash::moveFile(file));
    QVERIFY(!QFileInfo::exists(file));
    QCOMPARE(TempTree::read(moved), QByteArray("content"));
    QVERIFY(TempTree::read(note).contains("\nPath=" + QFile::encodeName(file) + "\n"));
}

TWINSIFT_TEST_MAIN(tst_Trash)
#include "tst_Trash.moc"
