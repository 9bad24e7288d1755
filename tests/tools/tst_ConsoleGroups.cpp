// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/tools/Console.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>

#include <memory>

#include <unistd.h>

/** What twinsift-scan prints, and in which order. */
class tst_ConsoleGroups final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void groupsOfOneContent();
    void joinedGroups();
    void removingAllButTheFirst_data();
    void removingAllButTheFirst();
    void linksToOneFile();
    void hardLinks();
    void equalChecksums();
    void order();
    void sameBytesOnEachRun();
    void sort_data();
    void sort();
    void omitFirst();
    void separator();
    void summary();
    void walkOptions();

private:
    QByteArray file(const QByteArray &name, const QByteArray &content) const;
    QByteArray scan(const QStringList &options = QStringList()) const;
    static QByteArray text(const QList<QByteArrayList> &groups);

    std::unique_ptr<TempTree> tree;
};

namespace
{
// Two contents of one size and one CRC-32.
const QByteArray oneCrc("plumless");
const QByteArray sameCrc("buckeroo");

const QString joined = QStringLiteral("--joined");
} // namespace

void tst_ConsoleGroups::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

QByteArray tst_ConsoleGroups::file(const QByteArray &name, const QByteArray &content) const
{
    return QFile::encodeName(tree->file(QString::fromUtf8(name), content));
}

// Nothing, and a failed check, unless it ended well and in silence.
QByteArray tst_ConsoleGroups::scan(const QStringList &options) const
{
    const Console::Result result = Console::run(options + QStringList(tree->root()));
    if (result.status != 0 || !result.error.isEmpty()) {
        return "status " + QByteArray::number(result.status) + ": " + result.error;
    }
    return result.output;
}

QByteArray tst_ConsoleGroups::text(const QList<QByteArrayList> &groups)
{
    QByteArray text;
    for (const QByteArrayList &group : groups) {
        text += group.join('\n') + "\n\n";
    }
    return text;
}

void tst_ConsoleGroups::groupsOfOneContent()
{
    // Files of one size stand in groups of one content each.
    const QByteArray a = file("a", "one");
    const QByteArray b = file("b", "two");
    const QByteArray c = file("c", "one");
    const QByteArray d = file("d", "two");
    file("e", "six");
    QCOMPARE(scan(), text({{a, c}, {b, d}}));
}

void tst_ConsoleGroups::joinedGroups()
{
    // As the window shows them they stand in one group, without the first one of a later content.
    const QByteArray a = file("a", "one");
    file("b", "two");
    const QByteArray c = file("c", "one");
    const QByteArray d = file("d", "two");
    QCOMPARE(scan({joined}), text({{a, c, d}}));
}

void tst_ConsoleGroups::removingAllButTheFirst_data()
{
    QTest::addColumn<QStringList>("mode");
    QTest::newRow("bytes") << QStringList();
    for (const char *mode : {"md5", "sha1", "crc"}) {
        QTest::newRow(mode) << QStringList{QStringLiteral("--advanced"), QLatin1String(mode)};
    }
}

void tst_ConsoleGroups::removingAllButTheFirst()
{
    // Who removes all that --omit-first prints has each content left once, whatever links, equal
    // checksums and equal sizes there are.
    QFETCH(QStringList, mode);
    const QByteArrayList contents = {"one", "two", "", oneCrc, sameCrc, QByteArray(300000, 'x')};
    int number = 0;
    for (const QByteArray &content : contents) {
        for (const char *place : {"left", "middle/deep", "right"}) {
            file(place + QByteArray("/") + QByteArray::number(++number), content);
        }
    }
    tree->link(QStringLiteral("another left"), QStringLiteral("left"));
    tree->link(QStringLiteral("middle/up"), QStringLiteral("../right"));
    QCOMPARE(::link(QFile::encodeName(tree->path(QStringLiteral("left/1"))).constData(),
                    QFile::encodeName(tree->path(QStringLiteral("right/linked"))).constData()),
             0);
    const QByteArray output = scan(mode
                                   + QStringList{QStringLiteral("--omit-first"),
                                                 QStringLiteral("--print0"),
                                                 QStringLiteral("--separator=none")});
    QByteArrayList names = output.split('\0');
    QVERIFY(names.takeLast().isEmpty());
    for (const QByteArray &name : names) {
        QVERIFY2(QFile::remove(QFile::decodeName(name)), name.constData());
    }
    QByteArrayList left;
    for (const char *place : {"left", "middle/deep", "right"}) {
        const QDir dir(tree->path(QLatin1String(place)));
        for (const QString &name : dir.entryList(QDir::Files)) {
            left.append(TempTree::read(dir.filePath(name)));
        }
    }
    QCOMPARE(left.size(), contents.size());
    QCOMPARE(QSet<QByteArray>(left.cbegin(), left.cend()),
             QSet<QByteArray>(contents.cbegin(), contents.cend()));
}

