// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"
#include "ui/results/DeletionPlan.h"

#include <QHash>
#include <QMap>
#include <QRandomGenerator>
#include <QSet>

#include <algorithm>
#include <functional>
#include <utility>

namespace
{
using Verdict = DeletionPlan::Verdict;

constexpr qint64 bytes = 1000;
constexpr qint64 timeOfScan = 5000000000;

/** A made-up disk. The first letter of a file's name is its content: "A1" and "A2" are copies. */
class Disk final
{
public:
    void add(const QString &path)
    {
        files[path] = {true, true, bytes, timeOfScan, 1, {1, nextInode++}, {}, {}};
    }
    /** The same entry, through a link to its folder or a second mount of it. */
    void addOtherPath(const QString &path, const QString &known)
    {
        files[path] = files.value(known);
    }
    /** Another name of the file, which has two of them. */
    void addHardLink(const QString &path, const QString &known)
    {
        name(known);
        files[path] = files.value(known);
        name(path);
    }
    FileState look(const QString &path) const
    {
        ++looks[path];
        return files.value(path);
    }
    // By the first letter of the name.
    bool haveSameBytes(const QString &a, const QString &b) const
    {
        ++comparisons;
        return letterOf(a) == letterOf(b);
    }
    void remove(const QString &path)
    {
        const FileState gone = files.value(path);
        for (const QString &other : files.keys()) {
            if (files.value(other).isSameEntryAs(gone)) {
                files.remove(other);
            }
        }
    }
    QStringList inTrash;
    bool isAsScanned(const QString &path) const
    {
        const FileState state = files.value(path);
        return state.isRegular && state.size == bytes && state.modified == timeOfScan;
    }
    static QChar letterOf(const QString &path)
    {
        return path.at(path.lastIndexOf(QLatin1Char('/')) + 1);
    }

    QHash<QString, FileState> files;
    mutable QHash<QString, int> looks;
    mutable int comparisons = 0;

private:
    void name(const QString &path)
    {
        FileState &state = files[path];
        state.links = 2;
        const auto slash = path.lastIndexOf(QLatin1Char('/'));
        state.folder = {1, qHash(path.left(slash))};
        state.name = path.mid(slash + 1).toUtf8();
    }

