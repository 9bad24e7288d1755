// SPDX-License-Identifier: MIT
#include "engine/FileFinderEngine.h"
#include "engine/ScanFindings.h"
#include "tests/engine/EngineRig.h"
#include "tests/engine/LiteralGrouping.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QDateTime>
#include <QFile>
#include <QRandomGenerator>
#include <QSet>

#include <memory>
#include <utility>

class tst_Grouping final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void nothingToGroup();
    void twoEqualFiles();
    void threeEqualFiles();
    void sameSizeOtherContent();
    void emptyFiles();
    void twoContentsOfOneSize();
    void orderInsideAGroup();
    void threeEqualFilesAdvanced();
    void uniqueFilesAdvanced();
    void wrappedSum_data();
    void wrappedSum();
    void sameName();
    void sameExtension();
    void coincidingKeys();
    void crcOfZero();
    void unreadableFiles_data();
    void unreadableFiles();
    void overlappingFolders();
    void randomTrees_data();
    void randomTrees();
    void randomBuckets_data();
    void randomBuckets();
    void largeHeads();
    void repeatedPathsOfTwoContents();
    void scannedFiles();
    void collidingHashes();
    void collidingCrcs();
    void exactGroupsOfAStoppedScan();
    void unreadableFilesShareNoExactGroup();
    void manyFilesOfOneSize_data();
    void manyFilesOfOneSize();

private:
    void compareWithLiteral(const ScanProfile &profile, const QStringList &folders = QStringList());
    QString file(const char *name, const QByteArray &content = QByteArray()) const;

    std::unique_ptr<TempTree> tree;
    std::unique_ptr<EngineRig> rig;
};

namespace
{
const QString countingName = QStringLiteral("countingFindFilesDuplicated ");

// What the counting signals carry, without their name.
QStringList countingLines(const QStringList &record)
{
    QStringList lines = record.filter(countingName);
    return lines.replaceInStrings(countingName, QString());
}

QList<QStringList> exactPaths()
{
    QList<QStringList> groups;
    for (const QVector<ScannedFile> &group : std::as_const(ScanFindings::instance()->exactGroups)) {
        QStringList paths;
        for (const ScannedFile &file : group) {
            paths.append(file.path);
        }
        groups.append(paths);
    }
    return groups;
}

QString counting(int index, int count, qint64 bytes)
{
    return QStringLiteral("%1 %2 %3").arg(index).arg(count).arg(bytes);
}
} // namespace

void tst_Grouping::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    rig = std::make_unique<EngineRig>();
}

QString tst_Grouping::file(const char *name, const QByteArray &content) const
{
    return tree->file(QString::fromUtf8(name), content);
}

void tst_Grouping::compareWithLiteral(const ScanProfile &profile, const QStringList &folders)
{
    const QStringList record =
        rig->scan(folders.isEmpty() ? QStringList(tree->root()) : folders, profile);
    const LiteralGrouping literal(rig->engine()->foundFiles(), profile);
    QCOMPARE(countingLines(record), literal.signalLines());
    QCOMPARE(rig->groups(), literal.result());
    QCOMPARE(rig->engine()->foundGroups(), literal.groups());
    QCOMPARE(rig->engine()->groupedFilesCount(), literal.groupedFilesCount());
    QCOMPARE(rig->engine()->groupedFilesSize(), literal.groupedFilesSize());
    QCOMPARE(exactPaths(), literal.exactGroups());
    QCOMPARE(ScanFindings::instance()->groups, rig->groups());
}

void tst_Grouping::nothingToGroup()
{
    // No files, and no two files of one key, give an empty list.
    for (const char *checksum : {"", "md5", "sha1", "crc"}) {
        const bool isAdvanced = *checksum != '\0';
        const ScanProfile profile =
            isAdvanced ? EngineRig::advanced(QLatin1String(checksum)) : ScanProfile();
        rig->scan({tree->root()}, profile);
        QVERIFY(rig->groups().isEmpty());
    }
    file("a", "1");
    file("b", "22");
    const QStringList record = rig->scan({tree->root()});
    QVERIFY(rig->groups().isEmpty());
    QVERIFY(countingLines(record).isEmpty());
    QVERIFY(rig->engine()->foundGroups().isEmpty());
}

