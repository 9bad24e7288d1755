// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/tools/Console.h"

#include <csignal>
#include <memory>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

/** How twinsift-scan ends when it is interrupted or nobody reads what it prints. */
class tst_ConsoleSignals final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void firstSignal_data();
    void firstSignal();
    void stoppedDocument();
    void signalWhilePrinting();
    void secondSignal();
    void ignoredSignal();
    void readerIsGone_data();
    void readerIsGone();

private:
    void makeLongScan();
    void makeLongOutput();
    bool waitForLongScan(Console *console) const;

    std::unique_ptr<TempTree> tree;
    QByteArray twins;
    qint64 wholeOutput = 0;
};

namespace
{
// So long takes the checksum of a file of that many bytes that no test waits for it.
constexpr qint64 hugeBytes = Q_INT64_C(1) << 42;

// A pipe whose one end is read here, and whose other end has a name.
class SlowReader final
{
public:
    explicit SlowReader(const QString &fifo)
        : descriptor(::open(QFile::encodeName(fifo).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
    {
    }
    ~SlowReader() { close(); }

    void close()
    {
        ::close(descriptor);
        descriptor = -1;
    }

    // Whether the program has begun to print, and waits: it has more than a pipe holds.
    bool waitUntilPrinting() const
    {
        return QTest::qWaitFor(
            [this] {
                int bytes = 0;
                return ::ioctl(descriptor, FIONREAD, &bytes) == 0 && bytes > 0;
            },
            60000);
    }

    qint64 readAll()
    {
        qint64 all = 0;
        char data[4096];
        pollfd readable = {descriptor, POLLIN, 0};
        while (::poll(&readable, 1, 60000) == 1) {
            const ssize_t bytes = ::read(descriptor, data, sizeof data);
            if (bytes <= 0) {
                break;
            }
            all += bytes;
        }
        return all;
    }

private:
    int descriptor;
};
} // namespace

void tst_ConsoleSignals::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

void tst_ConsoleSignals::makeLongScan()
{
    const QString a = tree->file(QStringLiteral("a"), "same");
    const QString b = tree->file(QStringLiteral("b"), "same");
    twins = QFile::encodeName(a) + '\n' + QFile::encodeName(b) + "\n\n";
    tree->sparseFile(QStringLiteral("c"), hugeBytes);
}

// Until only the last file is left.
bool tst_ConsoleSignals::waitForLongScan(Console *console) const
{
    return console->waitForError("countingFindFilesDuplicated\t2\t2\t8\n");
}

void tst_ConsoleSignals::makeLongOutput()
{
    const QString name(200, QLatin1Char('x'));
    wholeOutput = 0;
    for (int i = 0; i < 600; ++i) {
        wholeOutput += tree->file(name + QString::number(i)).size() + 1;
    }
    ++wholeOutput;
    tree->fifo(QStringLiteral("../fifo"));
}

void tst_ConsoleSignals::firstSignal_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("status");
    QTest::newRow("SIGINT") << SIGINT << 130;
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("SIGHUP") << SIGHUP << 129;
}

void tst_ConsoleSignals::firstSignal()
{
    // A signal stops the scan; what was found is printed, and the status tells the signal.
    QFETCH(int, number);
    QFETCH(int, status);
    makeLongScan();
    Console console;
    console.setSignal(number, false);
    console.start({QStringLiteral("--advanced=md5"), QStringLiteral("--events"), tree->root()});
    QVERIFY(waitForLongScan(&console));
    console.send(number);
    const Console::Result result = console.result();
    QCOMPARE(console.exitStatus(), QProcess::NormalExit);
    QCOMPARE(result.status, status);
    QCOMPARE(result.output, twins);
    QVERIFY(result.error.endsWith("findDuplicatedFilesFinished\t1\n"));
}

void tst_ConsoleSignals::stoppedDocument()
{
    // The document of a stopped scan is whole, and says that it was stopped.
    makeLongScan();
    Console console;
    console.setSignal(SIGINT, false);
    console.start({QStringLiteral("--advanced=crc"),
                   QStringLiteral("--events"),
                   QStringLiteral("--json"),
                   tree->root()});
    QVERIFY(waitForLongScan(&console));
    console.send(SIGINT);
    const Console::Result result = console.result();
    QCOMPARE(result.status, 130);
    QVERIFY(result.output.contains("\n\"stopped\": true,\n"));
    QVERIFY(result.output.contains("\"groups\":1,"));
    QVERIFY(result.output.endsWith("\n}\n"));
}

void tst_ConsoleSignals::signalWhilePrinting()
{
    // One that comes while the groups are printed does not cut them off.
    makeLongOutput();
    SlowReader reader(path(QStringLiteral("fifo")));
    Console console;
    console.setSignal(SIGINT, false);
    console.setStandardOutputFile(path(QStringLiteral("fifo")));
    console.start({tree->root()});
    QVERIFY(reader.waitUntilPrinting());
    console.send(SIGINT);
    QCOMPARE(reader.readAll(), wholeOutput);
    const Console::Result result = console.result();
    QCOMPARE(console.exitStatus(), QProcess::NormalExit);
    QCOMPARE(result.status, 130);
}

void tst_ConsoleSignals::secondSignal()
{
    // A second one ends the program at once, whatever it is doing. Which of the two is the second is
    // up to the system, where several threads may take them.
    makeLongOutput();
    const SlowReader reader(path(QStringLiteral("fifo")));
    Console console;
    console.setSignal(SIGINT, false);
    console.setStandardOutputFile(path(QStringLiteral("fifo")));
    console.start({tree->root()});
    QVERIFY(reader.waitUntilPrinting());
    console.send(SIGINT);
    console.send(SIGTERM);
    const Console::Result result = console.result();
    QCOMPARE(console.exitStatus(), QProcess::CrashExit);
    QVERIFY2(result.status == 128 + SIGTERM || result.status == 128 + SIGINT,
             qPrintable(QString::number(result.status)));
}

void tst_ConsoleSignals::ignoredSignal()
{
    // A signal that the program was started to ignore does not stop it.
    makeLongScan();
    Console console;
    console.setSignal(SIGHUP, true);
    console.start({QStringLiteral("--advanced=md5"), QStringLiteral("--events"), tree->root()});
    QVERIFY(waitForLongScan(&console));
    console.send(SIGHUP);
    console.send(SIGTERM);
    const Console::Result result = console.result();
    QCOMPARE(console.exitStatus(), QProcess::NormalExit);
    QCOMPARE(result.status, 128 + SIGTERM);
}

void tst_ConsoleSignals::readerIsGone_data()
{
    QTest::addColumn<bool>("isIgnored");
    QTest::newRow("as usual") << false;
    QTest::newRow("signal ignored") << true;
}

void tst_ConsoleSignals::readerIsGone()
{
    // When its reader goes the program ends without a word, as of SIGPIPE.
    QFETCH(bool, isIgnored);
    makeLongOutput();
    SlowReader reader(path(QStringLiteral("fifo")));
    Console console;
    console.setSignal(SIGPIPE, isIgnored);
    console.setStandardOutputFile(path(QStringLiteral("fifo")));
    console.start({tree->root()});
    QVERIFY(reader.waitUntilPrinting());
    reader.close();
    const Console::Result result = console.result();
    QCOMPARE(console.exitStatus(), isIgnored ? QProcess::NormalExit : QProcess::CrashExit);
    QCOMPARE(result.status, 128 + SIGPIPE);
    QCOMPARE(result.error, QByteArray());
}

TWINSIFT_TEST_MAIN(tst_ConsoleSignals)
#include "tst_ConsoleSignals.moc"
