// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/Volume.h"
#include "ui/results/Trash.h"

#include <QDir>
#include <QFileInfo>

#include <sys/wait.h>
#include <unistd.h>

/** Moves files to the trash of a small volume of their own, which only the super-user can mount. */
class tst_TrashVolumes final : public TestCase
{
    Q_OBJECT

private slots:
    void takesTheTrashOfTheVolume_data();
    void takesTheTrashOfTheVolume();
    void fileStaysWithoutATrash_data();
    void fileStaysWithoutATrash();
    void fileStaysOnAFullVolume_data();
    void fileStaysOnAFullVolume();
    void fileStaysOnAReadOnlyVolume();
    void fileStaysWhereItsFolderIsAVolume();
    void topFolderOfAChangedRoot();
    void homeTrashOfAnotherVolumeTakesNothing();

private:
    QString volumePath() const { return path(QStringLiteral("volume")); }
    bool isHomeTrashEmpty() const { return QDir(homeTrash() + QStringLiteral("/files")).isEmpty(); }
};

namespace
{
const QString user = QString::number(::geteuid());
const QString ownTrash = QStringLiteral(".Trash-") + user;

QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                  | QDir::NoDotAndDotDot);
}
} // namespace

void tst_TrashVolumes::takesTheTrashOfTheVolume_data()
{
    QTest::addColumn<QString>("shared");
    QTest::addColumn<QString>("trash");
    QTest::newRow("one of its own") << QString() << ownTrash;
    QTest::newRow("the shared one") << QStringLiteral("sticky") << QStringLiteral(".Trash/") + user;
    QTest::newRow("its own, as the shared one is not sticky")
        << QStringLiteral("folder") << ownTrash;
    QTest::newRow("its own, as the shared one is a link") << QStringLiteral("link") << ownTrash;
    QTest::newRow("its own, as the shared one is a file") << QStringLiteral("file") << ownTrash;
}

