// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/tools/Console.h"

#include <QDir>
#include <QProcess>

#include <memory>

#include <sys/stat.h>
#include <unistd.h>

class tst_TwinsiftScan final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void groups();
    void groupsWithNul();
    void noDuplicates();
    void advanced_data();
    void advanced();
    void options();
    void events();
    void eventsAdvanced();
    void stopAfter();
    void namesByteForByte_data();
    void namesByteForByte();
    void relativeFolders();
    void overlappingFolders();
    void refused_data();
    void refused();
    void help();
    void version();
    void fullDevice();
    void closedChannels_data();
    void closedChannels();
    void unreadable_data();
    void unreadable();
    void withoutThreads_data();
    void withoutThreads();
    void slowReader();

private:
    struct Result {
        int status;
        QByteArray output;
        QByteArray error;
    };

    Result run(const QStringList &arguments,
               const QStringList &environment = QStringList(),
               const QString &outputFile = QString()) const;
    QByteArray file(const char *name, const QByteArray &content) const;

    std::unique_ptr<TempTree> tree;
};

namespace
{
constexpr int longWaitMilliseconds = 60000;
} // namespace

void tst_TwinsiftScan::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

QByteArray tst_TwinsiftScan::file(const char *name, const QByteArray &content) const
{
    return QFile::encodeName(tree->file(QString::fromUtf8(name), content));
}

tst_TwinsiftScan::Result tst_TwinsiftScan::run(const QStringList &arguments,
                                               const QStringList &environment,
                                               const QString &outputFile) const
{
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const QString &variable : environment) {
        variables.insert(variable.section(QLatin1Char('='), 0, 0),
                         variable.section(QLatin1Char('='), 1));
    }
    process.setProcessEnvironment(variables);
    process.setWorkingDirectory(tree->root());
    if (!outputFile.isEmpty()) {
        process.setStandardOutputFile(outputFile);
    }
    process.start(QStringLiteral(TWINSIFT_SCAN), arguments);
    if (!process.waitForFinished(longWaitMilliseconds)
        || process.exitStatus() != QProcess::NormalExit) {
        return {-1, process.readAllStandardOutput(), process.readAllStandardError()};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

void tst_TwinsiftScan::groups()
{
    // A path a line, an empty line behind each group, nothing else on either channel.
    const QByteArray a = file("a", "same!");
    const QByteArray b = file("b", "same!");
    file("c", "other");
    const QByteArray d = file("d", "twins");
    const QByteArray e = file("sub/e", "same");
    const QByteArray f = file("sub/f", "same");
    QVERIFY(QFile::remove(QFile::decodeName(d)));
    const Result result = run({tree->root()});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.error, QByteArray());
    const QByteArray one = a + '\n' + b + "\n\n";
    const QByteArray two = e + '\n' + f + "\n\n";
    QCOMPARE(result.output, one + two);
    // As the window shows them their order is that of a hash.
    const QByteArray joined = run({QStringLiteral("--joined"), tree->root()}).output;
    QVERIFY(joined == one + two || joined == two + one);
}

void tst_TwinsiftScan::groupsWithNul()
{
    // With --print0 a path ends in NUL, and a group in one more.
    const QByteArray a = file("a\nb", "same!");
    const QByteArray b = file("c d", "same!");
    const Result result = run({QStringLiteral("--print0"), tree->root()});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, a + '\0' + b + '\0' + '\0');
}

void tst_TwinsiftScan::noDuplicates()
{
    // Without duplicates there is no output, and the status is that of a scan.
    file("a", "same!");
    const Result result = run({tree->root()});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.error, QByteArray());
}

void tst_TwinsiftScan::advanced_data()
{
    QTest::addColumn<QString>("checksum");
    QTest::addColumn<bool>("findsZero");
    QTest::newRow("md5") << QStringLiteral("md5") << false;
    QTest::newRow("sha1") << QStringLiteral("sha1") << false;
    QTest::newRow("crc") << QStringLiteral("crc") << true;
}

