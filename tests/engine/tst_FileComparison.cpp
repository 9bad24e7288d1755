// SPDX-License-Identifier: MIT
#include "engine/FileComparison.h"
#include "engine/FileFinderEngine.h"
#include "tests/engine/LiteralGrouping.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QDir>
#include <QFile>

#include <memory>

using FileComparison::Verdict;

class tst_FileComparison final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void emptyFiles();
    void differenceInTheLastByte();
    void differences_data();
    void differences();
    void lengths_data();
    void lengths();
    void missingFirst();
    void missingSecond();
    void missingBoth();
    void placeMarkersInAPath();
    void unreadableFile();
    void otherThings();
    void failedRead();
    void fileWithoutItsContent();

private:
    bool isEqual(const QString &a, const QString &b) const;

    std::unique_ptr<TempTree> tree;
};

namespace
{
QByteArray contentOf(int bytes)
{
    QByteArray content(bytes, '\0');
    for (int i = 0; i < bytes; ++i) {
        content[i] = static_cast<char>((i * 7 + i / 256) & 0xFF);
    }
    return content;
}
} // namespace

void tst_FileComparison::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

// Through the engine, as it is called in the program.
bool tst_FileComparison::isEqual(const QString &a, const QString &b) const
{
    return FileFinderEngine(nullptr, nullptr, nullptr).compareByteByByte(a, b);
}

void tst_FileComparison::emptyFiles()
{
    // Two empty files are equal.
    QVERIFY(isEqual(tree->file(QStringLiteral("a")), tree->file(QStringLiteral("b"))));
}

void tst_FileComparison::differenceInTheLastByte()
{
    // A file of 300 bytes differs from a copy with another last byte.
    const QByteArray content = contentOf(300);
    QByteArray other = content;
    other[299] = static_cast<char>(other.at(299) ^ 1);
    const QString a = tree->file(QStringLiteral("a"), content);
    QVERIFY(!isEqual(a, tree->file(QStringLiteral("b"), other)));
    QVERIFY(isEqual(a, tree->file(QStringLiteral("c"), content)));
}

void tst_FileComparison::differences_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("place");
    for (const int bytes :
         {1, 255, 256, 257, 4095, 4096, 4097, 16000, 16384, 135168, 135169, 400000}) {
        for (const int place : {-1, 0, 255, 256, 4095, 4096, 131071, 135167, 135168, bytes - 1}) {
            if (place < bytes) {
                QTest::addRow("%d of %d", place, bytes) << bytes << place;
            }
        }
    }
}

void tst_FileComparison::differences()
{
    // One changed byte is seen wherever it stands; -1 stands for none.
    QFETCH(int, bytes);
    QFETCH(int, place);
    const QByteArray content = contentOf(bytes);
    QByteArray other = content;
    if (place >= 0) {
        other[place] = static_cast<char>(other.at(place) ^ 0x80);
    }
    const QString a = tree->file(QStringLiteral("a"), content);
    const QString b = tree->file(QStringLiteral("b"), other);
    QCOMPARE(isEqual(a, b), place < 0);
    QCOMPARE(isEqual(b, a), place < 0);
}

void tst_FileComparison::lengths_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    const QList<int> lengths = {0, 1, 255, 256, 257, 511, 512, 513, 1024, 16384, 16385};
    for (const int first : lengths) {
        for (const int second : lengths) {
            QTest::addRow("%d and %d", first, second) << first << second;
        }
    }
}

void tst_FileComparison::lengths()
{
    // Only the end of the first file is tested: a multiple of 256 bytes equals what it begins.
    QFETCH(int, first);
    QFETCH(int, second);
    const QByteArray content = contentOf(20000);
    const QString a = tree->file(QStringLiteral("a"), content.left(first));
    const QString b = tree->file(QStringLiteral("b"), content.left(second));
    const bool wanted = first == second || (first < second && first % 256 == 0);
    QCOMPARE(isEqual(a, b), wanted);
    QStringList unreadable;
    QCOMPARE(LiteralGrouping::compare(a, b, &unreadable), wanted);
    // With another first byte nothing is equal but the empty file, which has none.
    QByteArray other = content;
    other[0] = 'x';
    const QString c = tree->file(QStringLiteral("c"), other.left(second));
    QCOMPARE(isEqual(a, c), first == 0);
}

void tst_FileComparison::missingFirst()
{
    // The log names the first file, and the pair counts as different.
    const QString none = tree->path(QStringLiteral("none"));
    expectMessage(QtCriticalMsg,
                  QStringLiteral("File %1 cannot opened! No such file or directory").arg(none));
    QVERIFY(!isEqual(none, tree->file(QStringLiteral("b"))));
}

