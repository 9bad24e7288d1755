// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "ui/results/Trash.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

namespace
{
enum class Renaming { AsUsual, NotWithoutReplacing, DoneButSaysNo, Refused };

Renaming renaming = Renaming::AsUsual;
} // namespace

// The linker leads the program's call here.
extern "C" int __real_renameat2(int oldFolder,
                                const char *oldName,
                                int folder,
                                const char *name,
                                unsigned flags);

extern "C" int __wrap_renameat2(int oldFolder,
                                const char *oldName,
                                int folder,
                                const char *name,
                                unsigned flags)
{
    if (renaming == Renaming::AsUsual) {
        return __real_renameat2(oldFolder, oldName, folder, name, flags);
    }
    if (renaming == Renaming::DoneButSaysNo) {
        __real_renameat2(oldFolder, oldName, folder, name, flags);
    }
    errno = renaming == Renaming::NotWithoutReplacing ? EINVAL : EIO;
    return -1;
}

/** Moves files to the trash on file systems that rename in their own way. */
class tst_TrashRenaming final : public TestCase
{
    Q_OBJECT

private slots:
    void cleanup() override;
    void replacesNothing_data();
    void replacesNothing();
    void believesWhatItSees();
    void fileStaysWithoutANote();

private:
    QByteArray inTrash(const QString &name) const
    {
        return TempTree::read(homeTrash() + QLatin1Char('/') + name);
    }
};

void tst_TrashRenaming::cleanup()
{
    renaming = Renaming::AsUsual;
    TestCase::cleanup();
}

void tst_TrashRenaming::replacesNothing_data()
{
    QTest::addColumn<bool>("isSafe");
    QTest::newRow("the system looks") << true;
    QTest::newRow("the program looks") << false;
}

void tst_TrashRenaming::replacesNothing()
{
    // A file that lies in the trash without a note is not replaced, also where the file system cannot
    // promise that.
    QFETCH(bool, isSafe);
    renaming = isSafe ? Renaming::AsUsual : Renaming::NotWithoutReplacing;
    const TempTree tree(path(QString()));
    QVERIFY(QDir().mkpath(homeTrash() + QStringLiteral("/files")));
    const TempTree inFiles(homeTrash() + QStringLiteral("/files"));
    inFiles.file(QStringLiteral("a"), "without a note");
    QVERIFY(Trash::moveFile(tree.file(QStringLiteral("a"), "content")));
    QCOMPARE(inTrash(QStringLiteral("files/a")), QByteArray("without a note"));
    QCOMPARE(inTrash(QStringLiteral("files/a-2")), QByteArray("content"));
    QVERIFY(!QFileInfo::exists(homeTrash() + QStringLiteral("/info/a.trashinfo")));
    QVERIFY(inTrash(QStringLiteral("info/a-2.trashinfo")).contains("/a\n"));
}

void tst_TrashRenaming::believesWhatItSees()
{
    // Where the answer to a renaming got lost on its way, the file's note stays with it.
    const QString file = TempTree(path(QString())).file(QStringLiteral("a"), "content");
    renaming = Renaming::DoneButSaysNo;
    QVERIFY(Trash::moveFile(file));
    QVERIFY(!QFileInfo::exists(file));
    QCOMPARE(inTrash(QStringLiteral("files/a")), QByteArray("content"));
    QVERIFY(inTrash(QStringLiteral("info/a.trashinfo")).contains("/a\n"));
}

void tst_TrashRenaming::fileStaysWithoutANote()
{
    // A file that cannot be renamed stays, and leaves no note of itself in the trash.
    const QString file = TempTree(path(QString())).file(QStringLiteral("a"), "content");
    renaming = Renaming::Refused;
    QVERIFY(!Trash::moveFile(file));
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QVERIFY(QDir(homeTrash() + QStringLiteral("/files")).isEmpty());
    QVERIFY(QDir(homeTrash() + QStringLiteral("/info")).isEmpty());
}

TWINSIFT_TEST_MAIN(tst_TrashRenaming)
#include "tst_TrashRenaming.moc"