void tst_TwinsiftScan::advanced()
{
    // The checksum is the one asked for: only the CRC of these two files is the same, and where the
    // groups are not those of the window their bytes count.
    QFETCH(QString, checksum);
    QFETCH(bool, findsZero);
    const QByteArray empty = file("a", "");
    const QByteArray zero = file("b", QByteArray("\x9D\x0A\xD9\x6D", 4));
    const QStringList options = {QStringLiteral("--advanced"), checksum, tree->root()};
    QCOMPARE(run(options).output, QByteArray());
    const Result result = run(options + QStringList(QStringLiteral("--joined")));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, findsZero ? QByteArray(empty + '\n' + zero + "\n\n") : QByteArray());
}

void tst_TwinsiftScan::options()
{
    // Names, extensions, masks and sizes reach the engine.
    const QByteArray large(2000, 'x');
    const QByteArray a = file("one/photo.jpg", large);
    const QByteArray b = file("two/photo.jpg", large);
    const QByteArray c = file("two/photo.png", large);
    const QByteArray d = file("two/other.jpg", large);
    file("one/small.jpg", "x");
    file("two/small.jpg", "x");
    const auto scan = [this](const QStringList &options) {
        return run(options + QStringList(tree->root())).output;
    };
    const QStringList size = {QStringLiteral("--min-kb"), QStringLiteral("1")};
    QCOMPARE(scan(size + QStringList(QStringLiteral("--same-name"))),
             a + '\n' + b + '\n' + c + "\n\n");
    QCOMPARE(scan(size + QStringList(QStringLiteral("--same-extension"))),
             a + '\n' + d + '\n' + b + "\n\n");
    QCOMPARE(
        scan(size + QStringList({QStringLiteral("--include"), QStringLiteral("*.png;ph*.jpg")})),
        a + '\n' + b + '\n' + c + "\n\n");
    QCOMPARE(scan(size + QStringList({QStringLiteral("--exclude"), QStringLiteral("*.jpg")})),
             QByteArray());
    QCOMPARE(scan({QStringLiteral("--max-kb"),
                   QStringLiteral("0"),
                   QStringLiteral("--same-date"),
                   QStringLiteral("--include"),
                   QStringLiteral("none")}),
             QByteArray());
}

void tst_TwinsiftScan::events()
{
    // Every signal is a line on standard error: name and arguments, separated by tabs.
    file("a", "same!");
    file("b", "same!");
    const Result result = run({QStringLiteral("--events"), tree->root()});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.error,
             "findAllFilesStarted\ncountingFilesInFolder\t2\t" + QFile::encodeName(tree->root())
                 + "\nfindAllFilesFinished\nfindDuplicatedFilesStarted\n"
                   "countingFindFilesDuplicated\t0\t2\t10\nfindDuplicatedFilesFinished\t1\n");
}

void tst_TwinsiftScan::eventsAdvanced()
{
    // The Advanced mode has a line for each file, and groups of one are no groups.
    file("a", "same!");
    file("b", "other");
    const Result result = run({QStringLiteral("--advanced"),
                               QStringLiteral("md5"),
                               QStringLiteral("--events"),
                               tree->root()});
    QVERIFY(result.error.endsWith("findDuplicatedFilesStarted\n"
                                  "countingFindFilesDuplicated\t1\t0\t0\n"
                                  "countingFindFilesDuplicated\t2\t0\t0\n"
                                  "findDuplicatedFilesFinished\t0\n"));
}

