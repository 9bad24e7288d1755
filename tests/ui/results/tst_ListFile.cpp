// SPDX-License-Identifier: MIT
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/Volume.h"
#include "ui/results/ListFile.h"

#include <QDir>
#include <QScopeGuard>

#include <cerrno>

namespace
{
int syncError = 0;
int syncs = 0;
} // namespace

// The linker leads the program's call here.
extern "C" int __real_fsync(int descriptor);

extern "C" int __wrap_fsync(int descriptor)
{
    ++syncs;
    if (syncError == 0) {
        return __real_fsync(descriptor);
    }
    errno = syncError;
    return -1;
}

/** Saves lists of many sizes on volumes of their own that are full, nearly full, or fail at last. */
class tst_ListFile final : public TestCase
{
    Q_OBJECT

private slots:
    void cleanup() override;
    void isWholeOrTheOldOneOnASmallVolume_data();
    void isWholeOrTheOldOneOnASmallVolume();
    void keepsTheOldOneWhenTheDiskRefusesAtLast_data();
    void keepsTheOldOneWhenTheDiskRefusesAtLast();
    void isSavedWhereNothingCanBeSynced();
    void syncsTheListAndThenItsFolder();

private:
    QString volumePath() const { return path(QStringLiteral("volume")); }
};

namespace
{
constexpr int blockBytes = 4096;

const QByteArray oldList = "1;/old;0\r\n";

// The sizes around the toolkit's buffer and the blocks of the file system.
const QVector<int> sizes = {1, blockBytes, 16384, 16385, 1024 * 1024};

QByteArray listOf(int bytes)
{
    return QByteArray(bytes, 'n');
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}
} // namespace

void tst_ListFile::cleanup()
{
    syncError = 0;
    syncs = 0;
    TestCase::cleanup();
}

void tst_ListFile::isWholeOrTheOldOneOnASmallVolume_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("freeBytes");
    QTest::addColumn<bool>("isClosed");
    for (const int bytes : sizes) {
        for (const int freeBytes : {0, blockBytes}) {
            for (const bool isClosed : {false, true}) {
                QTest::addRow("%d bytes, %d free, in a%s folder",
                              bytes,
                              freeBytes,
                              isClosed ? " closed" : "n open")
                    << bytes << freeBytes << isClosed;
            }
        }
    }
}

void tst_ListFile::isWholeOrTheOldOneOnASmallVolume()
{
    // A list is called saved only if there was room for all of it; otherwise the old one is whole.
    QFETCH(int, bytes);
    QFETCH(int, freeBytes);
    QFETCH(bool, isClosed);
    const Volume volume(volumePath(), "size=256k");
    if (!volume.isMounted()) {
        QSKIP("only the super-user can mount a volume");
    }
    const QString file = volume.tree.file(QStringLiteral("folder/list.txt"), oldList);
    const QString room = volume.tree.file(QStringLiteral("room"), QByteArray(blockBytes, 'x'));
    volume.fill();
    if (freeBytes > 0) {
        QVERIFY(QFile::remove(room));
    }
    volume.tree.setMode(QStringLiteral("folder"), isClosed ? 0555 : 0755);
    const RestrictedRights rights;
    // In a closed folder the new list takes the block of the old one, too.
    const bool fits = bytes <= freeBytes + (isClosed ? blockBytes : 0);
    QCOMPARE(ListFile::write(file, listOf(bytes)), fits);
    QCOMPARE(TempTree::read(file), fits ? listOf(bytes) : oldList);
    QCOMPARE(filesIn(volume.tree.path(QStringLiteral("folder"))),
             QStringList(QStringLiteral("list.txt")));
}

void tst_ListFile::keepsTheOldOneWhenTheDiskRefusesAtLast_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isClosed");
    for (const int bytes : sizes) {
        for (const bool isClosed : {false, true}) {
            const char *const place = isClosed ? ", in a closed folder" : "";
            QTest::addRow("%d bytes, full%s", bytes, place) << bytes << int(ENOSPC) << isClosed;
            QTest::addRow("%d bytes, broken%s", bytes, place) << bytes << EIO << isClosed;
        }
    }
}

void tst_ListFile::keepsTheOldOneWhenTheDiskRefusesAtLast()
{
    // A disk that has taken every byte and fails only when it is to keep them leaves the old list.
    QFETCH(int, bytes);
    QFETCH(int, error);
    QFETCH(bool, isClosed);
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("folder/list.txt"), oldList);
    tree.setMode(QStringLiteral("folder"), isClosed ? 0555 : 0755);
    const auto open = qScopeGuard([&] { tree.setMode(QStringLiteral("folder"), 0755); });
    const RestrictedRights rights;
    syncError = error;
    QVERIFY(!ListFile::write(file, listOf(bytes)));
    QVERIFY(syncs > 0);
    QCOMPARE(TempTree::read(file), oldList);
    QCOMPARE(filesIn(tree.path(QStringLiteral("folder"))), QStringList(QStringLiteral("list.txt")));
}

void tst_ListFile::isSavedWhereNothingCanBeSynced()
{
    // A file system that knows no syncing takes a list all the same.
    const QString file = TempTree(path(QString())).file(QStringLiteral("list.txt"), oldList);
    syncError = EINVAL;
    QVERIFY(ListFile::write(file, listOf(100)));
    QCOMPARE(TempTree::read(file), listOf(100));
}

void tst_ListFile::syncsTheListAndThenItsFolder()
{
    // Both the list and its name outlive a power failure, wherever a link has led to.
    const TempTree tree(path(QString()));
    const QString file = tree.file(QStringLiteral("folder/list.txt"), oldList);
    const QString link = tree.link(QStringLiteral("link.txt"), file);
    QVERIFY(ListFile::write(link, listOf(100)));
    QCOMPARE(TempTree::read(file), listOf(100));
    QCOMPARE(syncs, 2);
}

TWINSIFT_TEST_MAIN(tst_ListFile)
#include "tst_ListFile.moc"
