// SPDX-License-Identifier: MIT
#include "tests/support/RestrictedRights.h"
#include "tests/support/SmallFiles.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/FileState.h"
#include "ui/results/Trash.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QStorageInfo>

#include <unistd.h>
#include <utime.h>

class tst_Trash final : public TestCase
{
    Q_OBJECT

private slots:
    void movesAFile_data();
    void movesAFile();
    void keepsFilesOfOneNameApart();
    void movesManyFilesOfOneName();
    void movesANameOfAnyLength_data();
    void movesANameOfAnyLength();
    void movesALinkNotItsTarget_data();
    void movesALinkNotItsTarget();
    void movesAFolderWhole();
    void makesTheDataFolder();
    void failsWithoutADataFolder();
    void failsWithADataFolderOfTheWorkingFolder();
    void failsForAFileThatHasGone();
    void failsInAFolderThatCannotBeWritten();
    void failsWithoutRoomForTheNote();
    void failsWhereTheTrashIsNone_data();
    void failsWhereTheTrashIsNone();
    void failsInTheTrashOfAnotherUser_data();
    void failsInTheTrashOfAnotherUser();
    void failsWhereTheTrashIsClosed_data();
    void failsWhereTheTrashIsClosed();
    void movesToTheTrashOfAnotherVolume();
    void movesTheFileThatWasSeen();
    void leavesAnyOtherFileThanTheOneSeen_data();
    void leavesAnyOtherFileThanTheOneSeen();
    void holdsWhatLiesInIt_data();
    void holdsWhatLiesInIt();

private:
    QByteArray infoOf(const QString &name) const
    {
        return TempTree::read(homeTrash() + QStringLiteral("/info/") + name
                              + QStringLiteral(".trashinfo"));
    }
    QStringList inTrash(const QString &part) const
    {
        return QDir(homeTrash() + QLatin1Char('/') + part).entryList(QDir::Files | QDir::System);
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
    QCOMPARE(TempTree::read(homeTrash() + QStringLiteral("/files/") + name), QByteArray("content"));
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
        const QByteArray content = TempTree::read(homeTrash() + QStringLiteral("/files/") + name);
        QVERIFY(infoOf(name).contains(content == "first" ? "/one/a.txt\n" : "/two/a.txt\n"));
        contents.append(QString::fromLatin1(content));
    }
    contents.sort();
    QCOMPARE(contents, QStringList({QStringLiteral("first"), QStringLiteral("second")}));
}

void tst_Trash::movesManyFilesOfOneName()
{
    // However many files have one name, each gets another in the trash; one that lies there without
    // a note is left alone.
    const TempTree tree(path(QString()));
    QVERIFY(QDir().mkpath(homeTrash() + QStringLiteral("/files")));
    const TempTree inFiles(homeTrash() + QStringLiteral("/files"));
    for (const char *name : {"a.txt", "a.txt-3"}) {
        inFiles.file(QString::fromLatin1(name), "without a note");
    }
    constexpr int count = 40;
    QStringList wanted = {QStringLiteral("without a note"), QStringLiteral("without a note")};
    for (int i = 0; i < count; ++i) {
        const QByteArray content = QByteArray::number(i);
        QVERIFY(Trash::moveFile(tree.file(QStringLiteral("%1/a.txt").arg(i), content)));
        wanted.append(QString::fromLatin1(content));
    }
    QStringList found;
    for (const QString &name : inTrash(QStringLiteral("files"))) {
        const QByteArray content = TempTree::read(homeTrash() + QStringLiteral("/files/") + name);
        found.append(QString::fromLatin1(content));
        if (content != "without a note") {
            QVERIFY(infoOf(name).contains(QByteArray('/' + content + "/a.txt\n")));
        }
    }
    found.sort();
    wanted.sort();
    QCOMPARE(found, wanted);
    QCOMPARE(inTrash(QStringLiteral("info")).size(), count);
}

void tst_Trash::movesANameOfAnyLength_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("with room for the note's ending") << QString(245, QLatin1Char('n'));
    QTest::newRow("one byte more") << QString(246, QLatin1Char('n'));
    QTest::newRow("as long as can be") << QString(255, QLatin1Char('n'));
    QTest::newRow("of three bytes a letter") << QStringLiteral("\u20ac").repeated(85);
}

