// SPDX-License-Identifier: MIT
#include "tests/faults/FaultShim.h"
#include "tests/faults/FaultTree.h"
#include "tests/faults/Scan.h"
#include "tests/support/TestCase.h"

#include <QElapsedTimer>
#include <QFile>

#include <cerrno>
#include <vector>

/**
 * Scans a tree again and again, each time with another call to the file system spoiled. Every call
 * of a scan is spoiled once, with the faults in turn. In the SHA-1 mode, which reads as the MD5 mode
 * does, it is every third call. With TWINSIFT_FAULTS=full in the environment every call is spoiled
 * with every fault in all modes.
 */
class tst_Faults final : public TestCase
{
    Q_OBJECT

private slots:
    void treeIsGroupedAsItWasBuilt();
    void scanOutlivesFault_data();
    void scanOutlivesFault();
    void shortReadsChangeNothing_data();
    void shortReadsChangeNothing();
    void folderThatCannotBeListedIsEmpty();
    void linkThatCannotBeResolvedIsNotEntered();

private:
    void prepare();
    long scanWith(const ScanProfile &profile, FaultShim::Kind kind, long n, int fault);
    QString judge(const QList<QStringList> &found, bool isCrc) const;
    QString loss(FaultShim::Kind kind, const QList<QStringList> &found) const;

    std::unique_ptr<FaultTree> tree;
    QList<QStringList> groups;
};

namespace
{
bool isFull()
{
    return qgetenv("TWINSIFT_FAULTS") == "full";
}

std::vector<int> faultsOf(FaultShim::Kind kind)
{
    std::vector<int> faults = {EIO, ENOENT, EACCES, ELOOP, EMFILE};
    if (kind == FaultShim::Read || kind == FaultShim::List) {
        faults.push_back(FaultShim::endOfData);
    }
    return faults;
}

QString spoiledPath()
{
    return QFile::decodeName(FaultShim::spoiledPath());
}
} // namespace

void tst_Faults::prepare()
{
    tree = std::make_unique<FaultTree>(path(QStringLiteral("tree")));
    allowMessages(QRegularExpression(QStringLiteral("^File %1/\\S+ cannot opened! .+$")
                                         .arg(QRegularExpression::escape(tree->root()))));
    FaultShim::watch(QFile::encodeName(tree->root()).constData());
}

// Calls of the kind that the scan made.
long tst_Faults::scanWith(const ScanProfile &profile, FaultShim::Kind kind, long n, int fault)
{
    FaultShim::arm(kind, n, fault);
    groups = Scan::run({tree->root()}, profile);
    return FaultShim::calls(kind);
}

// What is wrong with the groups; empty for nothing.
QString tst_Faults::judge(const QList<QStringList> &found, bool isCrc) const
{
    QSet<QString> seen;
    for (const QStringList &group : found) {
        QStringList files = group;
        for (const QString &path : group) {
            if (seen.contains(path)) {
                return path + QStringLiteral(" stands twice in the groups");
            }
            seen.insert(path);
        }
        // A file without a checksum has the CRC of an empty one.
        if (isCrc && files.contains(spoiledPath()) && !tree->isEmpty(spoiledPath())
            && std::any_of(files.cbegin(), files.cend(), [this](const QString &path) {
                   return tree->isEmpty(path);
               })) {
            files.removeAll(spoiledPath());
        }
        if (!tree->areEqual(files)) {
            return QStringLiteral("differ: ") + group.join(QLatin1Char(' '));
        }
    }
    return {};
}

// A file that could not be opened or read may be lost, with the group that it leaves, but no other.
QString tst_Faults::loss(FaultShim::Kind kind, const QList<QStringList> &found) const
{
    if (kind != FaultShim::Open && kind != FaultShim::Read) {
        return {};
    }
    const QSet<QSet<QString>> sets = Scan::asSets(found);
    for (const QSet<QString> &group : tree->groups()) {
        const bool isTouched = group.contains(spoiledPath());
        const bool isOfEmpty = tree->isEmpty(*group.cbegin());
        if (!isTouched && !isOfEmpty && !sets.contains(group)
            && QFileInfo(spoiledPath()).isFile()) {
            return QStringLiteral("lost with %1: %2")
                .arg(spoiledPath(), QStringList(group.values()).join(QLatin1Char(' ')));
        }
    }
    return {};
}

void tst_Faults::treeIsGroupedAsItWasBuilt()
{
    // Without a fault each mode finds exactly the groups that the tree was built with.
    prepare();
    for (const Scan::Mode mode : {Scan::ByteByByte, Scan::Md5, Scan::Sha1, Scan::Crc}) {
        const long opened = scanWith(Scan::profile(mode), FaultShim::Open, 0, FaultShim::none);
        QCOMPARE(Scan::asSets(groups), tree->groups());
        QVERIFY2(opened >= 150, qPrintable(QString::number(opened)));
        QVERIFY2(spoiledPath().isEmpty(), FaultShim::spoiledPath());
    }
}

