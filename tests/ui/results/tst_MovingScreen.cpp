// SPDX-License-Identifier: MIT
#include "tests/support/Hook.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/ui/results/ResultsPage.h"
#include "ui/results/DuplicatedFilesTableModel.h"

#include <QImage>
#include <QPushButton>
#include <QScreen>
#include <QTableView>

#include <functional>

namespace
{
QtMessageHandler previous = nullptr;
std::function<void()> onFileLeft;

// The one thing that is heard of while files move.
void listen(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (onFileLeft && text.startsWith(QStringLiteral("Cannot remove file: "))) {
        onFileLeft();
    }
    previous(type, context, text);
}
} // namespace

/** What stands on a real screen while files move. */
class tst_MovingScreen final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;
    void theQuestionHasGone();
    void rowsTurnRedAsTheyGo();

private:
    static QImage onScreen(const QWidget &widget)
    {
        const QPoint place = widget.mapToGlobal(QPoint());
        return widget.screen()
            ->grabWindow(0, place.x(), place.y(), widget.width(), widget.height())
            .toImage();
    }
};

void tst_MovingScreen::init()
{
    TestCase::init();
    previous = qInstallMessageHandler(listen);
}

void tst_MovingScreen::cleanup()
{
    qInstallMessageHandler(previous);
    TestCase::cleanup();
}

void tst_MovingScreen::theQuestionHasGone()
{
    // When the first file is about to move, the screen shows the page again where the question stood.
    const TempTree tree(path(QString()));
    ResultsPage results;
    // The boxes stand in the middle of the window, which is higher than the page.
    results.page.setGeometry(0, 0, 900, results.window.height());
    const QString gone = tree.path(QStringLiteral("gone"));
    results.scanned({{gone, tree.file(QStringLiteral("b"))}});
    QVERIFY(QTest::qWaitForWindowExposed(&results.window));
    QTRY_COMPARE(results.table()->viewport()->grab().toImage().pixelColor(5, 5),
                 onScreen(*results.table()->viewport()).pixelColor(5, 5));
    const QImage before = onScreen(results.page);
    QImage during;
    QImage asking;
    const Hook look(&onFileLeft, [&] { during = onScreen(results.page); });
    results.boxes.expect(
        QStringLiteral("Warning"),
        [](QWidget *) { return QString(); },
        [](QWidget *box) { QTest::keyClick(box, Qt::Key_Return); });
    results.boxes.expect(
        QStringLiteral("Delete Duplicate Files"),
        [&](QWidget *box) {
            const bool isShown = QTest::qWaitForWindowExposed(box);
            box->repaint();
            asking = onScreen(results.page);
            return isShown ? QString() : QStringLiteral("not shown");
        },
        [](QWidget *box) {
            QTest::mouseClick(qobject_cast<QMessageBox *>(box)->button(QMessageBox::Yes),
                              Qt::LeftButton);
        });
    results.expectComplete();
    expectMessage(QtDebugMsg, QStringLiteral("Cannot remove file: ") + gone);
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QVERIFY(!during.isNull());
    // The button that was pressed may look different by now; the table may not.
    const QRect table = results.table()->geometry().adjusted(2, 2, -2, -2);
    QVERIFY(asking.copy(table) != before.copy(table));
    QVERIFY(during.copy(table) == before.copy(table));
}

void tst_MovingScreen::rowsTurnRedAsTheyGo()
{
    // The row of a file that has gone is red on the screen before the next files move.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString first = tree.file(QStringLiteral("first"), "content");
    const QString gone = tree.path(QStringLiteral("gone"));
    results.scanned({{gone, first, tree.file(QStringLiteral("kept"), "content")}});
    QVERIFY(QTest::qWaitForWindowExposed(&results.window));
    const QModelIndex cell = results.rows()->index(1, DuplicatedFilesTableModel::SizeColumn);
    QCOMPARE(results.rows()->index(1, 2).data().toString(), first);
    const QPoint corner = results.table()->visualRect(cell).topLeft() + QPoint(2, 2);
    const auto colour = [&] {
        return onScreen(*results.table()->viewport()).pixelColor(corner);
    };
    const QColor red(QStringLiteral("#ff6961"));
    QTRY_COMPARE(colour(), QColor(Qt::white));
    QColor during;
    const Hook look(&onFileLeft, [&] { during = colour(); });
    expectMessage(QtDebugMsg, QStringLiteral("Cannot remove file: ") + gone);
    results.expectComplete();
    results.page.deleteSelectedFiles();
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(during, red);
}

TWINSIFT_TEST_MAIN(tst_MovingScreen)
#include "tst_MovingScreen.moc"