void tst_Trash::movesANameOfAnyLength()
{
    // Two files of one name are in the trash under names that are cut where they must be, between
    // two letters; their notes tell the whole ones.
    QFETCH(QString, name);
    const TempTree tree(path(QString()));
    for (const char *part : {"one", "two"}) {
        const QString file = tree.file(QLatin1String(part) % QLatin1Char('/') % name, part);
        QVERIFY(Trash::moveFile(file));
        QVERIFY(!QFileInfo::exists(file));
    }
    QCOMPARE(inTrash(QStringLiteral("files")).size(), 2);
    QCOMPARE(inTrash(QStringLiteral("info")).size(), 2);
    for (const QString &moved : inTrash(QStringLiteral("files"))) {
        const QByteArray content = TempTree::read(homeTrash() + QStringLiteral("/files/") + moved);
        const QByteArray whole =
            QFile::encodeName(tree.root()) + '/' + content + '/' + QFile::encodeName(name);
        QVERIFY(
            infoOf(moved).contains(QByteArray("\nPath=" + whole.toPercentEncoding("/") + '\n')));
    }
}

void tst_Trash::movesALinkNotItsTarget_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("by its whole path") << QStringLiteral("%1/target");
    QTest::newRow("beside the link") << QStringLiteral("target");
    QTest::newRow("missing") << QStringLiteral("missing");
    QTest::newRow("a folder") << QStringLiteral(".");
    QTest::newRow("on another volume") << QStringLiteral("/dev/null");
    QTest::newRow("the link itself") << QStringLiteral("link");
}

void tst_Trash::movesALinkNotItsTarget()
{
    // Of a link, the link goes as it is, wherever it leads, and its target stays.
    QFETCH(QString, target);
    const TempTree tree(path(QString()));
    const QString whole = tree.file(QStringLiteral("target"), "content");
    if (target.contains(QLatin1Char('%'))) {
        target = target.arg(tree.root());
    }
    QVERIFY(Trash::moveFile(tree.link(QStringLiteral("link"), target)));
    QCOMPARE(TempTree::read(whole), QByteArray("content"));
    QVERIFY(!QFileInfo(tree.path(QStringLiteral("link"))).isSymLink());
    QByteArray moved(1000, '\0');
    const QByteArray link = QFile::encodeName(homeTrash() + QStringLiteral("/files/link"));
    moved.resize(static_cast<int>(
        ::readlink(link.constData(), moved.data(), static_cast<size_t>(moved.size()))));
    QCOMPARE(QFile::decodeName(moved), target);
    QVERIFY(infoOf(QStringLiteral("link")).contains("Path="));
}

void tst_Trash::movesAFolderWhole()
{
    // A folder is in the trash with all that is in it.
    const TempTree tree(path(QString()));
    tree.file(QStringLiteral("folder/a/b.txt"), "content");
    QVERIFY(Trash::moveFile(tree.path(QStringLiteral("folder"))));
    QVERIFY(!QFileInfo::exists(tree.path(QStringLiteral("folder"))));
    QCOMPARE(TempTree::read(homeTrash() + QStringLiteral("/files/folder/a/b.txt")),
             QByteArray("content"));
    QVERIFY(infoOf(QStringLiteral("folder"))
                .contains(QByteArray(
                    "\nPath=" + QFile::encodeName(tree.path(QStringLiteral("folder"))) + '\n')));
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

void tst_Trash::failsWithADataFolderOfTheWorkingFolder()
{
    // No desktop looks for a trash there, so the file stays in its place.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("a.txt"), "content");
    qputenv("XDG_DATA_HOME", "data");
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QVERIFY(!QFileInfo::exists(tree.path(QStringLiteral("data"))));
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

void tst_Trash::failsWithoutRoomForTheNote()
{
    // Where the note cannot be written in full the file stays, and no piece of a note is left.
    const QString file = TempTree(path(QString())).file(QStringLiteral("a.txt"), "content");
    {
        const SmallFiles limit(20);
        QVERIFY(!Trash::moveFile(file));
    }
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QCOMPARE(inTrash(QStringLiteral("files")), QStringList());
    QCOMPARE(inTrash(QStringLiteral("info")), QStringList());
}

void tst_Trash::failsWhereTheTrashIsNone_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<bool>("isLink");
    for (const char *place : {"Trash", "Trash/files", "Trash/info"}) {
        QTest::addRow("%s is a link to somewhere else", place)
            << QString::fromLatin1(place) << true;
        QTest::addRow("%s is a file", place) << QString::fromLatin1(place) << false;
    }
}

void tst_Trash::failsWhereTheTrashIsNone()
{
    // Nothing follows a link out of the trash, and nothing tries for ever: the file stays.
    QFETCH(QString, place);
    QFETCH(bool, isLink);
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("a.txt"), "content");
    const QString elsewhere = tree.folder(QStringLiteral("elsewhere"));
    const TempTree data(home() + QStringLiteral("/.local/share"));
    isLink ? data.link(place, elsewhere) : data.file(place);
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QVERIFY(QDir(elsewhere).isEmpty());
    QCOMPARE(inTrash(QStringLiteral("info")).size(), 0);
}