void tst_Grouping::twoEqualFiles()
{
    // Two equal files make one group and one signal, which counts both.
    const QString b = file("b", "same!");
    const QString a = file("a", "same!");
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(rig->groups(), QList<QStringList>{QStringList({a, b})});
    QCOMPARE(countingLines(record), QStringList(counting(0, 2, 10)));
}

void tst_Grouping::threeEqualFiles()
{
    // Three equal files of size S give signals of 2S and 3S, and the counter ends at 4S.
    const QStringList files = {file("a", "same!"), file("b", "same!"), file("c", "same!")};
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(rig->groups(), QList<QStringList>{files});
    QCOMPARE(countingLines(record), QStringList({counting(0, 2, 10), counting(0, 3, 15)}));
    QCOMPARE(rig->engine()->groupedFilesCount(), 3);
    QCOMPARE(rig->engine()->groupedFilesSize(), 20);
}

void tst_Grouping::sameSizeOtherContent()
{
    // Files of one size and other content make no group and no signal.
    file("a", "same!");
    file("b", "other");
    const QStringList record = rig->scan({tree->root()});
    QVERIFY(rig->groups().isEmpty());
    QVERIFY(countingLines(record).isEmpty());
    QCOMPARE(rig->engine()->groupedFilesSize(), 0);
}

void tst_Grouping::emptyFiles()
{
    // Empty files are duplicates in every mode.
    const QList<QStringList> wanted = {QStringList({file("a"), file("b")})};
    rig->scan({tree->root()});
    QCOMPARE(rig->groups(), wanted);
    for (const char *checksum : {"md5", "sha1", "crc"}) {
        rig->scan({tree->root()}, EngineRig::advanced(QLatin1String(checksum)));
        QCOMPARE(rig->groups(), wanted);
    }
}

void tst_Grouping::twoContentsOfOneSize()
{
    // All equal files of a bucket share one group: the second content adds its second file alone.
    const QString a1 = file("1", "AAA");
    const QString a2 = file("2", "AAA");
    file("3", "BBB");
    const QString b2 = file("4", "BBB");
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(rig->groups(), QList<QStringList>{QStringList({a1, a2, b2})});
    QCOMPARE(countingLines(record), QStringList({counting(0, 2, 6), counting(0, 3, 9)}));
    compareWithLiteral(ScanProfile());
}

void tst_Grouping::orderInsideAGroup()
{
    // Matches stand in the order in which they are found, not in that of the files.
    const QString a1 = file("1", "AAA");
    file("2", "BBB");
    const QString b2 = file("3", "BBB");
    const QString a2 = file("4", "AAA");
    rig->scan({tree->root()});
    QCOMPARE(rig->groups(), QList<QStringList>{QStringList({a1, a2, b2})});
}

void tst_Grouping::threeEqualFilesAdvanced()
{
    // The first file is counted when its first twin arrives; each file has its signal.
    const QStringList files = {file("a", "same!"), file("b", "same!"), file("c", "same!")};
    for (const char *checksum : {"md5", "sha1", "crc"}) {
        const QStringList record =
            rig->scan({tree->root()}, EngineRig::advanced(QLatin1String(checksum)));
        QCOMPARE(rig->groups(), QList<QStringList>{files});
        QCOMPARE(countingLines(record),
                 QStringList({counting(1, 0, 0), counting(2, 2, 10), counting(3, 3, 15)}));
    }
}

void tst_Grouping::uniqueFilesAdvanced()
{
    // A file alone keeps its group of one in the engine, and none in the result.
    file("a", "one");
    file("b", "two");
    const QStringList record =
        rig->scan({tree->root()}, EngineRig::advanced(QStringLiteral("md5")));
    QVERIFY(rig->groups().isEmpty());
    QCOMPARE(rig->engine()->foundGroups().size(), 2);
    QCOMPARE(countingLines(record), QStringList({counting(1, 0, 0), counting(2, 0, 0)}));
}

void tst_Grouping::wrappedSum_data()
{
    QTest::addColumn<bool>("isAdvanced");
    QTest::newRow("byte by byte") << false;
    QTest::newRow("advanced") << true;
}

