// SPDX-License-Identifier: MIT
#include "engine/ScanProgress.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/tools/Console.h"
#include "tools/ByteText.h"
#include "tools/ProgressLine.h"

#include <QElapsedTimer>

#include <csignal>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

class tst_ProgressLine final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void text_data();
    void text();
    void byteText();
    void lineOnATerminal();
    void narrowTerminal();
    void noLine_data();
    void noLine();

private:
    std::unique_ptr<TempTree> tree;
};

namespace
{
constexpr int longWaitMilliseconds = 60000;
constexpr qint64 hugeBytes = Q_INT64_C(1) << 42;

// A terminal that keeps what is written to it.
class Terminal final
{
public:
    explicit Terminal(unsigned short columns)
        : descriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        ::grantpt(descriptor);
        ::unlockpt(descriptor);
        name = QFile::decodeName(::ptsname(descriptor));
        // What is written while nobody has the other end open would be lost with it.
        other = ::open(QFile::encodeName(name).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        const winsize size = {24, columns, 0, 0};
        ::ioctl(descriptor, TIOCSWINSZ, &size);
        ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    }
    ~Terminal()
    {
        ::close(other);
        ::close(descriptor);
    }

    void read()
    {
        char data[4096];
        for (ssize_t bytes = 0; (bytes = ::read(descriptor, data, sizeof data)) > 0;) {
            written.append(data, static_cast<int>(bytes));
        }
    }

    bool waitFor(const QByteArray &text)
    {
        return QTest::qWaitFor(
            [&] {
                read();
                return written.contains(text);
            },
            longWaitMilliseconds);
    }

    // What it shows: a carriage return leads back to the start of the line.
    QByteArrayList screen() const
    {
        QByteArrayList lines = {QByteArray()};
        int column = 0;
        for (const char byte : written) {
            if (byte == '\n') {
                lines.append(QByteArray());
            } else if (byte == '\r') {
                column = 0;
            } else {
                QByteArray &line = lines.last();
                line = line.leftJustified(column + 1, ' ');
                line[column++] = byte;
            }
        }
        return lines;
    }

    QString name;
    QByteArray written;

private:
    int descriptor;
    int other;
};

qint64 bytesReadBy(const QProcess &process)
{
    QFile counters(QStringLiteral("/proc/%1/io").arg(process.processId()));
    const QByteArray text = counters.open(QIODevice::ReadOnly) ? counters.readAll() : QByteArray();
    return text.startsWith("rchar: ") ? text.mid(7, text.indexOf('\n') - 7).toLongLong() : -1;
}
} // namespace

void tst_ProgressLine::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

void tst_ProgressLine::text_data()
{
    QTest::addColumn<QList<qint64>>("numbers");
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QByteArray>("text");
    const auto row =
        [](const char *name, const QList<qint64> &numbers, qint64 time, const char *text) {
            QTest::newRow(name) << numbers << time << QByteArray(text);
        };
    // Found; files and bytes to compare; those compared; bytes read.
    row("nothing yet", {0, 0, 0, 0, 0, 0}, 0, "0 files found");
    row("walk", {1200, 0, 0, 0, 0, 0}, 0, "1200 files found");
    row("early", {9, 4, 400, 1, 100, 50}, 999, "9 files found, 1 of 4 compared, 50 bytes read");
    row("estimate",
        {9, 4, 4096, 1, 1024, 2048},
        3000,
        "9 files found, 1 of 4 compared, 2.0 KiB read, about 9 s left");
    row("by bytes",
        {9, 2, 1 << 30, 1, 1 << 28, 1 << 28},
        30000,
        "9 files found, 1 of 2 compared, 256.0 MiB read, about 1 min 30 s left");
    row("hours",
        {9, 1000, 0, 10, 0, 1},
        100000,
        "9 files found, 10 of 1000 compared, 1 bytes read, about 2 h 45 min left");
    row("hardly begun",
        {9, 1000, 0, 9, 0, 1},
        100000,
        "9 files found, 9 of 1000 compared, 1 bytes read");
    row("done",
        {9, 2, 10, 2, 10, 10},
        5000,
        "9 files found, 2 of 2 compared, 10 bytes read, about 0 s left");
    row("more than foreseen",
        {9, 2, 10, 2, 11, 11},
        5000,
        "9 files found, 2 of 2 compared, 11 bytes read");
}