void tst_Trash::failsInTheTrashOfAnotherUser_data()
{
    QTest::addColumn<QString>("place");
    for (const char *place : {"Trash", "Trash/files", "Trash/info"}) {
        QTest::newRow(place) << QString::fromLatin1(place);
    }
}

void tst_Trash::failsInTheTrashOfAnotherUser()
{
    // A trash of which a part belongs to another user takes nothing, even if all may write there.
    QFETCH(QString, place);
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("a.txt"), "content");
    const TempTree data(home() + QStringLiteral("/.local/share"));
    const QByteArray other = QFile::encodeName(data.folder(place));
    data.setMode(place, 0777);
    if (::chown(other.constData(), ::geteuid() + 1, ::getegid()) != 0) {
        QSKIP("only the super-user can make a folder of another user");
    }
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QCOMPARE(inTrash(QStringLiteral("files")), QStringList());
    QCOMPARE(inTrash(QStringLiteral("info")), QStringList());
}

void tst_Trash::failsWhereTheTrashIsClosed_data()
{
    QTest::addColumn<QString>("place");
    for (const char *place : {"Trash", "Trash/files", "Trash/info"}) {
        QTest::newRow(place) << QString::fromLatin1(place);
    }
}

void tst_Trash::failsWhereTheTrashIsClosed()
{
    // A trash of which a part cannot be written takes nothing, and nothing tries for ever.
    QFETCH(QString, place);
    const QString file = TempTree(path(QString())).file(QStringLiteral("a.txt"), "content");
    const TempTree data(home() + QStringLiteral("/.local/share"));
    data.folder(place);
    data.setMode(place, 0555);
    const auto writable = qScopeGuard([&] { data.setMode(place, 0755); });
    {
        const RestrictedRights rights;
        if (!rights.areRestricted()) {
            QSKIP("the super-user writes every folder here");
        }
        QVERIFY(!Trash::moveFile(file));
    }
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QCOMPARE(inTrash(QStringLiteral("files")), QStringList());
    QCOMPARE(inTrash(QStringLiteral("info")), QStringList());
}

void tst_Trash::movesToTheTrashOfAnotherVolume()
{
    // A file on another volume than HOME is in that volume's own trash; its note tells its place on
    // the volume.
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
    QVERIFY(TempTree::read(note).contains(QByteArray("\nPath=" + QFile::encodeName(name) + "\n")));
}

void tst_Trash::movesTheFileThatWasSeen()
{
    // A file that is what it was when it was looked at goes, also through a link to its folder, and
    // without the right to read it.
    const TempTree tree(path(QString()));
    tree.link(QStringLiteral("link"), tree.folder(QStringLiteral("folder")));
    tree.file(QStringLiteral("folder/a.txt"), "content");
    tree.setMode(QStringLiteral("folder/a.txt"), 0);
    const QString file = tree.path(QStringLiteral("link/a.txt"));
    const FileState seen = FileState::of(file);
    {
        const RestrictedRights rights;
        QVERIFY(Trash::moveFile(file, &seen));
    }
    QVERIFY(!QFileInfo::exists(file));
    QCOMPARE(TempTree::read(homeTrash() + QStringLiteral("/files/a.txt")), QByteArray("content"));
    QVERIFY(infoOf(QStringLiteral("a.txt")).contains("/link/a.txt\n"));
}

