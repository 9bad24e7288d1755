// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tools/ScanArguments.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>

#include <limits>
#include <memory>

class tst_ScanArguments final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void defaults();
    void allOptions();
    void checksums_data();
    void checksums();
    void masks();
    void sizes_data();
    void sizes();
    void shortOptions();
    void folders();
    void foldersInsideEachOther();
    void foldersThatAreReachedAnotherWay();
    void listOfFolders();
    void refused_data();
    void refused();
    void namesOfTheToolkitsResources_data();
    void namesOfTheToolkitsResources();
    void removedCurrentFolder();
    void helpAndVersion();

private:
    static ScanArguments parse(const QStringList &arguments);

    std::unique_ptr<TempTree> tree;
};

void tst_ScanArguments::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

ScanArguments tst_ScanArguments::parse(const QStringList &arguments)
{
    return ScanArguments::parse(QStringList(QStringLiteral("twinsift-scan")) + arguments);
}

void tst_ScanArguments::defaults()
{
    // With folders alone the scan has the options of a new profile.
    const ScanArguments arguments = parse({tree->root()});
    QCOMPARE(arguments.action, ScanArguments::Action::Scan);
    QCOMPARE(arguments.error, QString());
    QCOMPARE(arguments.folders, QStringList(tree->root()));
    QVERIFY(arguments.profile.matchByteByByte);
    QVERIFY(!arguments.profile.advancedMatch);
    QVERIFY(!arguments.profile.sameFileName);
    QVERIFY(!arguments.profile.sameFileExtension);
    QVERIFY(!arguments.profile.sameDateOfCreation);
    QVERIFY(arguments.profile.includeMasks.isEmpty());
    QVERIFY(arguments.profile.excludeMasks.isEmpty());
    QVERIFY(!arguments.profile.minSizeEnabled);
    QVERIFY(!arguments.profile.maxSizeEnabled);
    QVERIFY(arguments.walkOptions.followsLinks);
    QVERIFY(!arguments.walkOptions.takesHidden);
    QVERIFY(!arguments.walkOptions.staysOnFileSystem);
    QCOMPARE(arguments.walkOptions.minBytes, 0);
    QCOMPARE(arguments.walkOptions.maxBytes, std::numeric_limits<qint64>::max());
    QCOMPARE(arguments.format, ScanArguments::Format::Text);
    QCOMPARE(arguments.order, ScanArguments::Order::Found);
    QVERIFY(!arguments.isJoined);
    QVERIFY(!arguments.omitsFirst);
    QVERIFY(!arguments.print0);
    QVERIFY(arguments.separatesGroups);
    QVERIFY(!arguments.printsSummary);
    QVERIFY(!arguments.isQuiet);
    QVERIFY(arguments.printsMessages);
    QVERIFY(!arguments.printsEvents);
    QCOMPARE(arguments.stopAfter, 0);
}

