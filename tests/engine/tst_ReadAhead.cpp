// SPDX-License-Identifier: MIT
#include "engine/ReadAhead.h"
#include "tests/support/TestCase.h"

#include <QSemaphore>
#include <QThread>

#include <atomic>

class tst_ReadAhead final : public TestCase
{
    Q_OBJECT

private slots:
    void cleanup() override;
    void itemsComeInOrder_data();
    void itemsComeInOrder();
    void noMoreThanTheBounds();
    void fewItemsNeedNoThread();
    void waitingCanBeDenied();
    void whatIsGivenUpIsTold();
    void hangingItemIsNotWaitedFor();
};

namespace
{
GoOn always()
{
    return [] {
        return true;
    };
}

constexpr int maxWaitMilliseconds = 60000;
} // namespace

void tst_ReadAhead::cleanup()
{
    Background::fixThreadCount(0);
    QVERIFY(Background::waitForDone(maxWaitMilliseconds));
    TestCase::cleanup();
}

void tst_ReadAhead::itemsComeInOrder_data()
{
    QTest::addColumn<int>("threads");
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("batch");
    for (const int threads : {1, 2, 16}) {
        for (const int items : {0, 1, 7, 1000}) {
            for (const int batch : {1, 8}) {
                QTest::addRow("%d threads, %d items, batches of %d", threads, items, batch)
                    << threads << items << batch;
            }
        }
    }
}

void tst_ReadAhead::itemsComeInOrder()
{
    // Each item comes once, in order, whoever has worked on it.
    QFETCH(int, threads);
    QFETCH(int, items);
    QFETCH(int, batch);
    Background::fixThreadCount(threads);
    Background::setThreadCount(threads);
    std::atomic<int> calls = {0};
    ReadAhead<int> ahead(items, {batch, 4, 1}, [&calls](int item, const GoOn &) {
        ++calls;
        if (item % 5 == 0) {
            QThread::yieldCurrentThread();
        }
        return item * 3;
    });
    for (int item = 0; item < items; ++item) {
        int fact = -1;
        QVERIFY(ahead.take(&fact, always()));
        QCOMPARE(fact, item * 3);
    }
    QCOMPARE(calls.load(), items);
}

void tst_ReadAhead::noMoreThanTheBounds()
{
    // As many items are begun as the bounds allow, and the next ones when some were taken.
    Background::setThreadCount(16);
    std::atomic<int> begun = {0};
    QSemaphore gate;
    ReadAhead<int> ahead(100, {2, 3, 0}, [&](int item, const GoOn &) {
        ++begun;
        gate.acquire();
        return item;
    });
    QCOMPARE(begun.load(), 0);
    gate.release(2 * 3);
    int fact = -1;
    QVERIFY(ahead.take(&fact, always()));
    QVERIFY2(begun.load() <= 2 * 3 + 2, qPrintable(QString::number(begun.load())));
    gate.release(1000);
    for (int item = 1; item < 100; ++item) {
        QVERIFY(ahead.take(&fact, always()));
        QCOMPARE(fact, item);
        // Those in hand, those that wait, and the batch that is being taken.
        QVERIFY2(begun.load() <= item + 2 * 3 + 2, qPrintable(QString::number(begun.load())));
    }
}

void tst_ReadAhead::fewItemsNeedNoThread()
{
    // So few items are worked on by the thread that takes them, one at a time.
    QStringList threads;
    ReadAhead<int> ahead(3, {8, 8, 3}, [&](int item, const GoOn &) {
        threads.append(QThread::currentThread() == qApp->thread() ? QStringLiteral("own")
                                                                  : QStringLiteral("other"));
        return item;
    });
    int fact = -1;
    QVERIFY(ahead.take(&fact, always()));
    QCOMPARE(threads, QStringList(QStringLiteral("own")));
    QVERIFY(!ahead.take(&fact, [] { return false; }));
}

void tst_ReadAhead::waitingCanBeDenied()
{
    // Whoever takes an item is asked while it is not there, and leaves without it when denied.
    Background::setThreadCount(2);
    QSemaphore gate;
    int asked = 0;
    {
        ReadAhead<int> ahead(10, {1, 2, 0}, [&gate](int item, const GoOn &) {
            gate.acquire();
            return item;
        });
        int fact = -1;
        QVERIFY(!ahead.take(&fact, [&asked] { return ++asked < 3; }));
    }
    QCOMPARE(asked, 3);
    gate.release(10);
    QVERIFY(Background::waitForDone(maxWaitMilliseconds));
}

void tst_ReadAhead::whatIsGivenUpIsTold()
{
    // Work that nobody waits for any more is told to end, and what has not begun never begins.
    Background::setThreadCount(1);
    QSemaphore begun;
    std::atomic<int> count = {0};
    std::atomic<bool> wasTold = {false};
    {
        ReadAhead<int> ahead(50, {1, 8, 0}, [&](int item, const GoOn &goOn) {
            ++count;
            begun.release();
            while (goOn()) {
                QThread::yieldCurrentThread();
            }
            wasTold = true;
            return item;
        });
        int fact = -1;
        QVERIFY(!ahead.take(&fact, [&begun] { return begun.available() == 0; }));
    }
    QVERIFY(Background::waitForDone(maxWaitMilliseconds));
    QVERIFY(wasTold);
    QCOMPARE(count.load(), 1);
}

void tst_ReadAhead::hangingItemIsNotWaitedFor()
{
    // Neither the end of the work nor the wait for all threads hangs with an item that does.
    Background::setThreadCount(1);
    QSemaphore gate;
    {
        ReadAhead<int> ahead(10, {1, 2, 0}, [&gate](int item, const GoOn &) {
            gate.acquire();
            return item;
        });
        int fact = -1;
        QVERIFY(!ahead.take(&fact, [] { return false; }));
    }
    QVERIFY(!Background::waitForDone(10));
    gate.release(10);
    QVERIFY(Background::waitForDone(maxWaitMilliseconds));
}

TWINSIFT_TEST_MAIN(tst_ReadAhead)
#include "tst_ReadAhead.moc"