void tst_Trash::leavesAnyOtherFileThanTheOneSeen_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"gone",
                             "another file of its size and time",
                             "written to",
                             "a link to it",
                             "a folder",
                             "its folder is a link to another one"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void tst_Trash::leavesAnyOtherFileThanTheOneSeen()
{
    // What has taken the place of the file that was looked at stays there, and so does that file,
    // wherever it is by now.
    QFETCH(QString, kind);
    const TempTree tree(path(QStringLiteral("tree")));
    const QString file = tree.file(QStringLiteral("folder/a.txt"), "content");
    const QString other = tree.file(QStringLiteral("other/a.txt"), "CONTENT");
    const QString aside = tree.path(QStringLiteral("aside"));
    const utimbuf sameTime = {1000000, 1000000};
    QCOMPARE(::utime(QFile::encodeName(file).constData(), &sameTime), 0);
    QCOMPARE(::utime(QFile::encodeName(other).constData(), &sameTime), 0);
    const FileState seen = FileState::of(file);
    QByteArray there = "content";
    if (kind == QStringLiteral("written to")) {
        tree.file(QStringLiteral("folder/a.txt"), "more content");
        there = "more content";
    } else if (kind == QStringLiteral("its folder is a link to another one")) {
        QVERIFY(QDir().rename(tree.path(QStringLiteral("folder")), aside));
        tree.link(QStringLiteral("folder"), tree.path(QStringLiteral("other")));
        there = "CONTENT";
    } else {
        QVERIFY(QFile::rename(file, aside));
        if (kind == QStringLiteral("another file of its size and time")) {
            QVERIFY(QFile::rename(other, file));
            there = "CONTENT";
        } else if (kind == QStringLiteral("a link to it")) {
            tree.link(QStringLiteral("folder/a.txt"), aside);
        } else if (kind == QStringLiteral("a folder")) {
            tree.folder(QStringLiteral("folder/a.txt"));
        }
    }
    QVERIFY(!Trash::moveFile(file, &seen));
    const QFileInfo left(file);
    QCOMPARE(left.exists(), kind != QStringLiteral("gone"));
    QCOMPARE(left.isSymLink(), kind == QStringLiteral("a link to it"));
    QCOMPARE(left.isDir(), kind == QStringLiteral("a folder"));
    if (left.isFile()) {
        QCOMPARE(TempTree::read(file), there);
    }
    QCOMPARE(inTrash(QStringLiteral("files")), QStringList());
    QCOMPARE(inTrash(QStringLiteral("info")), QStringList());
}

void tst_Trash::holdsWhatLiesInIt_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("isHeld");
    // The home of a test is known when it runs.
    const QString data = QStringLiteral("DATA");
    QTest::newRow("home") << data + QStringLiteral("/Trash/files/a") << true;
    QTest::newRow("home, below a folder") << data + QStringLiteral("/Trash/files/b/a") << true;
    QTest::newRow("note") << data + QStringLiteral("/Trash/info/a") << false;
    QTest::newRow("volume") << QStringLiteral("/mnt/.Trash-1000/files/a") << true;
    QTest::newRow("shared, on a volume") << QStringLiteral("/mnt/.Trash/1000/files/a") << true;
    QTest::newRow("like one") << QStringLiteral("/mnt/Trash/files/a") << false;
    QTest::newRow("of no user") << QStringLiteral("/mnt/.Trash-x/files/a") << false;
    QTest::newRow("beside it") << data + QStringLiteral("/Trash/filesystem/a") << false;
}

void tst_Trash::holdsWhatLiesInIt()
{
    QFETCH(QString, file);
    QFETCH(bool, isHeld);
    file.replace(QStringLiteral("DATA"),
                 QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    QCOMPARE(Trash::holds(file), isHeld);
}

TWINSIFT_TEST_MAIN(tst_Trash)
#include "tst_Trash.moc"