void tst_Grouping::wrappedSum()
{
    // The sum has 32 bits: above 2,147,483,647 it goes on with negative values.
    QFETCH(bool, isAdvanced);
    const qint64 bytes = qint64(800) * 1024 * 1024;
    for (const char *name : {"a", "b", "c"}) {
        tree->sparseFile(QLatin1String(name), bytes);
    }
    const ScanProfile profile =
        isAdvanced ? EngineRig::advanced(QStringLiteral("md5")) : ScanProfile();
    const QStringList lines = countingLines(rig->scan({tree->root()}, profile));
    const qint64 wrapped = 3 * bytes - (Q_INT64_C(1) << 32);
    QVERIFY(wrapped < 0);
    QCOMPARE(lines.last(), counting(isAdvanced ? 3 : 0, 3, wrapped));
    QCOMPARE(lines.at(lines.size() - 2), counting(isAdvanced ? 2 : 0, 2, 2 * bytes));
}

void tst_Grouping::sameName()
{
    // With equal names asked for, files of other names are no duplicates.
    const QString a = file("x/photo.jpg", "same");
    const QString b = file("y/photo.png", "same");
    file("y/other.jpg", "same");
    ScanProfile profile;
    profile.sameFileName = true;
    rig->scan({tree->root()}, profile);
    QCOMPARE(rig->groups(), QList<QStringList>{QStringList({a, b})});
}

void tst_Grouping::sameExtension()
{
    // With equal extensions asked for, all behind the first dot must agree.
    file("photo.jpg", "same");
    const QString a = file("photo.tar.gz", "same");
    const QString b = file("x.tar.gz", "same");
    file("y.gz", "same");
    ScanProfile profile;
    profile.sameFileExtension = true;
    rig->scan({tree->root()}, profile);
    QCOMPARE(rig->groups(), QList<QStringList>{QStringList({a, b})});
}

void tst_Grouping::coincidingKeys()
{
    // Where keys of other sizes coincide, a file of whole steps equals one that it begins, in the
    // order of the pair only; a verdict about such a pair decides no other one.
    ScanProfile profile;
    profile.sameFileName = true;
    const QByteArray content(7000, 'x');
    // Size 256 with the name "0..." against size 2560 and so on: the key is the same text.
    file("a/00.1", content.left(256));
    file("b/0.1", content.left(2560));
    file("c/00.2", content.left(256));
    file("d/0.2", content.left(2560));
    file("e/00.3", content.left(256));
    file("f/00.4", QByteArray(256, 'y'));
    file("g/0.3", content.left(2559) + "y");
    file("h/00.5", content.left(256));
    compareWithLiteral(profile);
    QCOMPARE(rig->groups().size(), 1);
    QVERIFY(rig->groups().first().contains(tree->path(QStringLiteral("b/0.1"))));
    // Descending sizes in the bucket: none of the longer ones equals a shorter one.
    tree = std::make_unique<TempTree>(path(QStringLiteral("other tree")));
    file("a/0.1", content.left(2560));
    file("b/00.1", content.left(256));
    compareWithLiteral(profile);
    QVERIFY(rig->groups().isEmpty());
}

void tst_Grouping::crcOfZero()
{
    // A file whose CRC is zero shares a group with the empty file.
    const QString empty = file("a");
    const QString zero = file("b", QByteArray("\x9D\x0A\xD9\x6D", 4));
    rig->scan({tree->root()}, EngineRig::advanced(QStringLiteral("crc")));
    QCOMPARE(rig->groups(), QList<QStringList>{QStringList({empty, zero})});
}

void tst_Grouping::unreadableFiles_data()
{
    QTest::addColumn<QString>("checksum");
    for (const char *checksum : {"", "md5", "sha1", "crc"}) {
        QTest::newRow(*checksum == '\0' ? "byte by byte" : checksum)
            << QString::fromLatin1(checksum);
    }
}

void tst_Grouping::unreadableFiles()
{
    // Unreadable files are equal to nothing, with a line in the log for each pair; by CRC they are
    // grouped with the empty ones.
    QFETCH(QString, checksum);
    const ScanProfile profile = checksum.isEmpty() ? ScanProfile() : EngineRig::advanced(checksum);
    for (const char *name : {"a", "b", "c", "d", "e"}) {
        file(name, "same!");
    }
    file("empty");
    tree->setMode(QStringLiteral("a"), 0);
    tree->setMode(QStringLiteral("d"), 0);
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("The super-user reads every file here.");
    }
    // A new worker is bound as this thread is.
    rig = std::make_unique<EngineRig>();
    QStringList files;
    for (const char *name : {"a", "b", "c", "d", "e", "empty"}) {
        files.append(tree->path(QLatin1String(name)));
    }
    const LiteralGrouping literal(files, profile);
    // Four pairs begin with a, three more hold d.
    QCOMPARE(literal.unreadable().size(), checksum.isEmpty() ? 7 : 0);
    for (const QString &unreadable : literal.unreadable()) {
        expectMessage(QtCriticalMsg,
                      QStringLiteral("File %1 cannot opened! Permission denied").arg(unreadable));
    }
    const QStringList record = rig->scan({tree->root()}, profile);
    QCOMPARE(countingLines(record), literal.signalLines());
    QCOMPARE(rig->groups(), literal.result());
    QCOMPARE(rig->groups().size(), checksum == QLatin1String("crc") ? 2 : 1);
}

