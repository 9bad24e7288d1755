// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"
#include "ui/filetypes/MaskEntry.h"

class tst_MaskEntry final : public TestCase
{
    Q_OBJECT

private slots:
    void masks_data();
    void masks();
    void fromNameAndMasks_data();
    void fromNameAndMasks();
    void lineOfEntries_data();
    void lineOfEntries();
    void entriesOfLine_data();
    void entriesOfLine();
    void masksOfLineTakesWellFormedEntriesInOrder();
};

void tst_MaskEntry::masks_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QStringList>("masks");
    QTest::newRow("two masks") << QStringLiteral("Text Files|*.TXT;*.RTF")
                               << QStringList{QStringLiteral("*.TXT"), QStringLiteral("*.RTF")};
    QTest::newRow("line feed") << QStringLiteral("A|*.x;*.y\n")
                               << QStringList{QStringLiteral("*.x"), QStringLiteral("*.y\n")};
    QTest::newRow("semicolon at the end")
        << QStringLiteral("A|*.x;") << QStringList{QStringLiteral("*.x"), QString()};
    QTest::newRow("no masks") << QStringLiteral("A|") << QStringList{QString()};
    QTest::newRow("no name") << QStringLiteral("|*.x") << QStringList{QStringLiteral("*.x")};
    QTest::newRow("no bar") << QStringLiteral("*.x") << QStringList();
    QTest::newRow("two bars") << QStringLiteral("A|*.xB|*.y") << QStringList();
    QTest::newRow("nothing") << QString() << QStringList();
}

void tst_MaskEntry::masks()
{
    // The masks stand behind the one bar, empty ones kept; without exactly one bar there are none.
    QFETCH(const QString, entry);
    QFETCH(const QStringList, masks);
    QCOMPARE(MaskEntry::masks(entry), masks);
}

void tst_MaskEntry::fromNameAndMasks_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("masks");
    QTest::addColumn<QString>("entry");
    QTest::newRow("plain") << QStringLiteral("A") << QStringLiteral("*.x;*.y")
                           << QStringLiteral("A|*.x;*.y");
    QTest::newRow("first marker in the name")
        << QStringLiteral("A%1B") << QStringLiteral("*.x") << QStringLiteral("A*.xB|%2");
    QTest::newRow("second marker in the name")
        << QStringLiteral("A%2B") << QStringLiteral("*.x") << QStringLiteral("A*.xB|*.x");
    QTest::newRow("marker in the masks")
        << QStringLiteral("A") << QStringLiteral("%1") << QStringLiteral("A|%1");
    QTest::newRow("spaces and bars")
        << QStringLiteral(" A|B ") << QStringLiteral(" * ") << QStringLiteral(" A|B | * ");
}

void tst_MaskEntry::fromNameAndMasks()
{
    // Name and masks are taken as typed; markers in the name receive the masks.
    QFETCH(const QString, name);
    QFETCH(const QString, masks);
    QFETCH(const QString, entry);
    QCOMPARE(MaskEntry::fromNameAndMasks(name, masks), entry);
}

void tst_MaskEntry::lineOfEntries_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QString>("line");
    QTest::newRow("none") << QStringList() << QString();
    QTest::newRow("one") << QStringList{QStringLiteral("A|*.x\n")} << QStringLiteral("A|*.x\n");
    QTest::newRow("two") << QStringList{QStringLiteral("A|*.x"), QStringLiteral("B|*.y")}
                         << QStringLiteral("A|*.x, B|*.y");
    QTest::newRow("empty ones") << QStringList{QString(),
                                               QStringLiteral("A|*.x"),
                                               QString(),
                                               QStringLiteral("B|*.y"),
                                               QString()}
                                << QStringLiteral("A|*.x, B|*.y");
}

void tst_MaskEntry::lineOfEntries()
{
    // Entries stand in a line with comma and space between them; empty ones leave no trace.
    QFETCH(const QStringList, entries);
    QFETCH(const QString, line);
    QCOMPARE(MaskEntry::toLine(entries), line);
}

void tst_MaskEntry::entriesOfLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("nothing") << QString() << QStringList{QString()};
    QTest::newRow("two") << QStringLiteral("A|*.x\n, B|*.y")
                         << QStringList{QStringLiteral("A|*.x\n"), QStringLiteral("B|*.y")};
    QTest::newRow("comma without space")
        << QStringLiteral("A|*.x,B") << QStringList{QStringLiteral("A|*.x,B")};
    QTest::newRow("empty parts") << QStringLiteral(
        ", A, , ") << QStringList{QString(), QStringLiteral("A"), QString(), QString()};
}

void tst_MaskEntry::entriesOfLine()
{
    // A line falls apart at comma and space, empty parts kept.
    QFETCH(const QString, line);
    QFETCH(const QStringList, entries);
    QCOMPARE(MaskEntry::fromLine(line), entries);
}

void tst_MaskEntry::masksOfLineTakesWellFormedEntriesInOrder()
{
    // All masks of a line come in its order; malformed entries between them are passed over.
    QCOMPARE(MaskEntry::masksOfLine(QStringLiteral("A|*.a;*.b\n, no bar, P|*.pQ|*.q, , B|*.c;")),
             (QStringList{QStringLiteral("*.a"),
                          QStringLiteral("*.b\n"),
                          QStringLiteral("*.c"),
                          QString()}));
}

TWINSIFT_TEST_MAIN(tst_MaskEntry)
#include "tst_MaskEntry.moc"