    quint64 nextInode = 100;
};

QStringList paths(const char *names)
{
    return QString::fromLatin1(names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QList<QStringList> lists(const char *names)
{
    QList<QStringList> all;
    for (const QString &part : QString::fromLatin1(names).split(QLatin1Char('|'))) {
        all.append(part.split(QLatin1Char(' '), Qt::SkipEmptyParts));
    }
    return all;
}

/** All but the file that each group shows on its top row, in the order of the rows. */
QStringList ticksOfAScan(const QList<QStringList> &groups)
{
    QStringList ticked;
    for (const QStringList &group : groups) {
        for (auto i = group.size() - 2; i >= 0; --i) {
            ticked.append(group.at(i));
        }
    }
    return ticked;
}

ScanFindings findingsOf(const QList<QStringList> &groups, const QList<QStringList> &sets)
{
    ScanFindings findings;
    findings.groups = groups;
    for (const QStringList &set : sets) {
        QVector<ScannedFile> files;
        for (const QString &path : set) {
            files.append({path, bytes, timeOfScan});
        }
        if (files.size() > 1) {
            findings.exactGroups.append(files);
        }
    }
    return findings;
}

QString nameOf(Verdict verdict)
{
    static const QMap<Verdict, QString> names = {{Verdict::Take, QStringLiteral("asked for")},
                                                 {Verdict::TakeWhatWasSeen, QStringLiteral("goes")},
                                                 {Verdict::Missing, QStringLiteral("missing")},
                                                 {Verdict::OnlyCopy, QStringLiteral("only copy")},
                                                 {Verdict::Changed, QStringLiteral("changed")},
                                                 {Verdict::SameFile, QStringLiteral("same file")}};
    return names.value(verdict);
}

DeletionPlan::Senses sensesOf(const Disk &disk)
{
    return {[&disk](const QString &path) { return disk.look(path); },
            [&disk](const QString &a, const QString &b) { return disk.haveSameBytes(a, b); },
            [&disk](const QString &path) {
                return disk.inTrash.contains(path);
            }};
}

/** Deletes what may go, and tells of each ticked file what became of it. */
QStringList deleteAll(Disk *disk,
                      const QList<QStringList> &groups,
                      const QStringList &ticked,
                      const ScanFindings &findings)
{
    DeletionPlan plan(groups, ticked, findings, sensesOf(*disk));
    QStringList told;
    for (const QString &path : ticked) {
        const Verdict verdict = plan.decide(path).verdict;
        told.append(path % QLatin1Char(' ') % nameOf(verdict));
        if (verdict == Verdict::Take || verdict == Verdict::TakeWhatWasSeen) {
            disk->remove(path);
        }
    }
    return told;
}

/** What the table of a test says of one deletion. */
struct Case {
    const char *name;
    const char *groups;
    const char *sets;
    /** Empty for the ticks of a scan. */
    const char *ticked;
    const char *told;
    std::function<void(Disk &)> change = [](Disk &) {
    };
    bool areContentsProven = true;
};
} // namespace
Q_DECLARE_METATYPE(Case)

/** Which ticked files a deletion may take, and why it leaves the others. */
class tst_DeletionPlan final : public TestCase
{
    Q_OBJECT

private slots:
    void takesAndLeaves_data();
    void takesAndLeaves();
    void knowsNothingOfOtherRows();
    void tellsWhatWasSeen();
    void copyMustBeThereAfterwards();
    void copyInTheTrashIsNone();
    void looksAgainAfterAComparison();
    void comparesWhatMayHaveBeenWrittenTo_data();
    void comparesWhatMayHaveBeenWrittenTo();
    void losesNothing_data();
    void losesNothing();
    void looksAtTwoFiles_data();
    void looksAtTwoFiles();
    void knowsTheLastOfItsContent_data();
    void knowsTheLastOfItsContent();

private:
    static QList<Case> cases();
    static QList<Case> changes();
};

QList<Case> tst_DeletionPlan::cases()
{
    return {
        {"copies of one content", "A1 A2 A3", "A1 A2 A3", "", "A2 goes|A1 goes"},
        {"two contents, the other one's copy shown last",
         "A1 A2 B2",
         "A1 A2|B1 B2",
         "",
         "A2 goes|A1 only copy"},
        {"two contents, in the other order", "B2 A1 A2", "A1 A2|B1 B2", "", "A1 goes|B2 goes"},
        {"ticked in the other order", "A1 A2 B2", "A1 A2|B1 B2", "A1 A2", "A1 goes|A2 only copy"},
        {"three contents in one group",
         "A1 A2 B2 B3 C2",
         "A1 A2|B1 B2 B3|C1 C2",
         "",
         "B3 goes|B2 goes|A2 goes|A1 only copy"},
        {"three contents, none of which is shown whole",
         "A1 A2 B1 B2 C1 C2",
         "A1 A2|B1 B2|C1 C2",
         "",
         "C1 goes|B2 goes|B1 only copy|A2 goes|A1 only copy"},
        {"a file without a copy among others", "X1 A1 A2", "A1 A2", "", "A1 goes|X1 only copy"},
        {"a file of no set in a group of its own", "X1 Y1", "", "", "X1 only copy"},
        {"every row ticked",
         "A1 A2 B2",
         "A1 A2|B1 B2",
         "A1 A2 B2",
         "A1 asked for|A2 asked for|B2 asked for"},
        {"every row of one group ticked",
         "A1 A2|B1 B2",
         "A1 A2|B1 B2",
         "A1 A2 B1",
         "A1 asked for|A2 asked for|B1 goes"},
        {"the top row ticked, another not", "A1 A2 A3", "A1 A2 A3", "A3 A2", "A3 goes|A2 goes"},
        {"all of a content ticked by hand",
         "A1 A2 B2",
         "A1 A2|B1 B2",
         "B2 A2 A1",
         "B2 asked for|A2 asked for|A1 asked for"},
        {"all of a content but not of the group",
         "A1 A2 B1 B2",
         "A1 A2|B1 B2",
         "B2 A2 B1 A1",
         "B2 asked for|A2 asked for|B1 asked for|A1 asked for"},
        {"a copy that a stop has kept from the rows", "A1 A2", "A1 A2 A3", "", "A1 goes"},
        {"a set that a stop has cut short", "A1 A2 A3", "A1 A2", "", "A2 goes|A1 only copy"},
        {"rows that a stop has left without a set", "A1 A2", "", "", "A1 only copy"},
        {"one path in two rows", "A1 A1", "A1 A1", "A1", "A1 only copy"},
        {"one content in two groups, one of them ticked whole",
         "A1 A2|A3 A4",
         "A1 A2 A3 A4",
         "A1 A3 A4 A2",
         "A1 asked for|A3 asked for|A4 asked for|A2 asked for"},
        {"no copy in a group that goes whole",
         "A1 B2|A2 A3",
         "A1 A2 A3|B1 B2",
         "A1 A2 A3",
         "A1 only copy|A2 asked for|A3 asked for"},
        {"different files of one short checksum",
         "A1 A2 B1",
         "A1 A2 B1",
         "",
         "A2 goes|A1 only copy",
         [](Disk &) {},
         false},
        {"two contents of one short checksum, interleaved",
         "A1 B1 A2 B2 A3 B3",
         "A1 B1 A2 B2 A3 B3",
         "A1 B1 A2 B2 A3",
         "A1 goes|B1 goes|A2 goes|B2 goes|A3 only copy",
         [](Disk &) {},
         false},
        {"three different files of one short checksum",
         "B1 A1 C1",
         "A1 B1 C1",
         "",
         "A1 only copy|B1 only copy",
         [](Disk &) {},
         false},
        {"copies of one short checksum",
         "A1 A2 A3",
         "A1 A2 A3",
         "",
         "A2 goes|A1 goes",
         [](Disk &) {},
         false},
        {"a path that no row shows", "A1 A2", "A1 A2 A3", "A3", "A3 goes"},
    };
}

QList<Case> tst_DeletionPlan::changes()
{
    const auto otherPath = [](const char *path, const char *known) {
        return [=](Disk &disk) {
            disk.addOtherPath(QString::fromLatin1(path), QString::fromLatin1(known));
        };
    };
    const auto become = [](const char *path, const std::function<void(FileState &)> &what) {
        return [=](Disk &disk) {
            what(disk.files[QString::fromLatin1(path)]);
        };
    };
    const auto gone = [](const char *path) {
        return [=](Disk &disk) {
            disk.remove(QString::fromLatin1(path));
        };
    };
    const auto otherType = [](FileState &state) {
        state.isRegular = false;
    };
    const auto shorter = [](FileState &state) {
        --state.size;
    };
    const auto rewritten = [](FileState &state) {
        ++state.modified;
    };
    const auto replaced = [](FileState &state) {
        state.file.inode = 99;
    };
    return {
        {"through a link to a folder", "A1 A2", "A1 A2", "", "A1 same file", otherPath("A2", "A1")},
        {"a link among copies",
         "A1 A2 A3",
         "A1 A2 A3",
         "",
         "A2 goes|A1 missing",
         otherPath("A2", "A1")},
        {"through a link, the kept file",
         "A3 A1 A2",
         "A1 A2 A3",
         "",
         "A1 same file|A3 goes",
         otherPath("A2", "A1")},
        {"through two links",
         "A1 A2 A3",
         "A1 A2 A3",
         "",
         "A2 same file|A1 same file",
         [](Disk &disk) {
             disk.addOtherPath(QStringLiteral("A2"), QStringLiteral("A1"));
             disk.addOtherPath(QStringLiteral("A3"), QStringLiteral("A1"));
         }},
        {"through a link, all of the content ticked",
         "A1 A2 B2",
         "A1 A2|B1 B2",
         "",
         "A2 same file|A1 only copy",
         otherPath("A2", "A1")},
        {"a link of one short checksum",
         "A1 A2",
         "A1 A2",
         "",
         "A1 same file",
         otherPath("A2", "A1"),
         false},
        {"two names of one file",
         "A1 d/A2",
         "A1 d/A2",
         "",
         "A1 goes",
         [](Disk &disk) {
             disk.addHardLink(QStringLiteral("d/A2"), QStringLiteral("A1"));
         }},
        {"two paths to one of two names",
         "d/A1 A2 A3",
         "d/A1 A2 A3",
         "",
         "A2 goes|d/A1 same file",
         [](Disk &disk) {
             disk.addHardLink(QStringLiteral("A2"), QStringLiteral("d/A1"));
             disk.addOtherPath(QStringLiteral("A3"), QStringLiteral("d/A1"));
         }},
        {"the kept file gone", "A1 A2", "A1 A2", "", "A1 only copy", gone("A2")},
        {"the kept file gone, of three",
         "A1 A2 A3",
         "A1 A2 A3",
         "",
         "A2 goes|A1 only copy",
         gone("A3")},
        {"the kept file cut short", "A1 A2", "A1 A2", "", "A1 only copy", become("A2", shorter)},
        {"the kept file written anew",
         "A1 A2",
         "A1 A2",
         "",
         "A1 only copy",
         become("A2", rewritten)},
        {"the kept file a link or a folder now",
         "A1 A2",
         "A1 A2",
         "",
         "A1 only copy",
         become("A2", otherType)},
        {"the kept file put in place anew, unchanged",
         "A1 A2",
         "A1 A2",
         "",
         "A1 goes",
         become("A2", replaced)},
        {"the last ticked one gone",
         "A1 A2 A3 B2",
         "A1 A2 A3|B1 B2",
         "",
         "A3 goes|A2 only copy|A1 missing",
         gone("A1")},
        {"the last ticked one changed",
         "A1 A2 A3 B2",
         "A1 A2 A3|B1 B2",
         "",
         "A3 goes|A2 only copy|A1 changed",
         become("A1", rewritten)},
        {"the file gone", "A1 A2", "A1 A2", "", "A1 missing", gone("A1")},
        {"the file cut short", "A1 A2", "A1 A2", "", "A1 changed", become("A1", shorter)},
        {"the file written anew", "A1 A2", "A1 A2", "", "A1 changed", become("A1", rewritten)},
        {"the file a link or a folder now",
         "A1 A2",
         "A1 A2",
         "",
         "A1 changed",
         become("A1", otherType)},
        {"every row ticked, all changed",
         "A1 A2",
         "A1 A2",
         "A1 A2",
         "A1 asked for|A2 asked for",
         become("A1", rewritten)},
        {"gone without a set", "X1 Y1", "", "", "X1 missing", gone("X1")},
    };
}

void tst_DeletionPlan::takesAndLeaves_data()
{
    QTest::addColumn<Case>("deletion");
    for (const Case &deletion : cases() + changes()) {
        QTest::newRow(deletion.name) << deletion;
    }
    QTest::newRow("nothing ticked") << Case{"", "A1 A2", "A1 A2", " ", ""};
}

void tst_DeletionPlan::takesAndLeaves()
{
    // Each ticked file goes or stays as the copies that were found, and what became of them, allow.
    QFETCH(Case, deletion);
    const QList<QStringList> groups = lists(deletion.groups);
    const QList<QStringList> sets = lists(deletion.sets);
    Disk disk;
    for (const QStringList &list : groups + sets) {
        for (const QString &path : list) {
            disk.add(path);
        }
    }
    deletion.change(disk);
    ScanFindings findings = findingsOf(groups, sets);
    findings.areContentsProven = deletion.areContentsProven;
    const QStringList ticked =
        *deletion.ticked == '\0' ? ticksOfAScan(groups) : paths(deletion.ticked);
    const QStringList told =
        QString::fromLatin1(deletion.told).split(QLatin1Char('|'), Qt::SkipEmptyParts);
    QCOMPARE(deleteAll(&disk, groups, ticked, findings), told);
    QVERIFY(disk.comparisons == 0 || !deletion.areContentsProven);
}

void tst_DeletionPlan::knowsNothingOfOtherRows()
{
    // Files of rows that are not the scan's all go, without a look.
    Disk disk;
    disk.add(QStringLiteral("A1"));
    const ScanFindings findings = findingsOf(lists("A1 A2"), lists("A1 A2"));
    const QList<QStringList> others = lists("A1 A2 A3");
    QCOMPARE(deleteAll(&disk, others, ticksOfAScan(others), findings),
             QStringList({QStringLiteral("A2 asked for"), QStringLiteral("A1 asked for")}));
    QVERIFY(disk.looks.isEmpty());
}

void tst_DeletionPlan::tellsWhatWasSeen()
{
    // What may go is told apart from any other file that may stand in its place later.
    Disk disk;
    disk.add(QStringLiteral("A1"));
    disk.add(QStringLiteral("A2"));
    const QList<QStringList> groups = lists("A1 A2");
    DeletionPlan plan(groups, ticksOfAScan(groups), findingsOf(groups, groups), sensesOf(disk));
    const FileState seen = plan.decide(QStringLiteral("A1")).seen;
    QVERIFY(seen.isSameFileAs(disk.files.value(QStringLiteral("A1"))));
    QVERIFY(!seen.isSameFileAs(disk.files.value(QStringLiteral("A2"))));
}

void tst_DeletionPlan::copyMustBeThereAfterwards()
{
    // Where nothing showed that both were one file, the look at the copy behind the move does.
    Disk disk;
    disk.add(QStringLiteral("A1"));
    disk.add(QStringLiteral("A2"));
    const QList<QStringList> groups = lists("A1 A2");
    DeletionPlan plan(groups, ticksOfAScan(groups), findingsOf(groups, groups), sensesOf(disk));
    const DeletionPlan::Decision decision = plan.decide(QStringLiteral("A1"));
    QCOMPARE(decision.copy, QStringLiteral("A2"));
    QVERIFY(plan.isCopyLeft(decision));
    FileState &copy = disk.files[QStringLiteral("A2")];
    const FileState seen = copy;
    // Some file systems number a file anew, and each name that goes changes its last time.
    copy.file.inode += 100;
    ++copy.changed;
    QVERIFY(plan.isCopyLeft(decision));
    ++copy.size;
    QVERIFY(!plan.isCopyLeft(decision));
    copy = seen;
    ++copy.modified;
    QVERIFY(!plan.isCopyLeft(decision));
    copy = seen;
    copy.isRegular = false;
    QVERIFY(!plan.isCopyLeft(decision));
    disk.files.remove(QStringLiteral("A2"));
    QVERIFY(!plan.isCopyLeft(decision));
}

void tst_DeletionPlan::copyInTheTrashIsNone()
{
    // It goes when the trash is emptied.
    Disk disk;
    for (const char *name : {"A1", "A2", "A3"}) {
        disk.add(QLatin1String(name));
    }
    const QList<QStringList> groups = lists("A1 A2 A3");
    disk.inTrash = QStringList({QStringLiteral("A2"), QStringLiteral("A3")});
    const DeletionPlan plan(groups,
                            ticksOfAScan(groups),
                            findingsOf(groups, groups),
                            sensesOf(disk));
    QVERIFY(plan.isLastOfItsContent(QStringLiteral("A1")));
    Disk copy = disk;
    QVERIFY(!deleteAll(&copy, groups, ticksOfAScan(groups), findingsOf(groups, groups))
                 .contains(QStringLiteral("A1 goes")));
    disk.inTrash.removeLast();
    QVERIFY(!plan.isLastOfItsContent(QStringLiteral("A1")));
    QVERIFY(deleteAll(&disk, groups, ticksOfAScan(groups), findingsOf(groups, groups))
                .contains(QStringLiteral("A1 goes")));
}

void tst_DeletionPlan::looksAgainAfterAComparison()
{
    // A file that is written to while it is compared stays.
    Disk disk;
    disk.add(QStringLiteral("A1"));
    disk.add(QStringLiteral("A2"));
    const QList<QStringList> groups = lists("A1 A2");
    ScanFindings findings = findingsOf(groups, groups);
    findings.areContentsProven = false;
    DeletionPlan::Senses senses = sensesOf(disk);
    senses.haveSameBytes = [&disk](const QString &a, const QString &) {
        ++disk.files[a].modified;
        return true;
    };
    DeletionPlan plan(groups, ticksOfAScan(groups), findings, senses);
    QCOMPARE(plan.decide(QStringLiteral("A1")).verdict, Verdict::Changed);
}

void tst_DeletionPlan::comparesWhatMayHaveBeenWrittenTo_data()
{
    QTest::addColumn<qint64>("ofFile");
    QTest::addColumn<qint64>("ofCopy");
    QTest::addColumn<bool>("isCompared");
    QTest::newRow("neither has changed") << qint64(7) << qint64(7) << false;
    QTest::newRow("the system does not tell") << qint64(0) << qint64(0) << false;
    QTest::newRow("the file has changed") << qint64(6) << qint64(7) << true;
    QTest::newRow("the copy has changed") << qint64(7) << qint64(6) << true;
    QTest::newRow("the file was read too soon") << qint64(-1) << qint64(7) << true;
    QTest::newRow("the copy was read too soon") << qint64(7) << qint64(-1) << true;
}

void tst_DeletionPlan::comparesWhatMayHaveBeenWrittenTo()
{
    // What has the size and the time that the scan knows, but may have been changed since, goes only
    // if its bytes are still those of its copy.
    QFETCH(qint64, ofFile);
    QFETCH(qint64, ofCopy);
    QFETCH(bool, isCompared);
    const QList<QStringList> groups = lists("A1 A2");
    ScanFindings findings = findingsOf(groups, groups);
    findings.exactGroups[0][0].changed = ofFile;
    findings.exactGroups[0][1].changed = ofCopy;
    for (const bool areSame : {true, false}) {
        Disk disk;
        for (const QString &path : groups.first()) {
            disk.add(path);
            disk.files[path].changed = 7;
        }
        int comparisons = 0;
        DeletionPlan::Senses senses = sensesOf(disk);
        senses.haveSameBytes = [&](const QString &, const QString &) {
            ++comparisons;
            return areSame;
        };
        DeletionPlan plan(groups, ticksOfAScan(groups), findings, senses);
        const Verdict verdict = plan.decide(QStringLiteral("A1")).verdict;
        QCOMPARE(comparisons, isCompared ? 1 : 0);
        QCOMPARE(verdict, areSame || !isCompared ? Verdict::TakeWhatWasSeen : Verdict::OnlyCopy);
        QCOMPARE(
            DeletionPlan(groups, {}, findings, senses).isLastOfItsContent(QStringLiteral("A1")),
            isCompared && !areSame);
    }
}

void tst_DeletionPlan::losesNothing_data()
{
    QTest::addColumn<bool>("areContentsProven");
    QTest::newRow("by their bytes") << true;
    QTest::newRow("by a short checksum") << false;
}

void tst_DeletionPlan::losesNothing()
{
    // Whatever was found, whatever links there are and whatever has changed, with the ticks of a scan
    // and any others that leave a row of each group: each content that was there still is.
    QFETCH(bool, areContentsProven);
    QRandomGenerator random(7);
    for (int round = 0; round < 4000; ++round) {
        Disk disk;
        QList<QStringList> sets;
        QStringList all;
        const int contents = 1 + random.bounded(4);
        for (int content = 0; content < contents; ++content) {
            QStringList set;
            for (int copy = 1 + random.bounded(5); copy > 0; --copy) {
                const QString path = QStringLiteral("%1/%2%3")
                                         .arg(random.bounded(3))
                                         .arg(QChar('A' + content))
                                         .arg(copy);
                const int kind = set.isEmpty() ? 9 : random.bounded(10);
                if (kind == 0) {
                    disk.addOtherPath(path, set.at(random.bounded(set.size())));
                } else if (kind == 1) {
                    disk.addHardLink(path, set.at(random.bounded(set.size())));
                } else {
                    disk.add(path);
                }
                set.append(path);
            }
            all += set;
            sets.append(set);
        }
        // A part of the files, in any order, is shown; a short checksum makes one set of them.
        std::shuffle(all.begin(), all.end(), random);
        const QList<QStringList> groups = {all.mid(0, 1 + random.bounded(all.size()))};
        ScanFindings findings =
            findingsOf(groups, areContentsProven ? sets : QList<QStringList>({all}));
        findings.areContentsProven = areContentsProven;
        for (const QString &path : std::as_const(all)) {
            const int change = random.bounded(12);
            if (change == 0) {
                disk.remove(path);
            } else if (change == 1 && disk.files.contains(path)) {
                ++disk.files[path].modified;
            }
        }
        QSet<QChar> before;
        for (const QString &path : std::as_const(all)) {
            if (disk.isAsScanned(path)) {
                before.insert(Disk::letterOf(path));
            }
        }
        QStringList ticked = ticksOfAScan(groups);
        if (random.bounded(2) == 0) {
            ticked = groups.first();
            std::shuffle(ticked.begin(), ticked.end(), random);
            ticked = ticked.mid(1 + random.bounded(ticked.size()));
        }
        deleteAll(&disk, groups, ticked, findings);
        for (const QChar letter : std::as_const(before)) {
            QVERIFY2(std::any_of(all.begin(),
                                 all.end(),
                                 [&](const QString &path) {
                                     return Disk::letterOf(path) == letter
                                         && disk.isAsScanned(path);
                                 }),
                     qPrintable(QStringLiteral("round %1 lost %2").arg(round).arg(letter)));
        }
    }
}

void tst_DeletionPlan::looksAtTwoFiles_data()
{
    QTest::addColumn<int>("unticked");
    QTest::addColumn<QString>("kind");
    QTest::newRow("one row is kept") << 1 << QString();
    QTest::newRow("many rows are kept") << 500 << QString();
    QTest::newRow("none is kept") << 0 << QString();
    QTest::newRow("all that were kept are gone") << 500 << QStringLiteral("gone");
    QTest::newRow("all rows are paths to one file") << 500 << QStringLiteral("one file");
}

void tst_DeletionPlan::looksAtTwoFiles()
{
    // A deletion looks at each file and at one copy of it, however many there are; at each copy that
    // is none any more, or another path to a known one, it looks once.
    QFETCH(int, unticked);
    QFETCH(QString, kind);
    constexpr int count = 500;
    Disk disk;
    QStringList all;
    for (int i = 0; i < unticked + count; ++i) {
        all.append(QStringLiteral("A%1").arg(i));
        if (i > 0 && kind == QStringLiteral("one file")) {
            disk.addOtherPath(all.last(), all.first());
        } else if (i >= unticked || kind != QStringLiteral("gone")) {
            disk.add(all.last());
        }
    }
    const QList<QStringList> groups = {QStringList(QStringLiteral("B1")) + all};
    deleteAll(&disk, groups, all.mid(unticked), findingsOf(groups, {all}));
    int looks = 0;
    for (const int ofOne : std::as_const(disk.looks)) {
        looks += ofOne;
    }
    QVERIFY2(looks <= 2 * count + (kind.isEmpty() ? 0 : unticked),
             qPrintable(QString::number(looks)));
}

void tst_DeletionPlan::knowsTheLastOfItsContent_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("isLast");
    const QList<QPair<const char *, bool>> kinds = {{"its copy is there", false},
                                                    {"its copy has gone", true},
                                                    {"its copy has changed", true},
                                                    {"its copy is another path to it", true},
                                                    {"its copy is another name of it", false},
                                                    {"it has changed itself", true},
                                                    {"it has gone itself", false},
                                                    {"it is in no set", true},
                                                    {"it only shares a short checksum", true},
                                                    {"its row is none of the scan's", false}};
    for (const auto &kind : kinds) {
        QTest::newRow(kind.first) << QString::fromLatin1(kind.first) << kind.second;
    }
}

void tst_DeletionPlan::knowsTheLastOfItsContent()
{
    // A file is the last of its content if none that was found beside it has it any more.
    QFETCH(QString, kind);
    QFETCH(bool, isLast);
    const auto is = [&kind](const char *other) {
        return kind == QLatin1String(other);
    };
    const QString file = QStringLiteral("d/A1");
    const QString copy =
        is("it only shares a short checksum") ? QStringLiteral("d/B1") : QStringLiteral("d/A2");
    Disk disk;
    disk.add(file);
    disk.add(copy);
    const QList<QStringList> groups = {{file, copy}};
    ScanFindings findings =
        findingsOf(groups, is("it is in no set") ? QList<QStringList>() : groups);
    findings.areContentsProven = !is("it only shares a short checksum");
    if (is("its copy has gone")) {
        disk.remove(copy);
    } else if (is("its copy has changed")) {
        ++disk.files[copy].modified;
    } else if (is("its copy is another path to it")) {
        disk.addOtherPath(copy, file);
    } else if (is("its copy is another name of it")) {
        disk.addHardLink(copy, file);
    } else if (is("it has changed itself")) {
        --disk.files[file].size;
    } else if (is("it has gone itself")) {
        disk.remove(file);
    } else if (is("its row is none of the scan's")) {
        findings.groups = {};
    }
    const DeletionPlan plan(groups, {}, findings, sensesOf(disk));
    QCOMPARE(plan.isLastOfItsContent(file), isLast);
}

TWINSIFT_TEST_MAIN(tst_DeletionPlan)
#include "tst_DeletionPlan.moc"
