// SPDX-License-Identifier: MIT
#include "engine/RegularFile.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tools/GroupReview.h"

#include <QDateTime>
#include <QFile>

#include <memory>

#include <unistd.h>

class tst_GroupReview final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void unchangedFiles();
    void changedFiles_data();
    void changedFiles();
    void freeableBytes();
    void proof();
    void endedProof();

private:
    ScannedFile scanned(const char *name, const QByteArray &content = "same") const;

    std::unique_ptr<TempTree> tree;
    QVector<SkippedPath> skipped;
};

void tst_GroupReview::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    skipped.clear();
}

// A new file as a scan would have read it.
ScannedFile tst_GroupReview::scanned(const char *name, const QByteArray &content) const
{
    const QString path = tree->file(QLatin1String(name), content);
    RegularFile file;
    return file.open(path) ? ScannedFile{path, file.size(), file.modified()} : ScannedFile();
}

void tst_GroupReview::unchangedFiles()
{
    // Files that are what was read stay, in their order.
    const ScannedFile b = scanned("b");
    const ScannedFile a = scanned("a");
    const ReportedGroup group = GroupReview::review({b, a}, &skipped);
    QCOMPARE(group.paths, QStringList({b.path, a.path}));
    QCOMPARE(group.size, 4);
    QCOMPARE(group.freeableBytes, 4);
    QVERIFY(skipped.isEmpty());
}

void tst_GroupReview::changedFiles_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("reason");
    const QString changed = QStringLiteral("changed since it was read");
    QTest::newRow("gone") << QStringLiteral("gone") << QStringLiteral("No such file or directory");
    QTest::newRow("longer") << QStringLiteral("longer") << changed;
    QTest::newRow("written") << QStringLiteral("written") << changed;
    QTest::newRow("a link now") << QStringLiteral("link") << changed;
}

void tst_GroupReview::changedFiles()
{
    // A file that is not what was read leaves its group, and one alone is no group.
    QFETCH(QString, change);
    QFETCH(QString, reason);
    const ScannedFile a = scanned("a");
    const ScannedFile b = scanned("b");
    const ScannedFile c = scanned("c");
    QFile file(a.path);
    if (change == QLatin1String("longer")) {
        QVERIFY(file.open(QIODevice::Append));
        QVERIFY(file.write("!") == 1);
    } else if (change == QLatin1String("written")) {
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(
            file.setFileTime(QDateTime::fromSecsSinceEpoch(1), QFileDevice::FileModificationTime));
    } else {
        QVERIFY(file.remove());
    }
    if (change == QLatin1String("link")) {
        tree->link(QStringLiteral("a"), QStringLiteral("b"));
    }
    file.close();
    QCOMPARE(GroupReview::review({a, b, c}, &skipped).paths, QStringList({b.path, c.path}));
    QCOMPARE(skipped.size(), 1);
    QCOMPARE(skipped.first().path, QFile::encodeName(a.path));
    QCOMPARE(skipped.first().reason, reason);
    QCOMPARE(GroupReview::review({a, b}, &skipped).paths, QStringList());
}

void tst_GroupReview::freeableBytes()
{
    // Only files all of whose names stand in the group, and that are not the first, would free bytes.
    const ScannedFile a = scanned("a");
    const ScannedFile b = scanned("b");
    const ScannedFile c = scanned("c");
    const auto link = [this](const ScannedFile &file, const char *name) -> ScannedFile {
        const QString path = tree->path(QLatin1String(name));
        if (::link(QFile::encodeName(file.path).constData(), QFile::encodeName(path).constData())
            != 0) {
            return {};
        }
        return {path, file.size, file.modified};
    };
    const ScannedFile inside = link(b, "inside");
    link(c, "outside");
    const ReportedGroup group = GroupReview::review({a, b, inside, c}, &skipped);
    QCOMPARE(group.paths.size(), 4);
    QCOMPARE(group.freeableBytes, 4);
}

void tst_GroupReview::proof()
{
    // Groups are divided by content, and what is alone or cannot be read leaves them.
    const ScannedFile a = scanned("a", "one");
    const ScannedFile b = scanned("b", "two");
    const ScannedFile c = scanned("c", "one");
    const ScannedFile d = scanned("d", "two");
    const ScannedFile e = scanned("e", "six");
    const ScannedFile gone = {tree->path(QStringLiteral("gone")), 3, 0};
    const auto goOn = [] {
        return true;
    };
    const auto proven = GroupReview::prove({{a, b, c, d, e, gone}}, goOn, &skipped);
    QCOMPARE(proven.size(), 2);
    QCOMPARE(proven.at(0).at(0).path, a.path);
    QCOMPARE(proven.at(0).at(1).path, c.path);
    QCOMPARE(proven.at(1).at(0).path, b.path);
    QCOMPARE(proven.at(1).at(1).path, d.path);
    QCOMPARE(skipped.size(), 1);
    QCOMPARE(skipped.first().reason, QStringLiteral("No such file or directory"));
}

void tst_GroupReview::endedProof()
{
    // A proof that is ended leaves out what was not compared.
    const ScannedFile a = scanned("a");
    const ScannedFile b = scanned("b");
    const ScannedFile c = scanned("c");
    const ScannedFile d = scanned("d");
    int questions = 0;
    GroupReview::prove(
        {{a, b}},
        [&] {
            ++questions;
            return true;
        },
        &skipped);
    const int enoughForOne = questions;
    const auto goOnForOne = [&] {
        return questions-- > 0;
    };
    const auto proven = GroupReview::prove({{a, b}, {c, d}}, goOnForOne, &skipped);
    QVERIFY(enoughForOne > 0);
    QCOMPARE(proven.size(), 1);
    QCOMPARE(proven.first().first().path, a.path);
}

TWINSIFT_TEST_MAIN(tst_GroupReview)
#include "tst_GroupReview.moc"
