// SPDX-License-Identifier: MIT
#include "engine/FileMasks.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QDir>
#include <QDirIterator>

class tst_FileMasks final : public TestCase
{
    Q_OBJECT

private slots:
    void likeTheToolkit_data();
    void likeTheToolkit();
    void everyFile();
    void maskOfEveryFile();
    void malformedMask();
};

void tst_FileMasks::likeTheToolkit_data()
{
    QTest::addColumn<QStringList>("masks");
    const QList<const char *> rows = {
        "*.jpg",   "*.JPG",      "*.jpg;*.PNG", "*",         "?",      "*.?",
        "a*",      "*.tar.gz",   "*.gz",        "",          "*.jpg;", "[ab]*",
        "*[0-9]*", "photo.jpg",  "*photo*",     "**",        "*.",     "*.j[pq]g",
        "\\*",     "*\\*",       "(a|b)",       "*(*",       "*.c++",  "*$",
        "*^*",     "*.\xC3\x84", "*.\xC3\xA4",  "*\xC3\x9F", "*.k",    "*.K",
        "* *",     "*\n*",       "*.s",         ".*",        "*..*",   "[!a]*",
        "[^a]*",   "[",          "*.jp",        "jpg",       "*{a,b}", "*]*",
        "*_x",     "*-x"};
    for (const char *row : rows) {
        QTest::newRow(*row == '\0' ? "empty" : row)
            << QString::fromUtf8(row).split(QLatin1Char(';'));
    }
}

void tst_FileMasks::likeTheToolkit()
{
    // The masks take exactly the files that a listing of the toolkit takes.
    QFETCH(QStringList, masks);
    const TempTree tree(path(QStringLiteral("tree")));
    // It is the listing of the toolkit that complains about the malformed one.
    allowMessages(QRegularExpression(QStringLiteral("called on an invalid QRegularExpression")));
    const QList<const char *> names = {"photo.jpg",
                                       "PHOTO.JPG",
                                       "Photo.Jpg",
                                       "a.png",
                                       "a",
                                       "B",
                                       "noextension",
                                       "x.tar.gz",
                                       "x.gz",
                                       "a.",
                                       "1.c",
                                       "*",
                                       "\\",
                                       "\\a",
                                       "a*",
                                       "(a|b)",
                                       "(",
                                       "x.c++",
                                       "$",
                                       "^",
                                       "x.\xC3\x84",
                                       "x.\xC3\xA4",
                                       "\xC3\x9F",
                                       "\xE1\xBA\x9E",
                                       "x.\xE2\x84\xAA",
                                       "x.k",
                                       "x.K",
                                       "x.\xC5\xBF",
                                       "x.s",
                                       "two words",
                                       "two\nlines",
                                       "a..b",
                                       "[",
                                       "]",
                                       "x.jpeg",
                                       "jpg",
                                       "photo.jqg",
                                       "{a,b}",
                                       "a_x",
                                       "a-x",
                                       "A_X"};
    for (const char *name : names) {
        tree.file(QString::fromUtf8(name));
    }
    const QDir dir(tree.root());
    const FileMasks fileMasks(masks);
    QStringList taken;
    for (const QString &name : dir.entryList(QDir::Files)) {
        if (fileMasks.match(name)) {
            taken.append(name);
        }
    }
    QStringList listed = dir.entryList(masks, QDir::Files);
    // The toolkit leaves the order of names that differ in case alone to chance.
    taken.sort();
    listed.sort();
    QCOMPARE(taken, listed);
}

void tst_FileMasks::everyFile()
{
    // Without a mask every name matches.
    const FileMasks masks((QStringList()));
    QVERIFY(masks.match(QStringLiteral("a.b")));
    QVERIFY(masks.match(QStringLiteral("a")));
}

void tst_FileMasks::maskOfEveryFile()
{
    // The mask "*.*" takes names without a dot as well, wherever it stands in the list.
    const FileMasks masks({QStringLiteral("*.jpg"), QStringLiteral("*.*")});
    QVERIFY(masks.match(QStringLiteral("a.b")));
    QVERIFY(masks.match(QStringLiteral("noextension")));
}

void tst_FileMasks::malformedMask()
{
    // A malformed mask takes nothing, without a word in the log, and leaves the others alone.
    QVERIFY(!FileMasks({QStringLiteral("[")}).match(QStringLiteral("[")));
    const FileMasks masks({QStringLiteral("["), QStringLiteral("*.a"), QStringLiteral("b*")});
    QVERIFY(masks.match(QStringLiteral("x.a")));
    QVERIFY(masks.match(QStringLiteral("bc")));
    QVERIFY(!masks.match(QStringLiteral("[")));
}

TWINSIFT_TEST_MAIN(tst_FileMasks)
#include "tst_FileMasks.moc"
