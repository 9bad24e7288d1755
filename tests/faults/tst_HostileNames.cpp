// SPDX-License-Identifier: MIT
#include "tests/faults/Scan.h"
#include "tests/faults/ScanProcess.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QFile>

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/** Scans files whose names are made to confuse, through the engine and through twinsift-scan. */
class tst_HostileNames final : public TestCase
{
    Q_OBJECT

private slots:
    void namesComeOutAsTheyAre_data();
    void namesComeOutAsTheyAre();
    void namesComeOutOfTheConsoleByteForByte_data();
    void namesComeOutOfTheConsoleByteForByte();
    void namesThatAreNoTextAreNotListed();
    void pathsBeyondTheLimitOfTheSystemAreLeftOut_data();
    void pathsBeyondTheLimitOfTheSystemAreLeftOut();

private:
    QByteArray root() const { return QFile::encodeName(path(QStringLiteral("tree"))); }
};

namespace
{
constexpr int maxPathBytes = 4096;

const QByteArrayList names = {
    "<h1>bold<br>.txt",
    "<img src=x onerror=alert(1)>",
    "&amp;&lt;&#0;",
    "line\nbreak.txt",
    "\n",
    "carriage\rreturn",
    "tab\tstop",
    "bell\a and \x01\x02\x1f\x7f",
    "\x1b[31mred\x1b[0m",
    "\u202egpj.exe", // right-to-left override
    "\xe2\x80\x8f\xe2\x80\x8e", // right-to-left and left-to-right marks
    "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d.txt",
    "\xef\xbb\xbf"
    "mark.txt", // a byte order mark
    "\xef\xbf\xbd.txt", // the replacement character itself
    "\xf0\x9f\x98\x80.png", // beyond 16 bits
    "\xc3\xa9", // one character, composed and not
    "e\xcc\x81",
    "%1 %2 %n %s",
    "$(touch x) `touch y` $HOME",
    "-rf",
    "--help",
    "*",
    "?",
    "[a-z]*",
    "a|b;c, d",
    "quote\"and'quote",
    "back\\slash\\",
    "file:",
    "http:example.txt",
    " ",
    " leading and trailing ",
    "ends in dots...",
    "~",
    QByteArray(255, 'n'),
    QByteArray("\xe2\x82\xac").repeated(85),
};

void require(bool done, const char *what)
{
    if (!done) {
        qFatal("cannot %s: %s", what, qPrintable(qt_error_string()));
    }
}

// Below the system's limit of a path every step is relative to an open folder.
int makeFolder(int parent, const QByteArray &name)
{
    require(::mkdirat(parent, name.constData(), 0700) == 0, "make a folder");
    const int folder = ::openat(parent, name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    require(folder >= 0, "open a folder");
    return folder;
}

void makeFile(int parent, const QByteArray &name, const QByteArray &content)
{
    const int file = ::openat(parent, name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    require(file >= 0
                && ::write(file, content.constData(), static_cast<size_t>(content.size()))
                    == content.size(),
            "write a file");
    ::close(file);
}

void makeTwins(const QByteArray &root)
{
    const int parent = ::open(root.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    require(parent >= 0, "open the root");
    for (const char *const side : {"left", "right"}) {
        const int folder = makeFolder(parent, side);
        for (int i = 0; i < names.size(); ++i) {
            makeFile(folder, names.at(i), QByteArray(100 + i, 'x'));
        }
        ::close(folder);
    }
    ::close(parent);
}

QSet<QSet<QString>> twins(const QByteArray &root)
{
    QSet<QSet<QString>> groups;
    for (const QByteArray &name : names) {
        groups.insert({QString::fromUtf8(root) + QStringLiteral("/left/")
                           + QString::fromUtf8('/' + name).mid(1),
                       QString::fromUtf8(root) + QStringLiteral("/right/")
                           + QString::fromUtf8('/' + name).mid(1)});
    }
    return groups;
}

// Removed step by step, because the toolkit works with whole paths.
void removeBelow(int parent, const QByteArrayList &chain, const QByteArrayList &files)
{
    QList<int> folders = {::dup(parent)};
    for (const QByteArray &name : chain) {
        folders.append(
            ::openat(folders.last(), name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    for (auto depth = folders.size() - 1; depth >= 0; --depth) {
        for (const QByteArray &file : files) {
            ::unlinkat(folders.at(depth), file.constData(), 0);
        }
        ::close(folders.at(depth));
        if (depth > 0) {
            require(::unlinkat(folders.at(depth - 1), chain.at(depth - 1).constData(), AT_REMOVEDIR)
                        == 0,
                    "remove a folder");
        }
    }
}
} // namespace

void tst_HostileNames::namesComeOutAsTheyAre_data()
{
    Scan::addModes();
}

void tst_HostileNames::namesComeOutAsTheyAre()
{
    // Each name is found in both of its folders, whatever it is made of, and never altered.
    QFETCH(int, mode);
    const TempTree tree(path(QStringLiteral("tree")));
    makeTwins(root());
    const auto groups = Scan::run({tree.root()}, Scan::profile(static_cast<Scan::Mode>(mode)));
    QCOMPARE(Scan::asSets(groups), twins(root()));
}

void tst_HostileNames::namesComeOutOfTheConsoleByteForByte_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("UTF-8") << QStringLiteral("C.UTF-8");
    QTest::newRow("plain") << QStringLiteral("C");
}

void tst_HostileNames::namesComeOutOfTheConsoleByteForByte()
{
    // With --print0 a name with line breaks, controls or marks arrives whole, in any locale.
    QFETCH(QString, locale);
    const TempTree tree(path(QStringLiteral("tree")));
    makeTwins(root());
    QProcessEnvironment variables;
    variables.insert(QStringLiteral("LC_ALL"), locale);
    const ScanProcess process({tree.root()}, variables);
    QCOMPARE(process.status, 0);
    QCOMPARE(process.messages, QByteArrayList());
    QSet<QSet<QByteArray>> found;
    for (const QByteArrayList &group : process.groups) {
        QCOMPARE(group.size(), 2);
        found.insert(QSet<QByteArray>(group.cbegin(), group.cend()));
    }
    QSet<QSet<QByteArray>> made;
    for (const QByteArray &name : names) {
        made.insert({root() + "/left/" + name, root() + "/right/" + name});
    }
    QCOMPARE(found, made);
}

void tst_HostileNames::namesThatAreNoTextAreNotListed()
{
    // A name that is no valid UTF-8 is passed over, file or folder, and all others are found; the console
    // names it.
    const TempTree tree(path(QStringLiteral("tree")));
    const int parent = ::open(root().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const QByteArrayList bad = {"\xff\xfe", "cut \xe2\x82", "long \xc0\xaf", "half \xed\xa0\x80"};
    const QByteArrayList files = bad + QByteArrayList{"good name"};
    for (const QByteArray &name : files) {
        makeFile(parent, name, "same");
    }
    const int badFolder = makeFolder(parent, "folder \x80");
    makeFile(badFolder, "inside", "same");
    const int good = makeFolder(parent, "good folder");
    makeFile(good, "inside", "same");
    ::close(badFolder);
    ::close(good);
    const QList<QStringList> expectedGroups = {
        {tree.path(QStringLiteral("good name")), tree.path(QStringLiteral("good folder/inside"))}};
    const auto groups = Scan::run({tree.root()}, Scan::profile(Scan::ByteByByte));
    const ScanProcess process({tree.root()}, QProcessEnvironment());
    // The toolkit, which removes the rest, does not see them either.
    removeBelow(parent, {"folder \x80"}, QByteArrayList{"inside"} + bad);
    ::close(parent);
    QCOMPARE(groups, expectedGroups);
    QCOMPARE(process.status, 1);
    QCOMPARE(process.messages.size(), bad.size() + 1);
    for (const QByteArray &name : bad + QByteArrayList{"folder \x80"}) {
        QVERIFY(process.messages.contains("twinsift-scan: " + root() + '/' + name
                                          + ": its name is no valid UTF-8"));
    }
    QCOMPARE(process.groups,
             (QList<QByteArrayList>{{root() + "/good name", root() + "/good folder/inside"}}));
}

void tst_HostileNames::pathsBeyondTheLimitOfTheSystemAreLeftOut_data()
{
    Scan::addModes();
}

void tst_HostileNames::pathsBeyondTheLimitOfTheSystemAreLeftOut()
{
    // Files too deep to be opened by their path are in no group; all above them are grouped. Only
    // their CRC is that of unreadable files, which they share with each other.
    QFETCH(int, mode);
    const TempTree tree(path(QStringLiteral("tree")));
    const QByteArrayList files = {"a", "b", QByteArray(250, 'x'), QByteArray(250, 'y')};
    QByteArrayList chain;
    QList<int> folders = {::open(root().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    QSet<QString> reachable;
    QSet<QString> unreachable;
    for (QByteArray deep = root(); deep.size() <= maxPathBytes + 1000;) {
        for (const QByteArray &name : files) {
            makeFile(folders.last(), name, "same content");
            const QByteArray file = deep + '/' + name;
            // The folder must be within the limit to be listed, the path to be opened.
            if (file.size() < maxPathBytes) {
                reachable.insert(QFile::decodeName(file));
            } else if (deep.size() < maxPathBytes) {
                unreachable.insert(QFile::decodeName(file));
            }
        }
        chain.append(QByteArray(200, static_cast<char>('A' + chain.size())));
        deep += '/' + chain.last();
        folders.append(makeFolder(folders.last(), chain.last()));
    }
    QVERIFY(unreachable.size() >= 2);
    if (mode == Scan::ByteByByte) {
        allowMessages(QRegularExpression(QStringLiteral("^File /\\S{4000,} cannot opened! .+$")));
    }
    const auto groups = Scan::run({tree.root()}, Scan::profile(static_cast<Scan::Mode>(mode)));
    removeBelow(folders.first(), chain, files);
    for (const int opened : std::as_const(folders)) {
        ::close(opened);
    }
    QSet<QSet<QString>> made = {reachable};
    if (mode == Scan::Crc) {
        made.insert(unreachable);
    }
    QVERIFY(Scan::asSets(groups) == made);
}

TWINSIFT_TEST_MAIN(tst_HostileNames)
#include "tst_HostileNames.moc"