void tst_TrashVolumes::takesTheTrashOfTheVolume()
{
    // A file goes to the trash of its volume, to the shared one only if that is safe; its note tells
    // its place on the volume.
    QFETCH(QString, shared);
    QFETCH(QString, trash);
    const Volume volume(volumePath(), "size=1m");
    if (!volume.isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    const QString elsewhere = volume.tree.folder(QStringLiteral("elsewhere"));
    volume.tree.setMode(QStringLiteral("elsewhere"), 01777);
    if (shared == QStringLiteral("link")) {
        volume.tree.link(QStringLiteral(".Trash"), elsewhere);
    } else if (shared == QStringLiteral("file")) {
        volume.tree.file(QStringLiteral(".Trash"));
    } else if (!shared.isEmpty()) {
        volume.tree.folder(QStringLiteral(".Trash"));
        volume.tree.setMode(QStringLiteral(".Trash"),
                            shared == QStringLiteral("sticky") ? 01777 : 0777);
    }
    const QString file = volume.tree.file(QStringLiteral("folder/a b.txt"), "content");
    QVERIFY(Trash::moveFile(file));
    QVERIFY(!QFileInfo::exists(file));
    const QString place = volume.tree.path(trash);
    QCOMPARE(TempTree::read(place + QStringLiteral("/files/a b.txt")), QByteArray("content"));
    QVERIFY(TempTree::read(place + QStringLiteral("/info/a b.txt.trashinfo"))
                .startsWith("[Trash Info]\nPath=folder/a%20b.txt\nDeletionDate="));
    QCOMPARE(namesIn(elsewhere), QStringList());
    QVERIFY(isHomeTrashEmpty());
}

void tst_TrashVolumes::fileStaysWithoutATrash_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"file", "link", "folder of another user"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void tst_TrashVolumes::fileStaysWithoutATrash()
{
    // Where the volume has no trash of the user the file stays, and is not copied elsewhere.
    QFETCH(QString, kind);
    const Volume volume(volumePath(), "size=1m");
    if (!volume.isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    const QString elsewhere = volume.tree.folder(QStringLiteral("elsewhere"));
    if (kind == QStringLiteral("file")) {
        volume.tree.file(ownTrash);
    } else if (kind == QStringLiteral("link")) {
        volume.tree.link(ownTrash, elsewhere);
    } else {
        const QByteArray other = QFile::encodeName(volume.tree.folder(ownTrash));
        QCOMPARE(::chown(other.constData(), ::geteuid() + 1, ::getegid()), 0);
    }
    const QString file = volume.tree.file(QStringLiteral("a.txt"), "content");
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QCOMPARE(namesIn(elsewhere), QStringList());
    QVERIFY(isHomeTrashEmpty());
}

void tst_TrashVolumes::fileStaysOnAFullVolume_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<bool>("hasTrash");
    QTest::newRow("no byte for the note") << QByteArray("size=64k") << true;
    QTest::newRow("no file more for the note") << QByteArray("size=64k,nr_inodes=6") << true;
    QTest::newRow("no folder more for the trash") << QByteArray("size=64k,nr_inodes=3") << false;
}

void tst_TrashVolumes::fileStaysOnAFullVolume()
{
    // A volume without room for a note keeps the file as it is, and no piece of a note.
    QFETCH(QByteArray, options);
    QFETCH(bool, hasTrash);
    const Volume volume(volumePath(), options.constData());
    if (!volume.isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    const QString file = volume.tree.file(QStringLiteral("a.txt"), "content");
    if (hasTrash) {
        volume.tree.folder(ownTrash + QStringLiteral("/files"));
        volume.tree.folder(ownTrash + QStringLiteral("/info"));
    }
    volume.fill();
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QCOMPARE(namesIn(volume.tree.path(ownTrash + QStringLiteral("/files"))), QStringList());
    QCOMPARE(namesIn(volume.tree.path(ownTrash + QStringLiteral("/info"))), QStringList());
    QVERIFY(isHomeTrashEmpty());
}

void tst_TrashVolumes::fileStaysOnAReadOnlyVolume()
{
    // From a volume that cannot be written nothing is moved and nothing copied.
    const Volume volume(volumePath(), "size=1m");
    if (!volume.isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    const QString file = volume.tree.file(QStringLiteral("a.txt"), "content");
    QVERIFY(volume.makeReadOnly());
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QVERIFY(isHomeTrashEmpty());
}

void tst_TrashVolumes::fileStaysWhereItsFolderIsAVolume()
{
    // A folder on which a volume is mounted stays, with all that is on the volume.
    const Volume volume(volumePath(), "size=1m");
    if (!volume.isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    const QString file = volume.tree.file(QStringLiteral("a.txt"), "content");
    QVERIFY(!Trash::moveFile(volumePath()));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QVERIFY(isHomeTrashEmpty());
}

void tst_TrashVolumes::topFolderOfAChangedRoot()
{
    // A process that was put into a folder which is no mount has its trash at the top of that folder,
    // not beside each file.
    const QString root = path(QStringLiteral("root"));
    const TempTree tree(root);
    tree.file(QStringLiteral("folder/below/a.txt"), "content");
    const Volume home(root + QStringLiteral("/home"), "size=1m");
    if (!home.isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    const pid_t child = ::fork();
    if (child == 0) {
        qputenv("XDG_DATA_HOME", "/home");
        const bool isInside = ::chroot(QFile::encodeName(root).constData()) == 0;
        ::_exit(isInside && Trash::moveFile(QStringLiteral("/folder/below/a.txt")) ? 0 : 1);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QCOMPARE(status, 0);
    QCOMPARE(TempTree::read(tree.path(ownTrash + QStringLiteral("/files/a.txt"))),
             QByteArray("content"));
}

void tst_TrashVolumes::homeTrashOfAnotherVolumeTakesNothing()
{
    // A home trash on which another volume is mounted would take a copy: the file stays instead.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("a.txt"), "content");
    const Volume volume(homeTrash(), "size=64k");
    if (!volume.isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QCOMPARE(namesIn(volume.tree.path(QStringLiteral("files"))), QStringList());
    QCOMPARE(namesIn(volume.tree.path(QStringLiteral("info"))), QStringList());
}

TWINSIFT_TEST_MAIN(tst_TrashVolumes)
#include "tst_TrashVolumes.moc"