void tst_ScanArguments::allOptions()
{
    // Every option reaches its place, also behind the folders and with an equals sign.
    const ScanArguments arguments = parse({QStringLiteral("--same-name"),
                                           tree->root(),
                                           QStringLiteral("--same-extension"),
                                           QStringLiteral("--same-date"),
                                           QStringLiteral("--include=*.a;*.b"),
                                           QStringLiteral("--exclude"),
                                           QStringLiteral("*.c"),
                                           QStringLiteral("--min-kb"),
                                           QStringLiteral("3"),
                                           QStringLiteral("--max-kb"),
                                           QStringLiteral("1099511627776"),
                                           QStringLiteral("--min-size=4"),
                                           QStringLiteral("--max-size"),
                                           QStringLiteral("5"),
                                           QStringLiteral("--hidden"),
                                           QStringLiteral("--no-links"),
                                           QStringLiteral("--one-file-system"),
                                           QStringLiteral("--omit-first"),
                                           QStringLiteral("--sort=count"),
                                           QStringLiteral("--print0"),
                                           QStringLiteral("--separator"),
                                           QStringLiteral("none"),
                                           QStringLiteral("--summary"),
                                           QStringLiteral("--quiet"),
                                           QStringLiteral("--no-messages"),
                                           QStringLiteral("--events"),
                                           QStringLiteral("--stop-after"),
                                           QStringLiteral("7")});
    QCOMPARE(arguments.action, ScanArguments::Action::Scan);
    QVERIFY(arguments.profile.sameFileName);
    QVERIFY(arguments.profile.sameFileExtension);
    QVERIFY(arguments.profile.sameDateOfCreation);
    QCOMPARE(arguments.profile.includeMasks,
             QStringList({QStringLiteral("*.a"), QStringLiteral("*.b")}));
    QCOMPARE(arguments.profile.excludeMasks, QStringList(QStringLiteral("*.c")));
    QVERIFY(arguments.profile.minSizeEnabled);
    QCOMPARE(arguments.profile.minSizeInKbytes, 3);
    QVERIFY(arguments.profile.maxSizeEnabled);
    QCOMPARE(arguments.profile.maxSizeInKbytes, Q_INT64_C(1) << 40);
    QCOMPARE(arguments.walkOptions.minBytes, 4);
    QCOMPARE(arguments.walkOptions.maxBytes, 5);
    QVERIFY(arguments.walkOptions.takesHidden);
    QVERIFY(!arguments.walkOptions.followsLinks);
    QVERIFY(arguments.walkOptions.staysOnFileSystem);
    QVERIFY(arguments.omitsFirst);
    QCOMPARE(arguments.order, ScanArguments::Order::Count);
    QVERIFY(arguments.print0);
    QVERIFY(!arguments.separatesGroups);
    QVERIFY(arguments.printsSummary);
    QVERIFY(arguments.isQuiet);
    QVERIFY(!arguments.printsMessages);
    QVERIFY(arguments.printsEvents);
    QCOMPARE(arguments.stopAfter, 7);
    QCOMPARE(parse({QStringLiteral("--json"), tree->root()}).format, ScanArguments::Format::Json);
    QCOMPARE(parse({QStringLiteral("--csv"), tree->root()}).format, ScanArguments::Format::Csv);
    QVERIFY(parse({QStringLiteral("--joined"), tree->root()}).isJoined);
    const auto order = [this](const char *name) {
        return parse({QStringLiteral("--sort"), QLatin1String(name), tree->root()}).order;
    };
    QCOMPARE(order("path"), ScanArguments::Order::Path);
    QCOMPARE(order("size"), ScanArguments::Order::Size);
}

void tst_ScanArguments::sizes_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("bytes") << QStringLiteral("1000") << qint64(1000);
    QTest::newRow("nothing") << QStringLiteral("0") << qint64(0);
    QTest::newRow("K") << QStringLiteral("1K") << qint64(1024);
    QTest::newRow("small k") << QStringLiteral("3k") << qint64(3072);
    QTest::newRow("M") << QStringLiteral("10M") << qint64(10485760);
    QTest::newRow("G") << QStringLiteral("2G") << qint64(2147483648);
    QTest::newRow("T") << QStringLiteral("1T") << (Q_INT64_C(1) << 40);
    QTest::newRow("largest") << QStringLiteral("9223372036854775807")
                             << std::numeric_limits<qint64>::max();
    QTest::newRow("most of T") << QStringLiteral("8388607T") << (Q_INT64_C(8388607) << 40);
}

void tst_ScanArguments::sizes()
{
    // Sizes are bytes; K, M, G and T are powers of 1024.
    QFETCH(QString, size);
    QFETCH(qint64, bytes);
    const ScanArguments arguments = parse(
        {QStringLiteral("--min-size"), size, QStringLiteral("--max-size=") + size, tree->root()});
    QCOMPARE(arguments.error, QString());
    QCOMPARE(arguments.walkOptions.minBytes, bytes);
    QCOMPARE(arguments.walkOptions.maxBytes, bytes);
    QVERIFY(!arguments.profile.minSizeEnabled);
    QVERIFY(!arguments.profile.maxSizeEnabled);
}

