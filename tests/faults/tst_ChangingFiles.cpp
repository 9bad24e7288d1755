// SPDX-License-Identifier: MIT
#include "engine/Background.h"
#include "engine/ScanFindings.h"
#include "tests/faults/FaultShim.h"
#include "tests/faults/Scan.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSet>

#include <functional>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

/**
 * Changes a file at each moment of a scan in which the scan opens, reads or asks about it, in the
 * middle of the call. Nothing may hang, and no file may be taken for one that it never was like.
 */
class tst_ChangingFiles final : public TestCase
{
    Q_OBJECT

private slots:
    void changedFileIsNoDuplicate_data();
    void changedFileIsNoDuplicate();
    void fileThatWasEmptyIsNoTwinOfAnEmptyOne_data();
    void fileThatWasEmptyIsNoTwinOfAnEmptyOne();
    void contentBehindTheAnnouncedEnd_data();
    void contentBehindTheAnnouncedEnd();
    void fileThatGrowsForEver_data();
    void fileThatGrowsForEver();
};

namespace
{
constexpr int wholeBytes = 300 * 1024;
constexpr int shortBytes = 256 * 100;

QByteArray content(int bytes)
{
    QByteArray data;
    data.reserve(bytes);
    for (int i = 0; i < bytes; ++i) {
        data.append(static_cast<char>('a' + i % 251 % 26 + i / 4096 % 3));
    }
    return data;
}

// The tree before each scan; "target" is the file that changes.
struct Case {
    explicit Case(const QString &root)
        : tree(root)
        , target(tree.path(QStringLiteral("target.bin")))
    {
        tree.file(QStringLiteral("begin/cut.bin"), content(shortBytes));
        tree.file(QStringLiteral("begin/cut2.bin"), content(shortBytes));
        tree.file(QStringLiteral("begin/nothing.bin"));
        tree.file(QStringLiteral("same.bin"), content(wholeBytes));
        tree.file(QStringLiteral("third.bin"), content(wholeBytes));
        tree.file(QStringLiteral("zeros.bin"), QByteArray(wholeBytes, '\0'));
        reset();
    }

    void reset() const
    {
        if (QFileInfo(target).isDir()) {
            ::rmdir(QFile::encodeName(target).constData());
        }
        QFile::remove(target);
        tree.file(QStringLiteral("target.bin"), content(wholeBytes));
    }

    TempTree tree;
    QString target;
};

using Change = void (*)(const char *path);

void grow(const char *path)
{
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::Append) || file.write(QByteArray(4096, 'g')) != 4096) {
        qFatal("cannot grow %s", path);
    }
}

void cut(const char *path)
{
    if (::truncate(path, shortBytes) != 0) {
        qFatal("cannot cut %s", path);
    }
}

void empty(const char *path)
{
    if (::truncate(path, 0) != 0) {
        qFatal("cannot empty %s", path);
    }
}

void vanish(const char *path)
{
    if (::unlink(path) != 0) {
        qFatal("cannot remove %s", path);
    }
}

void becomeFifo(const char *path)
{
    vanish(path);
    if (::mkfifo(path, 0600) != 0) {
        qFatal("cannot make the FIFO %s", path);
    }
}

void becomeFolder(const char *path)
{
    vanish(path);
    if (::mkdir(path, 0700) != 0) {
        qFatal("cannot make the folder %s", path);
    }
}

void becomeLink(const char *path)
{
    vanish(path);
    if (::symlink("begin/nothing.bin", path) != 0) {
        qFatal("cannot make the link %s", path);
    }
}

const QHash<QString, Change> changes = {{QStringLiteral("grows"), grow},
                                        {QStringLiteral("is cut"), cut},
                                        {QStringLiteral("is emptied"), empty},
                                        {QStringLiteral("vanishes"), vanish},
                                        {QStringLiteral("becomes a FIFO"), becomeFifo},
                                        {QStringLiteral("becomes a folder"), becomeFolder},
                                        {QStringLiteral("becomes a link"), becomeLink}};

// Counts the calls on one file, and changes the file before the n-th.
struct Trigger {
    QByteArray path;
    long at = 0;
    Change change = nullptr;
    long seen = 0;