void tst_TwinsiftScan::stopAfter()
{
    // The scan is stopped behind exactly that signal, prints what it has, and ends with status 0.
    const QByteArray a = file("a", "same!");
    const QByteArray b = file("b", "same!");
    file("c", "same!");
    file("d", "same!");
    const auto scan = [this](int number) {
        return run({QStringLiteral("--joined"),
                    QStringLiteral("--stop-after"),
                    QString::number(number),
                    tree->root()});
    };
    for (int number = 1; number <= 4; ++number) {
        QCOMPARE(scan(number).status, 0);
        QCOMPARE(scan(number).output, QByteArray());
    }
    QCOMPARE(scan(5).status, 0);
    QCOMPARE(scan(5).output, a + '\n' + b + "\n\n");
    QCOMPARE(scan(100).output.count('\n'), 5);
}

void tst_TwinsiftScan::namesByteForByte_data()
{
    QTest::addColumn<QString>("locale");
    for (const char *locale : {"C", "POSIX", "C.UTF-8"}) {
        QTest::newRow(locale) << QString::fromLatin1(locale);
    }
}

void tst_TwinsiftScan::namesByteForByte()
{
    // Names come out byte for byte in every locale, and go in likewise.
    QFETCH(QString, locale);
    const QByteArray a = file("\xC3\xA4\xE2\x82\xAC/\xF0\x9F\x98\x80 \"x\"", "same!");
    const QByteArray b = file("\xC3\xA4\xE2\x82\xAC/e\xCC\x81", "same!");
    const QString whole = tree->path(QString::fromUtf8("\xC3\xA4\xE2\x82\xAC"));
    const Result result = run({whole}, {QStringLiteral("LC_ALL=") + locale});
    QCOMPARE(result.error, QByteArray());
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, b + '\n' + a + "\n\n");
}

void tst_TwinsiftScan::relativeFolders()
{
    // Relative folders are made absolute, and scanned in their order.
    const QByteArray a = file("one/a", "same!");
    const QByteArray b = file("two/b", "same!");
    QCOMPARE(run({QStringLiteral("two"), QStringLiteral("./one")}).output, b + '\n' + a + "\n\n");
}

void tst_TwinsiftScan::overlappingFolders()
{
    // A file that two folders hold is listed once, and is no duplicate of itself.
    file("one/a", "same!");
    const Result result = run({QStringLiteral("one"), QStringLiteral("."), QStringLiteral("one")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray());
}

void tst_TwinsiftScan::refused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("error");
    QTest::newRow("no folder") << QStringList() << QByteArray("no folder is given");
    QTest::newRow("unknown option")
        << QStringList(QStringLiteral("--foo")) << QByteArray("Unknown option 'foo'.");
    QTest::newRow("missing argument") << QStringList(QStringLiteral("--include"))
                                      << QByteArray("Missing value after '--include'.");
    QTest::newRow("missing folder") << QStringList(QString::fromUtf8("n\xC3\xB6ne"))
                                    << QByteArray("\"n\xC3\xB6ne\" does not exist");
    QTest::newRow("file") << QStringList(QStringLiteral("file"))
                          << QByteArray("\"file\" is not a folder");
    QTest::newRow("no number") << QStringList(
        {QStringLiteral("--max-kb"), QStringLiteral("x"), QStringLiteral(".")})
                               << QByteArray("--max-kb takes a number, not \"x\"");
}

void tst_TwinsiftScan::refused()
{
    // Arguments that cannot be understood give status 2 and one line on standard error.
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, error);
    file("file", "");
    const Result result = run(arguments);
    QCOMPARE(result.status, 2);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.error, "twinsift-scan: " + error + '\n');
}

void tst_TwinsiftScan::help()
{
    // The help goes to standard output.
    const Result result = run({QStringLiteral("--help")});
    QCOMPARE(result.status, 0);
    QVERIFY(result.output.startsWith("Usage: "));
    QVERIFY(result.output.contains("twinsift-scan [options] FOLDER..."));
    QCOMPARE(result.error, QByteArray());
}

void tst_TwinsiftScan::version()
{
    // The version is that of the product.
    const Result result = run({QStringLiteral("--version")});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray("twinsift-scan 1.2.3\n"));
}

