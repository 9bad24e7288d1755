// SPDX-License-Identifier: MIT
#include "tests/support/Hook.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/Volume.h"
#include "tests/ui/results/ResultsPage.h"
#include "ui/results/FileState.h"
#include "ui/results/Trash.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <functional>
#include <memory>
#include <utility>

#include <unistd.h>

namespace
{
enum class Renaming { AsUsual, NotWithoutReplacing, DoneButSaysNo, Refused };

Renaming renaming = Renaming::AsUsual;
/** What happens right before, and right after, the next renaming. */
std::function<void()> before;
std::function<void()> after;

void happen(std::function<void()> *change)
{
    if (const auto next = std::exchange(*change, nullptr)) {
        next();
    }
}
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
    happen(&before);
    if (renaming == Renaming::AsUsual) {
        const int result = __real_renameat2(oldFolder, oldName, folder, name, flags);
        const int error = errno;
        happen(&after);
        errno = error;
        return result;
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
    void putsBackWhatWasSwapped_data();
    void putsBackWhatWasSwapped();
    void keepsWhatCannotBePutBack();
    void movesTheFileWhoseFolderIsSwapped();
    void pageMovesWhatItHasLookedAt();
    void fileIsFetchedBackWhenItMayNotStay();
    void pageFetchesBackTheLastCopy_data();
    void pageFetchesBackTheLastCopy();

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

void tst_TrashRenaming::putsBackWhatWasSwapped_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("isOnVolume");
    for (const char *kind : {"a file", "a link", "a folder", "nothing"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind) << false;
        QTest::addRow("%s, on a volume that is no disk", kind) << QString::fromLatin1(kind) << true;
    }
    QTest::newRow("the file, written to") << QStringLiteral("itself") << false;
}

void tst_TrashRenaming::putsBackWhatWasSwapped()
{
    // What takes the place of the file in the very last moment is back there, and no note is left.
    QFETCH(QString, kind);
    QFETCH(bool, isOnVolume);
    const QString root = path(QStringLiteral("tree"));
    const auto volume = isOnVolume ? std::make_unique<Volume>(root, "size=1m") : nullptr;
    if (volume && !volume->isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    const TempTree tree(root);
    const QString file = tree.file(QStringLiteral("a"), "content");
    const QString aside = tree.path(QStringLiteral("aside"));
    const FileState seen = FileState::of(file);
    const Hook swap(&before, [&] {
        if (kind == QStringLiteral("itself")) {
            tree.file(QStringLiteral("a"), "another");
            return;
        }
        QFile::rename(file, aside);
        if (kind == QStringLiteral("a file")) {
            tree.file(QStringLiteral("a"), "another");
        } else if (kind == QStringLiteral("a link")) {
            tree.link(QStringLiteral("a"), aside);
        } else if (kind == QStringLiteral("a folder")) {
            tree.folder(QStringLiteral("a"));
        }
    });
    QVERIFY(!Trash::moveFile(file, &seen));
    QVERIFY(!before);
    const QFileInfo there(file);
    QCOMPARE(there.isSymLink(), kind == QStringLiteral("a link"));
    QCOMPARE(there.isDir(), kind == QStringLiteral("a folder"));
    QCOMPARE(there.exists(), kind != QStringLiteral("nothing"));
    if (there.isFile() && !there.isSymLink()) {
        QCOMPARE(TempTree::read(file), QByteArray("another"));
    }
    if (kind != QStringLiteral("itself")) {
        QCOMPARE(TempTree::read(aside), QByteArray("content"));
    }
    const QString trash =
        isOnVolume ? tree.path(QStringLiteral(".Trash-%1").arg(::geteuid())) : homeTrash();
    QVERIFY(QDir(trash + QStringLiteral("/files")).isEmpty());
    QVERIFY(QDir(trash + QStringLiteral("/info")).isEmpty());
    QVERIFY(QFileInfo::exists(trash + QStringLiteral("/files")));
}

void tst_TrashRenaming::keepsWhatCannotBePutBack()
{
    // Where the place is taken once more, nothing there is replaced: what came to the trash stays in
    // it with its note.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("a"), "content");
    const FileState seen = FileState::of(file);
    const Hook swap(&before, [&] {
        QFile::rename(file, tree.path(QStringLiteral("aside")));
        tree.file(QStringLiteral("a"), "another");
    });
    const Hook swapBack(&after, [&] { tree.file(QStringLiteral("a"), "a third"); });
    QVERIFY(!Trash::moveFile(file, &seen));
    QCOMPARE(TempTree::read(file), QByteArray("a third"));
    QCOMPARE(inTrash(QStringLiteral("files/a")), QByteArray("another"));
    QVERIFY(inTrash(QStringLiteral("info/a.trashinfo")).contains("/a\n"));
}

void tst_TrashRenaming::movesTheFileWhoseFolderIsSwapped()
{
    // A folder that becomes a link to another one in the last moment changes nothing: the file that
    // was seen goes, and its namesake stays.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("folder/a"), "content");
    const QString other = tree.file(QStringLiteral("other/a"), "another");
    const FileState seen = FileState::of(file);
    const Hook swap(&before, [&] {
        QDir().rename(tree.path(QStringLiteral("folder")), tree.path(QStringLiteral("aside")));
        tree.link(QStringLiteral("folder"), tree.path(QStringLiteral("other")));
    });
    QVERIFY(Trash::moveFile(file, &seen));
    QCOMPARE(TempTree::read(other), QByteArray("another"));
    QCOMPARE(inTrash(QStringLiteral("files/a")), QByteArray("content"));
    QVERIFY(!QFileInfo::exists(tree.path(QStringLiteral("aside/a"))));
}

void tst_TrashRenaming::pageMovesWhatItHasLookedAt()
{
    // A deletion on the results page leaves what takes the place of a ticked file after its look.
    const TempTree tree(path(QStringLiteral("tree")));
    const QStringList group = {tree.file(QStringLiteral("a"), "content"),
                               tree.file(QStringLiteral("kept"), "content")};
    ResultsPage results;
    results.scanned({group}, {group});
    const Hook swap(&before, [&] {
        QFile::rename(group.first(), tree.path(QStringLiteral("aside")));
        tree.file(QStringLiteral("a"), "another");
    });
    expectMessage(QtDebugMsg, QStringLiteral("Cannot remove file: ") + group.first());
    results.expectComplete(QStringLiteral("1 file was left where it is.\n"
                                          "could not be moved to the trash: 1"),
                           group.first() + QStringLiteral(": could not be moved to the trash\n"));
    results.page.deleteSelectedFiles();
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(!before);
    QCOMPARE(TempTree::read(group.first()), QByteArray("another"));
    QVERIFY(QDir(homeTrash() + QStringLiteral("/files")).isEmpty());
}

void tst_TrashRenaming::fileIsFetchedBackWhenItMayNotStay()
{
    // As soon as it lies in the trash it is asked whether it may; nothing of it is left there.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("a"), "content");
    const FileState seen = FileState::of(file);
    bool wasThere = true;
    QVERIFY(!Trash::moveFile(file, &seen, [&] {
        wasThere = QFileInfo::exists(file);
        return false;
    }));
    QVERIFY(!wasThere);
    QCOMPARE(TempTree::read(file), QByteArray("content"));
    QVERIFY(QDir(homeTrash() + QStringLiteral("/files")).isEmpty());
    QVERIFY(QDir(homeTrash() + QStringLiteral("/info")).isEmpty());
    QVERIFY(Trash::moveFile(file, &seen, [] { return true; }));
    QVERIFY(!QFileInfo::exists(file));
}

void tst_TrashRenaming::pageFetchesBackTheLastCopy_data()
{
    QTest::addColumn<bool>("isRewritten");
    QTest::newRow("the copy goes") << false;
    QTest::newRow("the copy is written to") << true;
}

void tst_TrashRenaming::pageFetchesBackTheLastCopy()
{
    // Two windows may move the two copies of a content at once: each looks again.
    QFETCH(bool, isRewritten);
    const TempTree tree(path(QStringLiteral("tree")));
    const QStringList group = {tree.file(QStringLiteral("a"), "content"),
                               tree.file(QStringLiteral("kept"), "content")};
    ResultsPage results;
    results.scanned({group}, {group});
    const Hook loss(&before, [&] {
        if (isRewritten) {
            tree.file(QStringLiteral("kept"), "something else");
        } else {
            QFile::rename(group.last(), tree.path(QStringLiteral("aside")));
        }
    });
    expectMessage(QtDebugMsg, QStringLiteral("Cannot remove file: ") + group.first());
    results.expectComplete(QStringLiteral("1 file was left where it is.\n"
                                          "the only copy left: 1"),
                           group.first() + QStringLiteral(": the only copy left\n"));
    results.page.deleteSelectedFiles();
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(!before);
    QCOMPARE(TempTree::read(group.first()), QByteArray("content"));
    QVERIFY(QDir(homeTrash() + QStringLiteral("/files")).isEmpty());
}

TWINSIFT_TEST_MAIN(tst_TrashRenaming)
#include "tst_TrashRenaming.moc"
