// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"
#include "ui/ScreenFit.h"

class tst_ScreenFit final : public TestCase
{
    Q_OBJECT

private slots:
    void visiblePart_data();
    void visiblePart();
};

void tst_ScreenFit::visiblePart_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QList<QRect>>("screens");
    QTest::addColumn<QRect>("visible");

    const QRect left(0, 0, 1000, 800);
    const QRect right(1000, 0, 1000, 600);
    const QRect below(0, 800, 1000, 800);
    QTest::newRow("all of it") << QRect(10, 10, 50, 50) << QList<QRect>({left})
                               << QRect(10, 10, 50, 50);
    QTest::newRow("too high") << QRect(10, 10, 50, 900) << QList<QRect>({left})
                              << QRect(10, 10, 50, 790);
    QTest::newRow("beyond the left")
        << QRect(-20, 0, 50, 50) << QList<QRect>({left}) << QRect(0, 0, 30, 50);
    QTest::newRow("over two that show all of it")
        << QRect(900, 0, 200, 500) << QList<QRect>({left, right}) << QRect(900, 0, 200, 500);
    QTest::newRow("over two, one above the other")
        << QRect(0, 700, 500, 500) << QList<QRect>({left, below}) << QRect(0, 700, 500, 500);
    QTest::newRow("over two of different heights: the one with more")
        << QRect(950, 0, 500, 800) << QList<QRect>({left, right}) << QRect(1000, 0, 450, 600);
    QTest::newRow("on none") << QRect(3000, 0, 50, 50) << QList<QRect>({left}) << QRect();
    QTest::newRow("without a screen") << QRect(0, 0, 50, 50) << QList<QRect>() << QRect();
}

void tst_ScreenFit::visiblePart()
{
    // All of a rectangle that the screens cover together, else what one of them shows.
    QFETCH(QRect, rect);
    QFETCH(QList<QRect>, screens);
    QTEST(ScreenFit::visiblePart(rect, screens), "visible");
}

TWINSIFT_TEST_MAIN(tst_ScreenFit)
#include "tst_ScreenFit.moc"