void tst_ScanArguments::shortOptions()
{
    // The letters stand for their words, also several behind one dash.
    QCOMPARE(parse({QStringLiteral("-h")}).action, ScanArguments::Action::ShowHelp);
    const ScanArguments arguments = parse({QStringLiteral("-0fq"), tree->root()});
    QCOMPARE(arguments.action, ScanArguments::Action::Scan);
    QVERIFY(arguments.print0);
    QVERIFY(arguments.omitsFirst);
    QVERIFY(arguments.isQuiet);
}

void tst_ScanArguments::checksums_data()
{
    QTest::addColumn<QString>("checksum");
    QTest::addColumn<bool>("md5");
    QTest::addColumn<bool>("sha1");
    QTest::addColumn<bool>("crc");
    QTest::newRow("md5") << QStringLiteral("md5") << true << false << false;
    QTest::newRow("sha1") << QStringLiteral("sha1") << false << true << false;
    QTest::newRow("crc") << QStringLiteral("crc") << false << false << true;
}

void tst_ScanArguments::checksums()
{
    // A checksum chooses the Advanced mode and itself alone.
    QFETCH(QString, checksum);
    QFETCH(bool, md5);
    QFETCH(bool, sha1);
    QFETCH(bool, crc);
    const ScanProfile profile =
        parse({QStringLiteral("--advanced"), checksum, tree->root()}).profile;
    QVERIFY(profile.advancedMatch);
    QVERIFY(!profile.matchByteByByte);
    QCOMPARE(profile.md5Hash, md5);
    QCOMPARE(profile.sha1Hash, sha1);
    QCOMPARE(profile.crcHash, crc);
}

void tst_ScanArguments::masks()
{
    // Empty pieces of the masks are kept.
    const ScanProfile profile = parse({QStringLiteral("--include"),
                                       QStringLiteral("*.a;;*.b;"),
                                       QStringLiteral("--exclude="),
                                       tree->root()})
                                    .profile;
    QCOMPARE(profile.includeMasks,
             QStringList({QStringLiteral("*.a"), QString(), QStringLiteral("*.b"), QString()}));
    QCOMPARE(profile.excludeMasks, QStringList(QString()));
}

void tst_ScanArguments::folders()
{
    // Folders become absolute and clean, in their order, each one once.
    const QString a = tree->folder(QStringLiteral("a"));
    const QString b = tree->folder(QStringLiteral("b"));
    const QString link = tree->link(QStringLiteral("link"), QStringLiteral("a"));
    QVERIFY(QDir::setCurrent(tree->root()));
    const ScanArguments arguments = parse({QStringLiteral("b/"),
                                           QStringLiteral("./a/../a"),
                                           b,
                                           QStringLiteral("link"),
                                           QStringLiteral("--"),
                                           QStringLiteral("a")});
    QCOMPARE(arguments.folders, QStringList({b, a, link}));
}

void tst_ScanArguments::foldersInsideEachOther()
{
    // A folder that another one's walk reaches is left out; the walk enters no hidden folder.
    const QString root = tree->root();
    const QString sub = tree->folder(QStringLiteral("sub"));
    const QString hidden = tree->folder(QStringLiteral(".hidden"));
    const QString below = tree->folder(QStringLiteral(".hidden/below"));
    const QString beside = tree->folder(QStringLiteral("../tree beside"));
    QCOMPARE(parse({sub, root, beside, hidden}).folders,
             QStringList({root, QDir::cleanPath(beside), hidden}));
    QCOMPARE(parse({root, below}).folders, QStringList({root, below}));
    QCOMPARE(parse({below, hidden}).folders, QStringList(hidden));
    QCOMPARE(parse({sub, QStringLiteral("/")}).folders, QStringList(QStringLiteral("/")));
}

