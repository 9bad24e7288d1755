// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tools/ScanArguments.h"

#include <QDir>

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
    void folders();
    void foldersInsideEachOther();
    void refused_data();
    void refused();
    void namesOfTheToolkitsResources_data();
    void namesOfTheToolkitsResources();
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
    QVERIFY(!arguments.print0);
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
                                           QStringLiteral("--print0"),
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
    QVERIFY(arguments.print0);
    QVERIFY(arguments.printsEvents);
    QCOMPARE(arguments.stopAfter, 7);
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
                               "--print0",
                               "--events",
                               "--stop-after <N>",
                               "--help",
                               "--version",
                               "FOLDER..."}) {
        QVERIFY2(help.helpText.contains(QLatin1String(option)), option);
    }
}

TWINSIFT_TEST_MAIN(tst_ScanArguments)
#include "tst_ScanArguments.moc"