    static void hook(FaultShim::Kind, const char *path, long, void *context)
    {
        auto *const trigger = static_cast<Trigger *>(context);
        if (trigger->path == path && ++trigger->seen == trigger->at) {
            trigger->change(path);
        }
    }
};

// What each file holds, so far as it has never changed.
QString contentKey(const Case &files, const QString &path)
{
    return QFileInfo(path).isFile() && path != files.target
        ? QString::fromLatin1(TempTree::read(path).toBase64())
        : QString();
}

// The file may stand beside what it was like before the change or after it, and nowhere else.
QString judge(const Case &files, const QList<QStringList> &groups, const QStringList &like)
{
    for (const QStringList &group : groups) {
        QStringList others = group;
        const bool hasTarget = others.removeAll(files.target) > 0;
        for (const QString &path : std::as_const(others)) {
            if (contentKey(files, path) != contentKey(files, others.first())) {
                return QStringLiteral("differ: ") + group.join(QLatin1Char(' '));
            }
        }
        if (hasTarget && !like.contains(QFileInfo(others.first()).fileName())) {
            return QStringLiteral("never alike: ") + group.join(QLatin1Char(' '));
        }
    }
    return {};
}

void addRows(const QStringList &names)
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("change");
    const char *const modes[] = {"byte by byte", "MD5", "SHA-1", "CRC"};
    for (int mode = 0; mode < 4; ++mode) {
        for (const QString &name : names) {
            QTest::addRow("%s, file %s", modes[mode], qPrintable(name)) << mode << name;
        }
    }
}
} // namespace

void tst_ChangingFiles::changedFileIsNoDuplicate_data()
{
    QStringList names = changes.keys();
    names.sort();
    addRows(names);
}

void tst_ChangingFiles::changedFileIsNoDuplicate()
{
    // A file that changes at any call on it is grouped as it was, as it has become, or not at all.
    QFETCH(int, mode);
    QFETCH(QString, change);
    const Case files(path(QStringLiteral("tree")));
    allowMessages(QRegularExpression(QStringLiteral("^File %1/\\S+ cannot opened! .+$")
                                         .arg(QRegularExpression::escape(files.tree.root()))));
    const ScanProfile profile = Scan::profile(static_cast<Scan::Mode>(mode));
    QStringList like = {QStringLiteral("same.bin"), QStringLiteral("third.bin")};
    if (change == QStringLiteral("is cut")) {
        like << QStringLiteral("cut.bin") << QStringLiteral("cut2.bin");
    }
    // A file without a checksum has the CRC of an empty one, and the link leads to an empty one.
    if (mode == Scan::Crc || change == QStringLiteral("is emptied")
        || change == QStringLiteral("becomes a link")) {
        like << QStringLiteral("nothing.bin");
    }
    Trigger trigger = {QFile::encodeName(files.target), 0, changes.value(change), 0};
    long count = 1;
    for (long at = 0; at <= count; ++at) {
        trigger.at = at;
        trigger.seen = 0;
        FaultShim::watch(QFile::encodeName(files.tree.root()).constData());
        FaultShim::setHook(Trigger::hook, &trigger);
        const QList<QStringList> groups = Scan::run({files.tree.root()}, profile);
        FaultShim::setHook(nullptr, nullptr);
        count = at == 0 ? trigger.seen : count;
        QVERIFY2(trigger.seen >= at, qPrintable(QString::number(at)));
        const QString problem = judge(files, groups, like);
        QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("at %1: %2").arg(at).arg(problem)));
        files.reset();
    }
    QVERIFY2(count >= 4, qPrintable(QString::number(count)));
}

void tst_ChangingFiles::fileThatWasEmptyIsNoTwinOfAnEmptyOne_data()
{
    addRows({QStringLiteral("grows")});
}