void tst_ConsoleGroups::linksToOneFile()
{
    // A file that links to its folder show on several paths is no copy of itself.
    const QByteArray a = file("a/x", "same");
    tree->link(QStringLiteral("b"), QStringLiteral("a"));
    QCOMPARE(scan(), QByteArray());
    QCOMPARE(scan({joined}), text({{a, QByteArray(a).replace("/a/x", "/b/x")}}));
    const QByteArray c = file("c", "same");
    QCOMPARE(scan(), text({{c, a}}));
}

void tst_ConsoleGroups::hardLinks()
{
    // Names of one file are files of their own, as many as there are, and free nothing.
    const QByteArray a = file("a/x", "same");
    const QByteArray c = QFile::encodeName(tree->folder(QStringLiteral("c")) + QLatin1String("/y"));
    QCOMPARE(::link(a.constData(), c.constData()), 0);
    tree->link(QStringLiteral("b"), QStringLiteral("a"));
    QCOMPARE(scan(), text({{a, c}}));
    QVERIFY(scan({QStringLiteral("--json")}).contains("\"freeableBytes\":0,"));
    file("z", "same");
    QVERIFY(scan({QStringLiteral("--json")}).contains("\"freeableBytes\":4,"));
}

void tst_ConsoleGroups::equalChecksums()
{
    // Files of one CRC are compared as well; the window groups them.
    const QByteArray a = file("a", oneCrc);
    const QByteArray b = file("b", sameCrc);
    const QByteArray c = file("c", sameCrc);
    const QStringList crc = {QStringLiteral("--advanced"), QStringLiteral("crc")};
    QCOMPARE(scan(crc), text({{b, c}}));
    QCOMPARE(scan(crc + QStringList(joined)), text({{a, b, c}}));
}

void tst_ConsoleGroups::order()
{
    // Groups and their files come in the order of the walk: that of the folders, and in each first
    // its files by name, then its folders.
    const QByteArray one = file("z/first", "large content");
    const QByteArray two = file("a/second", "large content");
    const QByteArray three = file("a/another", "x");
    const QByteArray four = file("a/0/below", "x");
    const Console::Result result =
        Console::run({tree->path(QStringLiteral("z")), tree->path(QStringLiteral("a"))});
    QCOMPARE(result.output, text({{one, two}, {three, four}}));
}

void tst_ConsoleGroups::sameBytesOnEachRun()
{
    // Two runs over a tree of many groups print the same bytes, in every form.
    for (int i = 0; i < 300; ++i) {
        file("tree " + QByteArray::number(i % 7) + '/' + QByteArray::number(i),
             QByteArray::number(i % 90));
    }
    for (const char *form : {"--print0", "--csv", "--json"}) {
        for (const char *mode : {"--same-extension", "--advanced=md5", "--advanced=crc"}) {
            const QStringList options = {QLatin1String(form), QLatin1String(mode)};
            const QByteArray first = scan(options);
            QVERIFY(first.size() > 300);
            QCOMPARE(scan(options), first);
        }
    }
}

void tst_ConsoleGroups::sort_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("groups");
    const auto row = [](const char *order, const char *groups) {
        QTest::newRow(order) << QStringList{QStringLiteral("--sort"), QLatin1String(order)}
                             << QByteArray(groups);
    };
    QTest::newRow("found") << QStringList() << QByteArray("z/1 z/2|z/3 z/4 a/1|a/2 a/3");
    row("path", "a/2 a/3|z/1 z/2|z/3 z/4 a/1");
    row("size", "z/3 z/4 a/1|a/2 a/3|z/1 z/2");
    row("count", "z/3 z/4 a/1|z/1 z/2|a/2 a/3");
}

