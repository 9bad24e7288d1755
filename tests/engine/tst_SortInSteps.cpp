// SPDX-License-Identifier: MIT
#include "engine/SortInSteps.h"
#include "tests/support/TestCase.h"

#include <QRandomGenerator>

#include <numeric>

class tst_SortInSteps final : public TestCase
{
    Q_OBJECT

private slots:
    void sortsAsInOneStep_data();
    void sortsAsInOneStep();
    void endsWhereItMayNotGoOn();
};

namespace
{
std::vector<int> numbersTo(int count)
{
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}
} // namespace

void tst_SortInSteps::sortsAsInOneStep_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("keys");
    for (const int count : {0, 1, 2, 1000, 16383, 16384, 16385, 100000, 200001}) {
        for (const int keys : {1, 10, 1000000}) {
            QTest::addRow("%d of %d keys", count, keys) << count << keys;
        }
    }
}

void tst_SortInSteps::sortsAsInOneStep()
{
    QFETCH(int, count);
    QFETCH(int, keys);
    QRandomGenerator random(7);
    std::vector<int> keyOf(static_cast<std::size_t>(count));
    std::generate(keyOf.begin(), keyOf.end(), [&] { return random.bounded(keys); });
    const auto key = [&keyOf](int number) {
        return keyOf[static_cast<std::size_t>(number)];
    };
    std::vector<int> numbers = numbersTo(count);
    std::vector<int> plain = numbers;
    std::stable_sort(plain.begin(), plain.end(), [&](int a, int b) { return key(a) < key(b); });
    QVERIFY(sortInSteps(&numbers, key, [] { return true; }));
    QVERIFY(numbers == plain);
}

void tst_SortInSteps::endsWhereItMayNotGoOn()
{
    // Many questions for many numbers; any of them ends the work, and leaves the numbers as they were.
    constexpr int count = 40000;
    const auto key = [](int number) {
        return -number;
    };
    int questions = 0;
    std::vector<int> numbers = numbersTo(count);
    QVERIFY(sortInSteps(&numbers, key, [&] { return ++questions > 0; }));
    QVERIFY2(questions >= 5, qPrintable(QString::number(questions)));
    for (int last = 1; last <= questions; ++last) {
        numbers = numbersTo(count);
        int asked = 0;
        QVERIFY(!sortInSteps(&numbers, key, [&] { return ++asked < last; }));
        QCOMPARE(asked, last);
        QVERIFY(numbers == numbersTo(count));
    }
}

TWINSIFT_TEST_MAIN(tst_SortInSteps)
#include "tst_SortInSteps.moc"