void tst_ChangingFiles::fileThatWasEmptyIsNoTwinOfAnEmptyOne()
{
    // An empty file that gets a content before it is compared is not taken for a copy of one that
    // has remained empty, though the empty one is the beginning of every other.
    QFETCH(int, mode);
    const TempTree tree(path(QStringLiteral("tree")));
    tree.file(QStringLiteral("begin.bin"));
    const QString target = tree.file(QStringLiteral("target.bin"));
    Trigger trigger = {QFile::encodeName(target), 0, grow, 0};
    // The last call that may still see the file empty is the one that asks for its key.
    trigger.at = mode == Scan::ByteByByte ? 2 : 1;
    FaultShim::watch(QFile::encodeName(tree.root()).constData());
    FaultShim::setHook(Trigger::hook, &trigger);
    const auto groups = Scan::run({tree.root()}, Scan::profile(static_cast<Scan::Mode>(mode)));
    FaultShim::setHook(nullptr, nullptr);
    QVERIFY(trigger.seen >= trigger.at);
    QCOMPARE(groups, QList<QStringList>());
}

void tst_ChangingFiles::contentBehindTheAnnouncedEnd_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("count");
    for (const int count : {3, 70}) {
        for (const int bytes : {0, 100, 4096, 4097, wholeBytes}) {
            QTest::addRow("byte by byte, %d files of %d", count, bytes)
                << int(Scan::ByteByByte) << bytes << count;
            QTest::addRow("CRC, %d files of %d", count, bytes) << int(Scan::Crc) << bytes << count;
        }
    }
}

void tst_ChangingFiles::contentBehindTheAnnouncedEnd()
{
    // What a file has behind the size that it announced may differ, though all before is equal.
    QFETCH(int, mode);
    QFETCH(int, bytes);
    QFETCH(int, count);
    const TempTree tree(path(QStringLiteral("tree")));
    for (int i = 0; i < count; ++i) {
        tree.file(QStringLiteral("%1.bin").arg(i), content(bytes));
    }
    // While the shim is in its hook on one thread it calls it on no other.
    Background::fixThreadCount(1);
    const auto freeThreads = qScopeGuard([] { Background::fixThreadCount(0); });
    QSet<QByteArray> grown;
    FaultShim::watch(QFile::encodeName(tree.root()).constData());
    FaultShim::setHook(
        [](FaultShim::Kind kind, const char *file, long, void *context) {
            auto *const known = static_cast<QSet<QByteArray> *>(context);
            if (kind == FaultShim::Read && !known->contains(file)) {
                known->insert(file);
                grow(file);
            }
        },
        &grown);
    Scan::run({tree.root()}, Scan::profile(static_cast<Scan::Mode>(mode)));
    FaultShim::setHook(nullptr, nullptr);
    QCOMPARE(grown.size(), count);
    QCOMPARE(ScanFindings::instance()->exactGroups.size(), 0);
}

void tst_ChangingFiles::fileThatGrowsForEver_data()
{
    Scan::addModes();
}

void tst_ChangingFiles::fileThatGrowsForEver()
{
    // A file that is longer at each look is not read for ever, and is no twin of any other.
    QFETCH(int, mode);
    const TempTree tree(path(QStringLiteral("tree")));
    tree.file(QStringLiteral("1.bin"), content(wholeBytes));
    tree.file(QStringLiteral("2.bin"), content(wholeBytes));
    Background::fixThreadCount(1);
    const auto freeThreads = qScopeGuard([] { Background::fixThreadCount(0); });
    FaultShim::watch(QFile::encodeName(tree.root()).constData());
    FaultShim::setHook(
        [](FaultShim::Kind kind, const char *file, long, void *) {
            struct stat status = {};
            if (kind == FaultShim::Read && ::stat(file, &status) == 0
                && ::truncate(file, status.st_size + 16 * wholeBytes) != 0) {
                qFatal("cannot grow %s", file);
            }
        },
        nullptr);
    Scan::run({tree.root()}, Scan::profile(static_cast<Scan::Mode>(mode)));
    FaultShim::setHook(nullptr, nullptr);
    QVERIFY(QFileInfo(tree.path(QStringLiteral("1.bin"))).size() > wholeBytes);
    QCOMPARE(ScanFindings::instance()->exactGroups.size(), 0);
}

TWINSIFT_TEST_MAIN(tst_ChangingFiles)
#include "tst_ChangingFiles.moc"