void tst_Grouping::overlappingFolders()
{
    // A path that is found twice is its own duplicate, and stands in the group once.
    file("sub/a", "same!");
    file("b", "same!");
    const QStringList folders = {tree->root(), tree->path(QStringLiteral("sub")), tree->root()};
    compareWithLiteral(ScanProfile(), folders);
    compareWithLiteral(EngineRig::advanced(QStringLiteral("md5")), folders);
    // A single path twice opens no group, but raises the counter each time.
    tree = std::make_unique<TempTree>(path(QStringLiteral("other tree")));
    file("alone", "12345");
    compareWithLiteral(ScanProfile(), {tree->root(), tree->root()});
    QCOMPARE(rig->engine()->groupedFilesCount(), 1);
    QCOMPARE(rig->engine()->groupedFilesSize(), 10);
    QVERIFY(rig->groups().isEmpty());
}

void tst_Grouping::randomTrees_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 24; ++seed) {
        QTest::newRow(QByteArray::number(seed).constData()) << seed;
    }
}

void tst_Grouping::randomTrees()
{
    // Groups, their order, every signal and the counters are those of the plain algorithm.
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const QList<int> sizes = {0, 1, 255, 256, 257, 2560, 4095, 4096, 4097, 9000, 135200};
    const QStringList endings = {QString(), QStringLiteral(".a"), QStringLiteral(".tar.gz")};
    for (int i = random.bounded(5, 70); i > 0; --i) {
        QByteArray content(sizes.at(random.bounded(sizes.size())), 'x');
        if (!content.isEmpty() && random.bounded(3) == 0) {
            content[random.bounded(2) == 0 ? content.size() - 1 : random.bounded(content.size())] =
                static_cast<char>('x' + random.bounded(2));
        }
        const QString name = QStringLiteral("d%1/%2%3%4")
                                 .arg(random.bounded(4))
                                 .arg(QString(random.bounded(3), QLatin1Char('0')))
                                 .arg(random.bounded(6))
                                 .arg(endings.at(random.bounded(endings.size())));
        tree->file(name, content);
    }
    for (int i = 0; i < 8; ++i) {
        ScanProfile profile;
        profile.sameFileName = (i & 1) != 0;
        profile.sameFileExtension = (i & 2) != 0;
        profile.sameDateOfCreation = (i & 4) != 0;
        compareWithLiteral(profile);
    }
    for (const char *checksum : {"md5", "sha1", "crc", ""}) {
        compareWithLiteral(EngineRig::advanced(QLatin1String(checksum)));
    }
}

void tst_Grouping::randomBuckets_data()
{
    QTest::addColumn<int>("first");
    // TWINSIFT_BUCKETS=2000 tries so many.
    const int buckets = qEnvironmentVariableIsSet("TWINSIFT_BUCKETS")
        ? qEnvironmentVariableIntValue("TWINSIFT_BUCKETS")
        : 100;
    for (int first = 0; first < buckets; first += 20) {
        QTest::addRow("from %d", first) << first;
    }
}