void tst_ProgressLine::text()
{
    // The line tells what is known; the time left as soon as a hundredth is done, and a second over.
    QFETCH(QList<qint64>, numbers);
    QFETCH(qint64, milliseconds);
    QFETCH(QByteArray, text);
    ScanProgress progress;
    progress.filesFound = numbers.at(0);
    progress.filesToCompare = numbers.at(1);
    progress.bytesToCompare = numbers.at(2);
    progress.filesCompared = numbers.at(3);
    progress.bytesCompared = numbers.at(4);
    progress.bytesRead = numbers.at(5);
    QCOMPARE(ProgressLine::text(progress, milliseconds), text);
}

void tst_ProgressLine::byteText()
{
    // Bytes are told in units of 1024, each up to the next one.
    QCOMPARE(ByteText::of(0), QByteArray("0 bytes"));
    QCOMPARE(ByteText::of(1023), QByteArray("1023 bytes"));
    QCOMPARE(ByteText::of(1536), QByteArray("1.5 KiB"));
    QCOMPARE(ByteText::of(Q_INT64_C(1) << 20), QByteArray("1.0 MiB"));
    QCOMPARE(ByteText::of(Q_INT64_C(20) << 30), QByteArray("20.0 GiB"));
    QCOMPARE(ByteText::of(std::numeric_limits<qint64>::max()), QByteArray("8.0 EiB"));
}

void tst_ProgressLine::lineOnATerminal()
{
    // On a terminal one line is rewritten ten times a second at most, and gone at the end; the figures
    // follow.
    tree->file(QStringLiteral("a"), "same");
    tree->file(QStringLiteral("b"), "same");
    tree->sparseFile(QStringLiteral("c"), hugeBytes);
    Terminal terminal(120);
    Console console;
    console.setSignal(SIGINT, false);
    console.setStandardErrorFile(terminal.name);
    QElapsedTimer timer;
    timer.start();
    console.start({QStringLiteral("--advanced=md5"), tree->root()});
    QVERIFY(terminal.waitFor("3 files found, 2 of 3 compared, "));
    QVERIFY(terminal.waitFor(" MiB read"));
    QCOMPARE(terminal.screen().size(), 1);
    const auto rewritten = terminal.written.count('\r');
    QVERIFY2(rewritten <= timer.elapsed() / 100 + 1, QByteArray::number(rewritten).constData());
    console.send(SIGINT);
    const Console::Result result = console.result();
    QCOMPARE(result.status, 130);
    terminal.read();
    const QByteArrayList screen = terminal.screen();
    QCOMPARE(screen.size(), 7);
    QCOMPARE(screen.first().simplified(), QByteArray("files looked at 3"));
    QVERIFY(screen.last().isEmpty());
    QCOMPARE(result.output.count('\n'), 3);
}

void tst_ProgressLine::narrowTerminal()
{
    // The line never fills a narrow terminal, which would go on to the next line.
    tree->sparseFile(QStringLiteral("c"), hugeBytes);
    Terminal terminal(20);
    Console console;
    console.setSignal(SIGINT, false);
    console.setStandardErrorFile(terminal.name);
    console.start({QStringLiteral("--advanced=md5"), tree->root()});
    QVERIFY(terminal.waitFor("1 files found, 0 of"));
    console.send(SIGINT);
    console.result();
    for (const QByteArray &part : terminal.written.split('\r')) {
        QVERIFY2(part.size() < 20, part.constData());
    }
}

void tst_ProgressLine::noLine_data()
{
    QTest::addColumn<QString>("option");
    QTest::newRow("quiet") << QStringLiteral("--quiet");
    QTest::newRow("events") << QStringLiteral("--events");
}

void tst_ProgressLine::noLine()
{
    // There is neither line nor figures where they are not wanted.
    QFETCH(QString, option);
    tree->sparseFile(QStringLiteral("c"), hugeBytes);
    Terminal terminal(80);
    Console console;
    console.setSignal(SIGINT, false);
    console.setStandardErrorFile(terminal.name);
    console.start({QStringLiteral("--advanced=md5"), option, tree->root()});
    QVERIFY(console.waitForStarted());
    if (bytesReadBy(console) < 0) {
        QSKIP("This system does not tell what a process has read.");
    }
    // So many take longer than the first line does to come.
    QVERIFY(
        QTest::qWaitFor([&] { return bytesReadBy(console) > 1000000000; }, longWaitMilliseconds));
    console.send(SIGINT);
    QCOMPARE(console.result().status, 130);
    terminal.read();
    QVERIFY(!terminal.written.contains("files found"));
    QVERIFY(!terminal.written.contains("files looked at"));
    QCOMPARE(terminal.written.isEmpty(), option == QLatin1String("--quiet"));
}

TWINSIFT_TEST_MAIN(tst_ProgressLine)
#include "tst_ProgressLine.moc"