void tst_ScanArguments::foldersThatAreReachedAnotherWay()
{
    // What the walk reaches depends on its options: hidden folders, links, other file systems.
    const QString root = tree->root();
    const QString hidden = tree->folder(QStringLiteral(".hidden/below"));
    const QString link = tree->link(QStringLiteral("link"), QStringLiteral(".hidden"));
    const QString inside = link + QStringLiteral("/below");
    QCOMPARE(parse({root, hidden}).folders, QStringList({root, hidden}));
    QCOMPARE(parse({QStringLiteral("--hidden"), hidden, root}).folders, QStringList(root));
    QCOMPARE(parse({root, link, inside}).folders, QStringList(root));
    QCOMPARE(parse({QStringLiteral("--no-links"), root, link, inside}).folders,
             QStringList({root, link}));
    const QStringList system = {QStringLiteral("/"), QStringLiteral("/proc")};
    QCOMPARE(parse(system).folders, QStringList(QStringLiteral("/")));
    if (!QFile::exists(QStringLiteral("/proc/self"))) {
        QSKIP("There is no other file system at /proc.");
    }
    QCOMPARE(parse(QStringList(QStringLiteral("--one-file-system")) + system).folders, system);
}

void tst_ScanArguments::listOfFolders()
{
    // Folders are read from a list, by lines or, where there is a NUL, by NUL; they follow the others.
    const QString a = tree->folder(QStringLiteral("a"));
    const QString b = tree->folder(QStringLiteral("b b"));
    const QString c = tree->folder(QStringLiteral("c\nc"));
    QVERIFY(QDir::setCurrent(tree->root()));
    const auto fromList = [this](const QByteArray &list) {
        return parse({QStringLiteral("--files-from"),
                      tree->file(QStringLiteral("list"), list),
                      QStringLiteral("a")})
            .folders;
    };
    QCOMPARE(fromList("b b\n\na"), QStringList({a, b}));
    QCOMPARE(fromList(QByteArray("c\nc\0b b\0", 8)), QStringList({a, c, b}));
    QCOMPARE(fromList(""), QStringList(a));
    QCOMPARE(parse({QStringLiteral("--files-from=none")}).error,
             QStringLiteral("cannot read \"none\": No such file or directory"));
    QCOMPARE(parse({QStringLiteral("--files-from=a")}).action, ScanArguments::Action::Refuse);
    tree->file(QStringLiteral("list"), "a\nnone\n");
    QCOMPARE(parse({QStringLiteral("--files-from=list")}).error,
             QStringLiteral("\"none\" does not exist"));
}

void tst_ScanArguments::refused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const char *arguments, const char *error) {
        QTest::newRow(name) << QString::fromLatin1(arguments).split(QLatin1Char(' '))
                            << QString::fromLatin1(error);
    };
    QTest::newRow("no folder") << QStringList() << QStringLiteral("no folder is given");
    row("unknown option", "--foo .", "Unknown option 'foo'.");
    row("unknown letter", "-x .", "Unknown option 'x'.");
    row("missing value", ". --include", "Missing value after '--include'.");
    row("missing number", ". --min-kb", "Missing value after '--min-kb'.");
    row("no number", "--min-kb many .", "--min-kb takes a number, not \"many\"");
    row("half a number", "--max-kb 1.5 .", "--max-kb takes a number, not \"1.5\"");
    row("empty number", "--max-kb= .", "--max-kb takes a number, not \"\"");
    row("no count", "--stop-after 0 .", "--stop-after takes a number from 1 to 2147483647, not 0");
    row("large count",
        "--stop-after 4294967297 .",
        "--stop-after takes a number from 1 to 2147483647, not 4294967297");
    row("unknown checksum",
        "--advanced crc32 .",
        "--advanced takes md5, sha1 or crc, not \"crc32\"");
    row("unknown order", "--sort name .", "--sort takes path or size or count, not \"name\"");
    row("unknown separator", "--separator=line .", "--separator takes blank or none, not \"line\"");
    const char *const size = "takes a size such as 500, 20K, 3M or 1G, not";
    for (const char *text :
         {"", "K", "1X", "1.5M", "-1", "1 K", "8388608T", "9223372036854775808"}) {
        QTest::addRow("size %s", text)
            << QStringList{QStringLiteral("--max-size"), QLatin1String(text), QStringLiteral(".")}
            << QStringLiteral("--max-size %1 \"%2\"").arg(QLatin1String(size), QLatin1String(text));
    }
    row("two forms", "--json --csv .", "--json cannot be used with --csv");
    row("JSON with NUL", "--json -0 .", "--json cannot be used with --print0");
    row("CSV without the first", "-f --csv .", "--csv cannot be used with --omit-first");
    row("last copies", "--joined -f .", "--joined cannot be used with --omit-first");
    row("joined JSON", "--joined --json .", "--json cannot be used with --joined");
    row("joined and sorted", "--joined --sort size .", "--joined cannot be used with --sort");
    row("missing folder", ". none", "\"none\" does not exist");
    row("file", ". file", "\"file\" is not a folder");
    row("the toolkit's resources", ":/", "\":/\" does not exist");
    row("one of the resources", ":/content", "\":/content\" does not exist");
    row("address of a resource", "qrc:/content", "\"qrc:/content\" does not exist");
}