void tst_FileComparison::missingSecond()
{
    // The log names the second file, also when the first one is empty.
    const QString none = tree->path(QStringLiteral("none"));
    expectMessage(QtCriticalMsg,
                  QStringLiteral("File %1 cannot opened! No such file or directory").arg(none));
    QVERIFY(!isEqual(tree->file(QStringLiteral("a")), none));
}

void tst_FileComparison::missingBoth()
{
    // Of two missing files the first one alone is named.
    const QString a = tree->path(QStringLiteral("a"));
    expectMessage(QtCriticalMsg,
                  QStringLiteral("File %1 cannot opened! No such file or directory").arg(a));
    QVERIFY(!isEqual(a, tree->path(QStringLiteral("b"))));
}

void tst_FileComparison::placeMarkersInAPath()
{
    // A path with "%2" in it comes whole into the log.
    const QString none = tree->path(QStringLiteral("100%2%1"));
    expectMessage(QtCriticalMsg,
                  QStringLiteral("File ") + none
                      + QStringLiteral(" cannot opened! No such file or directory"));
    QVERIFY(!isEqual(none, none));
}

void tst_FileComparison::unreadableFile()
{
    // A file without the right to read it is named, even against itself.
    const QString a = tree->file(QStringLiteral("a"));
    tree->setMode(QStringLiteral("a"), 0);
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("The super-user reads every file here.");
    }
    expectMessage(QtCriticalMsg, QStringLiteral("File %1 cannot opened! Permission denied").arg(a));
    QVERIFY(!isEqual(a, a));
}

void tst_FileComparison::otherThings()
{
    // A FIFO and a folder are never waited for and never equal.
    const QString fifo = tree->fifo(QStringLiteral("fifo"));
    expectMessage(QtCriticalMsg,
                  QStringLiteral("File %1 cannot opened! not a regular file").arg(fifo));
    QVERIFY(!isEqual(fifo, fifo));
    expectMessage(
        QtCriticalMsg,
        QStringLiteral("File %1 cannot opened! file to open is a directory").arg(tree->root()));
    QVERIFY(!isEqual(tree->root(), tree->root()));
}

void tst_FileComparison::failedRead()
{
    // A read that fails ends the comparison, as different, with the line of that file.
    QString broken;
    const QStringList candidates = {QStringLiteral("phys_port_id"),
                                    QStringLiteral("phys_switch_id"),
                                    QStringLiteral("phys_port_name"),
                                    QStringLiteral("duplex"),
                                    QStringLiteral("speed")};
    for (const QString &name : candidates) {
        QFile file(QStringLiteral("/sys/class/net/lo/") + name);
        if (broken.isEmpty() && file.open(QIODevice::ReadOnly) && file.size() > 0
            && file.read(1).isEmpty()) {
            broken = file.fileName();
        }
    }
    if (broken.isEmpty()) {
        QSKIP("This machine has no file with a size that opens and cannot be read.");
    }
    const QString whole = tree->file(QStringLiteral("b"), QByteArray(4096, 'x'));
    QCOMPARE(QFileInfo(broken).size(), QFileInfo(whole).size());
    const QRegularExpression line(
        QStringLiteral("^File %1 cannot opened! .+").arg(QRegularExpression::escape(broken)));
    expectMessage(QtCriticalMsg, line);
    QVERIFY(!isEqual(broken, broken));
    expectMessage(QtCriticalMsg, line);
    QVERIFY(!isEqual(whole, broken));
    expectMessage(QtCriticalMsg, line);
    QVERIFY(!isEqual(broken, whole));
}

void tst_FileComparison::fileWithoutItsContent()
{
    // A file that ends before its size does is equal to nothing, not even to itself.
    const QString file = QStringLiteral("/sys/kernel/mm/transparent_hugepage/enabled");
    const QString other = QStringLiteral("/sys/class/net/lo/mtu");
    const QString present = QFile::exists(file) ? file : other;
    QFile reference(present);
    if (!reference.open(QIODevice::ReadOnly) || reference.readAll().size() >= reference.size()) {
        QSKIP("This machine has no file that ends before its size does.");
    }
    QCOMPARE(FileComparison::compare(present, present), Verdict::Failed);
    QVERIFY(!isEqual(present, present));
}

TWINSIFT_TEST_MAIN(tst_FileComparison)
#include "tst_FileComparison.moc"