void tst_ConsoleGroups::sort()
{
    // Groups can be sorted; those that agree, and the files of each, stay as they were found.
    QFETCH(QStringList, options);
    QFETCH(QByteArray, groups);
    for (const char *name : {"z/1", "z/2"}) {
        file(name, "1");
    }
    for (const char *name : {"z/3", "z/4", "a/1"}) {
        file(name, "four");
    }
    for (const char *name : {"a/2", "a/3"}) {
        file(name, "22");
    }
    const QStringList folders = {tree->path(QStringLiteral("z")), tree->path(QStringLiteral("a"))};
    QByteArray output = Console::run(options + folders).output;
    output.replace(QByteArray(QFile::encodeName(tree->root()) + '/'), "");
    QCOMPARE(output.trimmed().replace("\n\n", "|").replace('\n', ' '), groups);
}

void tst_ConsoleGroups::omitFirst()
{
    // Without the first file of each group the others come as before.
    file("a", "one");
    const QByteArray b = file("b", "one");
    const QByteArray c = file("c", "one");
    file("d", "two");
    const QByteArray e = file("e", "two");
    QCOMPARE(scan({QStringLiteral("-f")}), text({{b, c}, {e}}));
    QCOMPARE(scan({QStringLiteral("--omit-first")}), text({{b, c}, {e}}));
}

void tst_ConsoleGroups::separator()
{
    // Without a separator nothing stands behind a group, so no name is empty.
    const QByteArray a = file("a", "one");
    const QByteArray b = file("b\nc", "one");
    QCOMPARE(scan({QStringLiteral("--separator=none")}), a + '\n' + b + '\n');
    QCOMPARE(scan({QStringLiteral("--separator=blank")}), a + '\n' + b + "\n\n");
    QCOMPARE(scan({QStringLiteral("-0"), QStringLiteral("--separator=none")}), a + '\0' + b + '\0');
    QCOMPARE(scan({QStringLiteral("-0")}), a + '\0' + b + '\0' + '\0');
}

void tst_ConsoleGroups::summary()
{
    // The figures come on standard error: files, groups, what could go, and the time.
    file("a", "four");
    file("b", "four");
    file("c", "four");
    file("d", "1");
    file("e", "1");
    file("f", "single");
    const Console::Result result = Console::run({QStringLiteral("--summary"), tree->root()});
    QCOMPARE(result.status, 0);
    QVERIFY2(QRegularExpression(QStringLiteral("^files looked at +6\nskipped +0\ngroups +2\n"
                                               "redundant files +3\ncould be freed +9 bytes\n"
                                               "seconds +\\d+\\.\\d{3}\n$"))
                 .match(QString::fromUtf8(result.error))
                 .hasMatch(),
             result.error.constData());
}

void tst_ConsoleGroups::walkOptions()
{
    // What is hidden, behind links or of other sizes is taken as the options say.
    const QByteArray a = file("a", "content");
    const QByteArray hidden = file(".hidden/b", "content");
    const QByteArray linked = QFile::encodeName(path(QStringLiteral("far/c")));
    TempTree(path(QStringLiteral("far"))).file(QStringLiteral("c"), "content");
    tree->link(QStringLiteral("link"), path(QStringLiteral("far")));
    const QByteArray c = QFile::encodeName(tree->path(QStringLiteral("link/c")));
    const QString noLinks = QStringLiteral("--no-links");
    QCOMPARE(scan(), text({{a, c}}));
    QCOMPARE(scan({QStringLiteral("--hidden")}), text({{a, hidden, c}}));
    QCOMPARE(scan({noLinks}), QByteArray());
    QCOMPARE(scan({noLinks, QStringLiteral("--hidden")}), text({{a, hidden}}));
    QCOMPARE(scan({QStringLiteral("--min-size=7"), QStringLiteral("--max-size=7")}),
             text({{a, c}}));
    QCOMPARE(scan({QStringLiteral("--min-size=8")}), QByteArray());
    const Console::Result result =
        Console::run({QStringLiteral("--files-from=-")}, tree->root(), "../far\n.\n");
    QCOMPARE(result.error, QByteArray());
    QCOMPARE(result.output, text({{linked, a}}));
}

TWINSIFT_TEST_MAIN(tst_ConsoleGroups)
#include "tst_ConsoleGroups.moc"