void tst_ScanArguments::refused()
{
    // What cannot be understood is refused with one line that says why.
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    tree->file(QStringLiteral("file"));
    QVERIFY(QDir::setCurrent(tree->root()));
    const ScanArguments result = parse(arguments);
    QCOMPARE(result.action, ScanArguments::Action::Refuse);
    QCOMPARE(result.error, error);
    QCOMPARE(parse({QString()}).error, QStringLiteral("\"\" does not exist"));
}

void tst_ScanArguments::namesOfTheToolkitsResources_data()
{
    QTest::addColumn<QString>("name");
    for (const char *const name : {":", ":/", ":/content", "qrc:", "qrc:/content"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void tst_ScanArguments::namesOfTheToolkitsResources()
{
    // A folder of the disk is taken, though its name looks like one of the toolkit's resources.
    QFETCH(const QString, name);
    tree->folder(name);
    QVERIFY(QDir::setCurrent(tree->root()));
    const ScanArguments result = parse({name});
    QCOMPARE(result.action, ScanArguments::Action::Scan);
    QCOMPARE(result.folders, QStringList(QDir::cleanPath(tree->root() + QLatin1Char('/') + name)));
}

void tst_ScanArguments::removedCurrentFolder()
{
    // Relative names lead nowhere, and not to the top of the file system.
    const QString before = QDir::currentPath();
    const auto goBack = qScopeGuard([&] { QDir::setCurrent(before); });
    QVERIFY(QDir::setCurrent(tree->folder(QStringLiteral("gone"))));
    QVERIFY(QDir(tree->root()).rmdir(QStringLiteral("gone")));
    for (const char *name : {".", "tmp", "/"}) {
        const ScanArguments arguments = parse({QLatin1String(name)});
        if (name[0] == '/') {
            QCOMPARE(arguments.folders, QStringList(QStringLiteral("/")));
        } else {
            QCOMPARE(arguments.error,
                     QStringLiteral("\"%1\" does not exist").arg(QLatin1String(name)));
        }
    }
}

void tst_ScanArguments::helpAndVersion()
{
    // Help and version need no folder; the help names every option.
    QCOMPARE(parse({QStringLiteral("--version")}).action, ScanArguments::Action::ShowVersion);
    const ScanArguments help = parse({QStringLiteral("--help")});
    QCOMPARE(help.action, ScanArguments::Action::ShowHelp);
    for (const char *option : {"--advanced <md5|sha1|crc>",
                               "--same-name",
                               "--same-extension",
                               "--same-date",
                               "--include <MASKS>",
                               "--exclude <MASKS>",
                               "--min-kb <N>",
                               "--max-kb <N>",
                               "--min-size <SIZE>",
                               "--max-size <SIZE>",
                               "--hidden",
                               "--no-links",
                               "--one-file-system",
                               "--files-from <LIST>",
                               "--joined",
                               "-f, --omit-first",
                               "--sort <path|size|count>",
                               "-0, --print0",
                               "--separator <none|blank>",
                               "--json",
                               "--csv",
                               "--summary",
                               "-q, --quiet",
                               "--no-messages",
                               "--events",
                               "--stop-after <N>",
                               "-h, --help",
                               "--version",
                               "FOLDER..."}) {
        QVERIFY2(help.helpText.contains(QLatin1String(option)), option);
    }
}

TWINSIFT_TEST_MAIN(tst_ScanArguments)
#include "tst_ScanArguments.moc"