void tst_Faults::scanOutlivesFault_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("hasLimits");
    const char *const modes[] = {"byte by byte", "MD5", "SHA-1", "CRC"};
    const char *const kinds[] = {"open", "read", "stat", "list"};
    for (int mode = 0; mode < 4; ++mode) {
        for (int kind = 0; kind < FaultShim::kindCount; ++kind) {
            QTest::addRow("%s, %s", modes[mode], kinds[kind]) << mode << kind << false;
        }
    }
    for (const int mode : {0, 1}) {
        QTest::addRow("%s with limits, stat", modes[mode])
            << mode << static_cast<int>(FaultShim::Stat) << true;
    }
}

void tst_Faults::scanOutlivesFault()
{
    // Whichever call fails: the scan ends, no files that differ stand together, no file is written.
    QFETCH(int, mode);
    QFETCH(int, kind);
    QFETCH(bool, hasLimits);
    prepare();
    const auto spoiledKind = static_cast<FaultShim::Kind>(kind);
    ScanProfile profile = Scan::profile(static_cast<Scan::Mode>(mode));
    profile.maxSizeEnabled = hasLimits;
    profile.maxSizeInKbytes = 1024;
    const QStringList before = FaultTree::snapshot(tree->root());
    FaultShim::watch(QFile::encodeName(tree->root()).constData());
    const long count = scanWith(profile, spoiledKind, 0, FaultShim::none);
    QVERIFY2(count >= 150, qPrintable(QString::number(count)));
    const std::vector<int> faults = faultsOf(spoiledKind);
    const std::size_t faultsEach = isFull() ? faults.size() : 1;
    const long stride = mode == Scan::Sha1 && !isFull() ? 3 : 1;
    for (long n = 1; n <= count; n += stride) {
        for (std::size_t i = 0; i < faultsEach; ++i) {
            const int fault = faults[(static_cast<std::size_t>(n) + i) % faults.size()];
            scanWith(profile, spoiledKind, n, fault);
            const QString problem = judge(groups, mode == Scan::Crc) + loss(spoiledKind, groups);
            QVERIFY2(problem.isEmpty(),
                     qPrintable(QStringLiteral("call %1, fault %2, %3: %4")
                                    .arg(n)
                                    .arg(fault)
                                    .arg(spoiledPath(), problem)));
            QVERIFY2(!spoiledPath().isEmpty(), qPrintable(QString::number(n)));
        }
    }
    QCOMPARE(FaultShim::writes(), 0L);
    QCOMPARE(FaultTree::snapshot(tree->root()), before);
}

void tst_Faults::shortReadsChangeNothing_data()
{
    Scan::addModes();
}

void tst_Faults::shortReadsChangeNothing()
{
    // A read that gives less than was asked for, before the end of the file, is gone on with.
    QFETCH(int, mode);
    prepare();
    const ScanProfile profile = Scan::profile(static_cast<Scan::Mode>(mode));
    const long count = scanWith(profile, FaultShim::Read, 0, FaultShim::none);
    QVERIFY(count > 0);
    for (long n = 1; n <= count; ++n) {
        scanWith(profile, FaultShim::Read, n, FaultShim::shortRead);
        QVERIFY2(Scan::asSets(groups) == tree->groups(), FaultShim::spoiledPath());
        QVERIFY(!spoiledPath().isEmpty());
    }
}

void tst_Faults::folderThatCannotBeListedIsEmpty()
{
    // A folder that cannot be opened is left out with all below it, and everything else is found.
    prepare();
    for (const int fault : faultsOf(FaultShim::Open)) {
        // A folder below the root, which is the first to open; several threads open the others.
        scanWith(Scan::profile(Scan::Md5), FaultShim::Open, 2, fault);
        const QString prefix = spoiledPath() + QLatin1Char('/');
        QVERIFY2(prefix.startsWith(tree->root() + QStringLiteral("/f"))
                     && QFileInfo(spoiledPath()).isDir(),
                 qPrintable(prefix));
        QSet<QSet<QString>> rest;
        for (QSet<QString> group : tree->groups()) {
            for (const QString &path : QSet<QString>(group)) {
                if (path.startsWith(prefix)) {
                    group.remove(path);
                }
            }
            if (group.size() > 1) {
                rest.insert(group);
            }
        }
        QCOMPARE(Scan::asSets(groups), rest);
    }
}

void tst_Faults::linkThatCannotBeResolvedIsNotEntered()
{
    // Where the target of a link to a folder cannot be told, no file is found twice through it.
    prepare();
    const long count = scanWith(Scan::profile(Scan::Md5), FaultShim::Stat, 0, FaultShim::none);
    int resolved = 0;
    for (long n = 1; n <= count; ++n) {
        scanWith(Scan::profile(Scan::Md5), FaultShim::Stat, n, ELOOP);
        const bool isLink = spoiledPath().endsWith(QStringLiteral("/up"));
        resolved += isLink ? 1 : 0;
        if (isLink || QFileInfo(spoiledPath()).isDir()) {
            QVERIFY2(Scan::asSets(groups) == tree->groups(), qPrintable(spoiledPath()));
        }
    }
    QVERIFY(resolved > 0);
}

TWINSIFT_TEST_MAIN(tst_Faults)
#include "tst_Faults.moc"
