// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"
#include "tools/ScanOutput.h"

#include <QThread>

#include <cerrno>
#include <csignal>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

class tst_ScanOutput final : public TestCase
{
    Q_OBJECT

private slots:
    void writesInOrder();
    void waitsForASlowReader_data();
    void waitsForASlowReader();
    void fullDevice();
    void readerIsGone();
};

namespace
{
QByteArray readAll(int descriptor)
{
    QByteArray all;
    char data[997];
    for (ssize_t bytes = 0; (bytes = ::read(descriptor, data, sizeof data)) > 0;) {
        all.append(data, static_cast<int>(bytes));
    }
    return all;
}
} // namespace

void tst_ScanOutput::writesInOrder()
{
    // What is written comes out whole, at the latest with the flush.
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    ScanOutput output(ends[1]);
    output.write("one\n");
    output.write(QByteArray("t\0wo", 4));
    QVERIFY(output.flush());
    output.write("!");
    QVERIFY(output.flush());
    ::close(ends[1]);
    QCOMPARE(readAll(ends[0]), QByteArray("one\nt\0wo!", 9));
    ::close(ends[0]);
}

void tst_ScanOutput::waitsForASlowReader_data()
{
    QTest::addColumn<int>("flags");
    QTest::newRow("waiting descriptor") << 0;
    QTest::newRow("failing descriptor") << O_NONBLOCK;
}

void tst_ScanOutput::waitsForASlowReader()
{
    // Megabytes reach a reader in small pieces without loss, also where writing does not wait.
    QFETCH(int, flags);
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    QCOMPARE(::fcntl(ends[1], F_SETFL, flags), 0);
    QByteArray wanted;
    for (int i = 0; i < 300000; ++i) {
        // Not with +=, which makes room for each piece alone and copies the whole again and again.
        wanted.append(QByteArray::number(i)).append('\n');
    }
    bool isWritten = false;
    const std::unique_ptr<QThread> writer(QThread::create([&] {
        ScanOutput output(ends[1]);
        for (const QByteArray &line : wanted.split('\n')) {
            output.write(line + '\n');
        }
        isWritten = output.flush();
        ::close(ends[1]);
    }));
    writer->start();
    const QByteArray all = readAll(ends[0]);
    writer->wait();
    QVERIFY(isWritten);
    QVERIFY(all == wanted + '\n');
    ::close(ends[0]);
}

void tst_ScanOutput::fullDevice()
{
    // A loss is told, with its reason, and stays told.
    const int descriptor = ::open("/dev/full", O_WRONLY);
    if (descriptor < 0) {
        QSKIP("This machine has no device that is always full.");
    }
    ScanOutput output(descriptor);
    output.write(QByteArray(100000, 'x'));
    output.write("more");
    QVERIFY(!output.flush());
    QCOMPARE(errno, ENOSPC);
    QVERIFY(!output.flush());
    QCOMPARE(errno, ENOSPC);
    ::close(descriptor);
}

void tst_ScanOutput::readerIsGone()
{
    // A reader that has gone is a loss as well, where the signal for it is ignored.
    const auto previous = std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    ::close(ends[0]);
    ScanOutput output(ends[1]);
    output.write("lost");
    QVERIFY(!output.flush());
    QCOMPARE(errno, EPIPE);
    ::close(ends[1]);
    std::signal(SIGPIPE, previous);
}

TWINSIFT_TEST_MAIN(tst_ScanOutput)
#include "tst_ScanOutput.moc"