void tst_TwinsiftScan::fullDevice()
{
    // Output that cannot be written gives status 1 and says why.
    if (!QFile::exists(QStringLiteral("/dev/full"))) {
        QSKIP("This machine has no device that is always full.");
    }
    file("a", "same!");
    file("b", "same!");
    const Result result = run({tree->root()}, {}, QStringLiteral("/dev/full"));
    QCOMPARE(result.status, 1);
    QCOMPARE(result.error, QByteArray("twinsift-scan: cannot write: No space left on device\n"));
}

void tst_TwinsiftScan::closedChannels_data()
{
    QTest::addColumn<QString>("redirection");
    QTest::addColumn<bool>("hasDuplicates");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("error");
    const QByteArray error = "twinsift-scan: cannot write: Bad file descriptor\n";
    QTest::newRow("no output") << QStringLiteral(">&-") << true << 1 << error;
    QTest::newRow("nothing to put out") << QStringLiteral(">&-") << false << 0 << QByteArray();
    QTest::newRow("no input, no output") << QStringLiteral("<&- >&-") << true << 1 << error;
    QTest::newRow("no errors") << QStringLiteral("2>&-") << true << 0 << QByteArray();
    QTest::newRow("neither output nor errors")
        << QStringLiteral(">&- 2>&-") << true << 1 << QByteArray();
    QTest::newRow("nothing open") << QStringLiteral("<&- >&- 2>&-") << true << 1 << QByteArray();
}

void tst_TwinsiftScan::closedChannels()
{
    // A list that nobody takes goes nowhere, least of all into a file, and gives status 1.
    QFETCH(const QString, redirection);
    QFETCH(const bool, hasDuplicates);
    QFETCH(const QByteArray, error);
    const QByteArray a = file("a", "same!");
    const QByteArray b = file("b", hasDuplicates ? "same!" : "other size");
    QProcess shell;
    shell.setWorkingDirectory(tree->root());
    shell.start(QStringLiteral("/bin/sh"),
                {QStringLiteral("-c"),
                 QStringLiteral("exec \"$0\" --events . %1").arg(redirection),
                 QStringLiteral(TWINSIFT_SCAN)});
    QVERIFY(shell.waitForFinished(longWaitMilliseconds));
    QTEST(shell.exitCode(), "status");
    const bool hasOutput = !redirection.contains(QStringLiteral(" >&-"))
        && !redirection.startsWith(QStringLiteral(">&-"));
    QCOMPARE(shell.readAllStandardOutput(), hasOutput ? a + '\n' + b + "\n\n" : QByteArray());
    // The events come before.
    const QByteArray errors = shell.readAllStandardError();
    QVERIFY2(errors.endsWith(error), errors.constData());
    QCOMPARE(errors.isEmpty(), redirection.contains(QStringLiteral("2>&-")));
    QCOMPARE(errors.contains("cannot write"), !error.isEmpty());
}

void tst_TwinsiftScan::unreadable_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("isNamed");
    QTest::newRow("named") << QStringList() << 1 << true;
    QTest::newRow("checksum") << QStringList(QStringLiteral("--advanced=md5")) << 1 << true;
    QTest::newRow("not named") << QStringList(QStringLiteral("--no-messages")) << 0 << false;
}