void tst_Grouping::randomBuckets()
{
    // Buckets of any number of files and classes, in any order, some unreadable, some found twice:
    // groups, signals, sums, log lines and exact groups are those of the plain algorithm.
    QFETCH(int, first);
    for (int number = first; number < first + 20; ++number) {
        QRandomGenerator random(static_cast<quint32>(number));
        tree = std::make_unique<TempTree>(path(QStringLiteral("bucket %1").arg(number)));
        const int files = random.bounded(4) == 0 ? random.bounded(60, 150) : random.bounded(2, 30);
        const int contents = random.bounded(1, random.bounded(2) == 0 ? 4 : files + 1);
        const int bytes =
            random.bounded(2) == 0 ? random.bounded(4, 60) : random.bounded(4000, 9000);
        for (int i = 0; i < files; ++i) {
            const QByteArray mark = QByteArray::number(random.bounded(contents));
            tree->file(QStringLiteral("%1/%2").arg(i % 3).arg(i), mark.rightJustified(bytes, 'x'));
        }
        if (random.bounded(3) == 0) {
            tree->setMode(QStringLiteral("0/0"), 0);
            tree->setMode(QStringLiteral("1/1"), 0);
        }
        QStringList folders = {tree->root()};
        if (random.bounded(3) == 0) {
            folders.append(tree->path(QStringLiteral("1")));
        }
        const RestrictedRights rights;
        rig = std::make_unique<EngineRig>();
        // The files as the scan will find them, for the lines that it will write.
        rig->run([&] { rig->engine()->startFindAllFiles({}, {}, folders); });
        for (const QString &unreadable :
             LiteralGrouping(rig->engine()->foundFiles(), ScanProfile()).unreadable()) {
            expectMessage(
                QtCriticalMsg,
                QStringLiteral("File %1 cannot opened! Permission denied").arg(unreadable));
        }
        rig = std::make_unique<EngineRig>();
        compareWithLiteral(ScanProfile(), folders);
        rig.reset();
        if (QTest::currentTestFailed()) {
            return;
        }
    }
}

void tst_Grouping::repeatedPathsOfTwoContents()
{
    // A path that is found several times joins a group that another content has opened.
    const QString p = file("p/1", "AAA");
    file("q/2", "BBB");
    file("r/3", "BBB");
    const auto below = [this](const char *name) {
        return tree->path(QLatin1String(name));
    };
    const QStringList folders = {below("p"), below("q"), below("p"), below("r"), below("p")};
    compareWithLiteral(ScanProfile(), folders);
    QCOMPARE(rig->groups().size(), 1);
    QVERIFY(rig->groups().first().contains(p));
}

void tst_Grouping::scannedFiles()
{
    // Of each file of an exact group its size and its time are known as they were read.
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(1234567890123);
    for (const char *name : {"a", "b"}) {
        QFile changed(file(name, "same!"));
        QVERIFY(changed.open(QIODevice::ReadWrite));
        QVERIFY(changed.setFileTime(time, QFileDevice::FileModificationTime));
    }
    for (const char *checksum : {"", "md5", "sha1", "crc"}) {
        const bool isAdvanced = *checksum != '\0';
        rig->scan({tree->root()},
                  isAdvanced ? EngineRig::advanced(QLatin1String(checksum)) : ScanProfile());
        const ScanFindings &findings = *ScanFindings::instance();
        QCOMPARE(findings.areContentsProven, qstrcmp(checksum, "crc") != 0);
        QCOMPARE(findings.exactGroups.size(), 1);
        QCOMPARE(findings.exactGroups.first().size(), 2);
        for (const ScannedFile &file : findings.exactGroups.first()) {
            QCOMPARE(file.size, 5);
            QCOMPARE(file.modified, Q_INT64_C(1234567890123000000));
        }
    }
    // The next scan forgets them.
    rig->scan({});
    QVERIFY(ScanFindings::instance()->exactGroups.isEmpty());
}

void tst_Grouping::collidingHashes()
{
    // Two contents that were made to agree in their MD5 share a group, and are no exact one.
    const QByteArray common =
        QByteArray::fromHex("d131dd02c5e6eec4693d9a0698aff95c2fcab58712467eab4004583eb8fb7f89"
                            "55ad340609f4b30283e488832571415a085125e8f7cdc99fd91dbdf280373c5b"
                            "d8823e3156348f5bae6dacd436c919c6dd53e2b487da03fd02396306d248cda0"
                            "e99f33420f577ee8ce54b67080a80d1ec69821bcb6a8839396f9652b6ff72a70");
    QByteArray other = common;
    for (const auto &change : {std::make_pair(19, 0x07),
                               std::make_pair(45, 0xf1),
                               std::make_pair(59, 0x72),
                               std::make_pair(83, 0x34),
                               std::make_pair(109, 0x28),
                               std::make_pair(123, 0xab)}) {
        other[change.first] = static_cast<char>(change.second);
    }
    const QString a1 = file("1", common);
    const QString b1 = file("2", other);
    const QString a2 = file("3", common);
    const QString b2 = file("4", other);
    rig->scan({tree->root()}, EngineRig::advanced(QStringLiteral("md5")));
    QCOMPARE(rig->groups(), QList<QStringList>{QStringList({a1, b1, a2, b2})});
    QCOMPARE(exactPaths(), (QList<QStringList>{{a1, a2}, {b1, b2}}));
}