void tst_TwinsiftScan::unreadable()
{
    // What cannot be read is named in a line each and gives status 1, unless that is not wanted; the
    // scan goes on.
    QFETCH(QStringList, options);
    QFETCH(int, status);
    QFETCH(bool, isNamed);
    const QByteArray a = file("a\nb", "same!");
    const QByteArray b = file("b", "same!");
    const QByteArray c = file("c", "same!");
    const QByteArray locked = QFile::encodeName(tree->folder(QStringLiteral("locked")));
    tree->setMode(QStringLiteral("a\nb"), 0);
    tree->setMode(QStringLiteral("locked"), 0);
    for (const char *up : {"", "/..", "/../.."}) {
        const QByteArray place = QFile::encodeName(tree->root()) + up;
        QCOMPARE(::chmod(place.constData(), 0755), 0);
    }
    Console console;
    console.dropRights();
    console.start(options + QStringList(tree->root()));
    const Console::Result result = console.result();
    if (result.status < 0 || result.status == 126) {
        QSKIP("The super-user reads every file, and no other user can start the program here.");
    }
    QCOMPARE(result.status, status);
    QCOMPARE(result.output, b + '\n' + c + "\n\n");
    const QByteArray lines = "twinsift-scan: " + locked + ": Permission denied\ntwinsift-scan: "
        + QByteArray(a).replace('\n', "\\012") + ": Permission denied\n";
    QCOMPARE(result.error, isNamed ? lines : QByteArray());
}

void tst_TwinsiftScan::withoutThreads_data()
{
    QTest::addColumn<QString>("processes");
    QTest::addColumn<int>("status");
    QTest::newRow("none to scan on") << "1" << 1;
    QTest::newRow("none to read ahead") << "2" << 0;
}

void tst_TwinsiftScan::withoutThreads()
{
    // Where the system gives no thread a scan is slower, or says so.
    QFETCH(QString, processes);
    QFETCH(int, status);
    for (int i = 0; i < 100; ++i) {
        tree->file(QStringLiteral("sub%1/file").arg(i % 10) + QString::number(i), "same");
    }
    QStringList command = {QStringLiteral("prlimit"),
                           QStringLiteral("--nproc=%1").arg(processes),
                           QStringLiteral(TWINSIFT_SCAN),
                           tree->root()};
    if (::geteuid() == 0) {
        // No limit holds for the administrator, and an ordinary user may run other programs.
        command = QStringList({QStringLiteral("setpriv"),
                               QStringLiteral("--reuid=54321"),
                               QStringLiteral("--clear-groups")})
            + command;
        // The user must get at the tree.
        for (QDir dir(tree->root()); dir.path() != QDir::tempPath(); dir.cdUp()) {
            QVERIFY(::chmod(qPrintable(dir.path()), 0755) == 0);
        }
    } else if (status == 0) {
        QSKIP("only the administrator can run it as a user without other programs");
    }
    QProcess process;
    process.start(command.first(), command.mid(1));
    QVERIFY(process.waitForFinished(60000));
    const QByteArray errors = process.readAllStandardError();
    if (process.exitCode() > 1) {
        QSKIP(qPrintable(QStringLiteral("cannot be limited here: ")
                         + QString::fromLocal8Bit(errors)));
    }
    QCOMPARE(process.exitCode(), status);
    QCOMPARE(process.readAllStandardOutput().count("/file"), status == 0 ? 100 : 0);
    QCOMPARE(errors.contains("twinsift-scan: the system gives no thread to search on"),
             status == 1);
}

void tst_TwinsiftScan::slowReader()
{
    // A reader that takes its time gets everything.
    constexpr int count = 3000;
    const QString name(200, QLatin1Char('x'));
    for (int i = 0; i < count; ++i) {
        tree->file(name + QString::number(i));
    }
    QProcess process;
    QProcess sleeper;
    process.setStandardOutputProcess(&sleeper);
    process.start(QStringLiteral(TWINSIFT_SCAN), {tree->root()});
    sleeper.start(QStringLiteral("sh"),
                  {QStringLiteral("-c"), QStringLiteral("sleep 1; exec wc -l")});
    QVERIFY(process.waitForFinished(longWaitMilliseconds));
    QVERIFY(sleeper.waitForFinished(longWaitMilliseconds));
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(sleeper.readAllStandardOutput().trimmed(), QByteArray::number(count + 1));
}

TWINSIFT_TEST_MAIN(tst_TwinsiftScan)
#include "tst_TwinsiftScan.moc"