void tst_Grouping::collidingCrcs()
{
    // By CRC only files of one size share an exact group.
    const QString empty1 = file("1");
    const QString zero1 = file("2", QByteArray("\x9D\x0A\xD9\x6D", 4));
    const QString empty2 = file("3");
    const QString zero2 = file("4", QByteArray("\x9D\x0A\xD9\x6D", 4));
    rig->scan({tree->root()}, EngineRig::advanced(QStringLiteral("crc")));
    QCOMPARE(rig->groups(), QList<QStringList>{QStringList({empty1, zero1, empty2, zero2})});
    QCOMPARE(exactPaths(), (QList<QStringList>{{empty1, empty2}, {zero1, zero2}}));
}

void tst_Grouping::exactGroupsOfAStoppedScan()
{
    // Wherever a scan is stopped, every file of a group that it gives stands in a whole exact group.
    for (int i = 0; i < 12; ++i) {
        tree->file(QString::number(i), QByteArray::number(i % 3).rightJustified(i < 6 ? 10 : 20));
    }
    for (const char *checksum : {"", "md5"}) {
        const ScanProfile profile =
            *checksum == '\0' ? ScanProfile() : EngineRig::advanced(QLatin1String(checksum));
        const auto signalCount = rig->scan({tree->root()}, profile).size();
        for (int i = 1; i < signalCount; ++i) {
            rig->stopAtSignal(i);
            rig->scan({tree->root()}, profile);
            QSet<QString> known;
            for (const QStringList &group : exactPaths()) {
                known.unite(QSet<QString>(group.cbegin(), group.cend()));
            }
            for (const QStringList &group : rig->groups()) {
                for (const QString &file : group) {
                    QVERIFY2(known.contains(file),
                             qPrintable(QStringLiteral("%1 %2").arg(i).arg(file)));
                }
            }
        }
    }
}

void tst_Grouping::unreadableFilesShareNoExactGroup()
{
    // Files that cannot be read have the CRC of an empty one; nothing is known of their contents.
    for (const char *name : {"a", "b"}) {
        file(name, "same!");
        tree->setMode(QLatin1String(name), 0);
    }
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("The super-user reads every file here.");
    }
    rig = std::make_unique<EngineRig>();
    rig->scan({tree->root()}, EngineRig::advanced(QStringLiteral("crc")));
    QCOMPARE(rig->groups().size(), 1);
    QVERIFY(exactPaths().isEmpty());
}

void tst_Grouping::largeHeads()
{
    // Contents that differ behind their beginning, in many classes, are told apart as plainly.
    QRandomGenerator random(7);
    for (int i = 0; i < 40; ++i) {
        QByteArray content(10000, 'x');
        content[random.bounded(2) == 0 ? 9999 : 5000] = static_cast<char>('a' + random.bounded(4));
        tree->file(QString::number(i), content);
    }
    compareWithLiteral(ScanProfile());
    QCOMPARE(rig->groups().size(), 1);
}

void tst_Grouping::manyFilesOfOneSize_data()
{
    QTest::addColumn<bool>("areEqual");
    QTest::newRow("equal") << true;
    QTest::newRow("different") << false;
}

void tst_Grouping::manyFilesOfOneSize()
{
    // A large bucket, with half a million pairs, ends with the right counters.
    QFETCH(bool, areEqual);
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i) {
        tree->file(QString::number(i), areEqual ? QByteArray("x") : QByteArray::number(10000 + i));
    }
    const QStringList record = rig->scan({tree->root()});
    QCOMPARE(countingLines(record).size(), areEqual ? count - 1 : 0);
    QCOMPARE(rig->engine()->groupedFilesCount(), areEqual ? count : 0);
    QCOMPARE(rig->engine()->groupedFilesSize(), areEqual ? count * (count - 1) / 2 + 1 : 0);
}

TWINSIFT_TEST_MAIN(tst_Grouping)
#include "tst_Grouping.moc"
