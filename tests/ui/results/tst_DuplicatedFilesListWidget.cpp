// SPDX-License-Identifier: MIT
#include "app/ModelEvent.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/UrlCatcher.h"
#include "tests/ui/results/ResultsPage.h"
#include "ui/progress/ClickableLabel.h"
#include "ui/results/DuplicatedFilesTableModel.h"

#include <QApplication>
#include <QCursor>
#include <QHeaderView>
#include <QMenu>
#include <QPointer>
#include <QScopeGuard>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTableView>
#include <QUrl>

namespace
{
QList<QStringList> twoGroups()
{
    return {{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/c")},
            {QStringLiteral("/d"), QStringLiteral("/e")}};
}

QStringList manyFiles()
{
    QStringList group;
    for (int i = 0; i < 200; ++i) {
        group.append(QStringLiteral("/%1").arg(i));
    }
    return group;
}

int columnsWidth(const QTableView *table)
{
    int width = 0;
    for (int column = 0; column < 4; ++column) {
        width += table->columnWidth(column);
    }
    return width;
}
} // namespace

/** How the page looks, and what clicks, keys and menus do in it. Its file actions: ResultsActions. */
class tst_DuplicatedFilesListWidget final : public TestCase
{
    Q_OBJECT

private slots:
    void hasItsButtonsAroundTheTable();
    void buttonsShowPictureAndCaption_data();
    void buttonsShowPictureAndCaption();
    void setsUpTheTable();
    void checkBoxesStandInASquareInAnyFont();
    void fillsTheTableAtTheEndOfAScan();
    void ignoresAllOtherEvents();
    void anEmptyResultEmptiesTheTable();
    void clickInTheFirstColumnTicksAndSelects();
    void onlyTheUserScrollsSideways();
    void tableHasTheFocusWhenThePageIsShown();
    void clickElsewhereOnlySelects();
    void tickingKeepsTheScrollPosition();
    void spaceTicksTheCurrentRow();
    void tabsThroughTheControls();
    void selectAllAndUnselectAll();
    void goesBackToTheConfiguration();
    void widensThePathsToFillTheView();
    void columnsStandBesideTheScrollBar();
    void fillsTheViewWheneverThePageIsShown();
    void resizesTheColumnOfPathsForEachScan();
    void showsLargeSizesWhole();
    void paintsRedAndGreyRows();
    void hasNoMenuWithoutACurrentRow();
    void menuOfAFile();
    void menuOfAFileThatHasGone();
    void menuIsAboutTheCurrentRow();
    void menuGoesWhenItIsDismissed();
    void menuTicksAndUnticksAll();
    void opensTheFileOrItsFolder();
    void ignoresAMenuWhoseRowHasGone();
};

void tst_DuplicatedFilesListWidget::hasItsButtonsAroundTheTable()
{
    // Four buttons stand above the table, in two clusters, and one below it.
    const ResultsPage results;
    const auto left = [&](const char *caption) {
        return results.button(QString::fromLatin1(caption))->geometry().left();
    };
    const auto top = [&](const char *caption) {
        return results.button(QString::fromLatin1(caption))->geometry().top();
    };
    QCOMPARE(results.buttons().size(), 5);
    QVERIFY(left("Select All") < left("Unselect All"));
    QVERIFY(left("Save List") < left("Delete Selected Files"));
    const QRect unselect = results.button(QStringLiteral("Unselect All"))->geometry();
    QVERIFY(left("Save List") - unselect.right() > 100);
    for (const char *caption :
         {"Select All", "Unselect All", "Save List", "Delete Selected Files"}) {
        QVERIFY(top(caption) < results.table()->geometry().top());
    }
    QVERIFY(top("Scan Configuration") > results.table()->geometry().bottom());
    QVERIFY(left("Scan Configuration") < 50);
    QCOMPARE(results.page.parentWidget(), &results.window);
}

void tst_DuplicatedFilesListWidget::buttonsShowPictureAndCaption_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("picture");
    QTest::addColumn<int>("height");
    QTest::addColumn<bool>("isBold");
    const auto row = [](const char *caption, const char *picture, int height, bool isBold) {
        QTest::newRow(caption) << QString::fromLatin1(caption) << QString::fromLatin1(picture)
                               << height << isBold;
    };
    row("Select All", ":/content/actionCheck.png", 24, false);
    row("Unselect All", ":/content/actionUncheck.png", 24, false);
    row("Save List", ":/content/actionSave.png", 24, false);
    row("Delete Selected Files", ":/content/actionTrash.png", 24, false);
    row("Scan Configuration", ":/content/arrow_prev.png", 48, true);
}

void tst_DuplicatedFilesListWidget::buttonsShowPictureAndCaption()
{
    // Each button looks like a label with that picture, font and colour.
    QFETCH(QString, caption);
    QFETCH(QString, picture);
    QFETCH(int, height);
    QFETCH(bool, isBold);
    const ResultsPage results;
    const ClickableLabel *const button = results.button(caption);
    QVERIFY(button != nullptr);
    QCOMPARE(button->textColor, QColor(QStringLiteral("#696969")));
    QFont font;
    font.setWeight(isBold ? QFont::Bold : QFont::Normal);
    QWidget parent;
    ClickableLabel model(caption, &parent);
    const QPixmap whole(picture);
    QVERIFY(!whole.isNull());
    model.setPixmap(whole.scaledToHeight(height, Qt::SmoothTransformation));
    model.setTextFont(font);
    model.textColor = QColor(QStringLiteral("#696969"));
    model.resize(button->size());
    QCOMPARE(button->minimumSize(), model.minimumSize());
    const auto paint = [](const ClickableLabel *label) {
        QImage image(label->size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        const_cast<ClickableLabel *>(label)->render(&image,
                                                    QPoint(),
                                                    QRegion(),
                                                    QWidget::RenderFlags());
        return image;
    };
    QCOMPARE(paint(button), paint(&model));
}

void tst_DuplicatedFilesListWidget::setsUpTheTable()
{
    // The table selects whole rows, scrolls by pixels, hides row numbers and has tall rows.
    const ResultsPage results;
    const QTableView *const table = results.table();
    const int rowHeight =
        static_cast<int>(QTableView().verticalHeader()->defaultSectionSize() * 1.2);
    QVERIFY(results.rows() != nullptr);
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), rowHeight);
    QCOMPARE(table->columnWidth(0), rowHeight);
    QCOMPARE(table->horizontalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
    QCOMPARE(table->columnWidth(1), rowHeight * 3 / 2);
    QVERIFY(table->columnWidth(3) >= table->horizontalHeader()->sectionSizeHint(3));
    QCOMPARE(table->contextMenuPolicy(), Qt::CustomContextMenu);
    QCOMPARE(table->horizontalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QCOMPARE(table->verticalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QCOMPARE(table->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
}

void tst_DuplicatedFilesListWidget::checkBoxesStandInASquareInAnyFont()
{
    // A large font does not widen the column of check boxes.
    const QFont usual = QApplication::font();
    const auto restore = qScopeGuard([&] { QApplication::setFont(usual); });
    QFont large = usual;
    large.setPixelSize(40);
    QApplication::setFont(large);
    const ResultsPage results;
    const QTableView *const table = results.table();
    QCOMPARE(table->columnWidth(0), table->verticalHeader()->defaultSectionSize());
}

void tst_DuplicatedFilesListWidget::fillsTheTableAtTheEndOfAScan()
{
    // The groups become rows, ticked but for the top row of each group; the next scan replaces them.
    ResultsPage results;
    results.scanned(twoGroups());
    QCOMPARE(results.rows()->rowCount(), 5);
    QCOMPARE(results.rows()->index(0, 2).data().toString(), QStringLiteral("/c"));
    QCOMPARE(results.tickedPaths(),
             QStringList({QStringLiteral("/b"), QStringLiteral("/a"), QStringLiteral("/d")}));
    QCOMPARE(results.table()->rowHeight(0),
             results.table()->verticalHeader()->defaultSectionSize());
    results.scanned({{QStringLiteral("/x"), QStringLiteral("/y")}});
    QCOMPARE(results.tickedPaths(), QStringList(QStringLiteral("/x")));
    QCOMPARE(results.rows()->rowCount(), 2);
}

void tst_DuplicatedFilesListWidget::ignoresAllOtherEvents()
{
    // No other event changes the rows or the ticks.
    ResultsPage results;
    results.scanned(twoGroups());
    results.hub.emitModelEvent(CountingFilesInFolderEvent(1, QStringLiteral("/")));
    results.hub.emitModelEvent(CountingFindFilesDuplicatedEvent(1, 2, 3));
    results.hub.emitModelEvent(FindAllFilesStartedEvent());
    results.hub.emitModelEvent(FindAllFilesFinishedEvent());
    results.hub.emitModelEvent(FindDuplicatedFilesStartedEvent());
    results.hub.emitModelEvent(AnalyzingCurrentDuplicatedFileEvent(QStringLiteral("/a")));
    results.hub.emitModelEvent(FindDuplicatedFilesStoppedEvent());
    results.hub.emitModelEvent(GetUpdateVersionEvent(QString(), QString(), QString()));
    QCOMPARE(results.rows()->rowCount(), 5);
    QCOMPARE(results.tickedPaths().size(), 3);
}

void tst_DuplicatedFilesListWidget::anEmptyResultEmptiesTheTable()
{
    // A scan that has found nothing leaves no row of the last one.
    ResultsPage results;
    results.scanned(twoGroups());
    results.scanned({});
    QCOMPARE(results.rows()->rowCount(), 0);
}

void tst_DuplicatedFilesListWidget::onlyTheUserScrollsSideways()
{
    // Clicks and moves from row to row leave the horizontal position; the arrow keys change it.
    ResultsPage results;
    const QString longName = QLatin1Char('/') + QString(400, QLatin1Char('d'));
    results.scanned({{longName + QStringLiteral("/a"), longName + QStringLiteral("/b")}});
    QTableView *const table = results.table();
    QCOMPARE(table->textElideMode(), Qt::ElideMiddle);
    const QScrollBar *const bar = table->horizontalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    const auto click = [&](int row) {
        QTest::mouseClick(table->viewport(),
                          Qt::LeftButton,
                          Qt::NoModifier,
                          QPoint(200, table->rowViewportPosition(row) + 5));
    };
    click(1);
    QCOMPARE(table->currentIndex().row(), 1);
    QCOMPARE(table->currentIndex().column(), 2);
    QCOMPARE(bar->value(), 0);
    QTest::keyClick(table, Qt::Key_Up);
    QCOMPARE(table->currentIndex().row(), 0);
    QCOMPARE(bar->value(), 0);
    QTest::keyClick(table, Qt::Key_Right);
    const int moved = bar->value();
    QVERIFY(moved > 0);
    QTest::keyClick(table, Qt::Key_Down);
    QCOMPARE(table->currentIndex().row(), 1);
    QCOMPARE(bar->value(), moved);
    QTest::keyClick(table, Qt::Key_Left);
    QCOMPARE(bar->value(), 0);
}

void tst_DuplicatedFilesListWidget::tableHasTheFocusWhenThePageIsShown()
{
    // Whichever control had it before.
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    window.setCurrentWidget(2);
    QVERIFY(qobject_cast<QTableView *>(window.focusWidget()) != nullptr);
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    QVERIFY(qobject_cast<QTableView *>(window.focusWidget()) == nullptr);
    window.setCurrentWidget(0);
    window.setCurrentWidget(2);
    QVERIFY(qobject_cast<QTableView *>(window.focusWidget()) != nullptr);
}

void tst_DuplicatedFilesListWidget::clickInTheFirstColumnTicksAndSelects()
{
    // A click on a check box toggles its row and selects it, each time.
    ResultsPage results;
    results.scanned(twoGroups());
    results.clickCell(0, 0);
    QCOMPARE(results.tickedPaths().size(), 4);
    QCOMPARE(results.tickedPaths().first(), QStringLiteral("/c"));
    QCOMPARE(results.table()->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(results.table()->selectionModel()->selectedRows().first().row(), 0);
    QCOMPARE(results.table()->currentIndex().row(), 0);
    results.clickCell(0, 0);
    QCOMPARE(results.tickedPaths().size(), 3);
    results.clickCell(4, 0);
    QCOMPARE(results.tickedPaths(), QStringList({QStringLiteral("/b"), QStringLiteral("/a")}));
    QCOMPARE(results.table()->currentIndex().row(), 4);
}

void tst_DuplicatedFilesListWidget::clickElsewhereOnlySelects()
{
    // A click in any other column selects the whole row and leaves the ticks alone.
    ResultsPage results;
    results.scanned(twoGroups());
    for (int column = 1; column < 4; ++column) {
        results.clickCell(column, column);
        QCOMPARE(results.table()->currentIndex().row(), column);
        QCOMPARE(results.table()->selectionModel()->selectedRows().size(), 1);
    }
    QCOMPARE(results.tickedPaths().size(), 3);
}

void tst_DuplicatedFilesListWidget::tickingKeepsTheScrollPosition()
{
    // A tick far down the list does not scroll it.
    ResultsPage results;
    results.scanned({manyFiles()});
    QScrollBar *const bar = results.table()->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    bar->setValue(bar->maximum() / 2);
    const int before = bar->value();
    QVERIFY(before > 0);
    const int row = results.table()->rowAt(results.table()->viewport()->height() / 2);
    results.clickCell(row, 0);
    QCOMPARE(results.tickedPaths().size(), 198);
    QCOMPARE(bar->value(), before);
    QCOMPARE(results.table()->currentIndex().row(), row);
}

void tst_DuplicatedFilesListWidget::spaceTicksTheCurrentRow()
{
    // The table can be ticked without a mouse; without a current row nothing happens.
    ResultsPage results;
    results.scanned(twoGroups());
    QTest::keyClick(results.table(), Qt::Key_Space);
    QCOMPARE(results.tickedPaths().size(), 3);
    results.clickCell(0, 2);
    QTest::keyClick(results.table(), Qt::Key_Space);
    QCOMPARE(results.tickedPaths().size(), 4);
    QCOMPARE(results.table()->currentIndex().row(), 0);
    QTest::keyClick(results.table(), Qt::Key_Down);
    QTest::keyClick(results.table(), Qt::Key_Space);
    QCOMPARE(results.table()->currentIndex().row(), 1);
    QVERIFY(!results.tickedPaths().contains(QStringLiteral("/b")));
}

void tst_DuplicatedFilesListWidget::tabsThroughTheControls()
{
    // The focus goes from the actions over the table to the way back, and the same way back again.
    ResultsPage results;
    results.scanned(twoGroups());
    results.clickCell(1, 1);
    QApplication::setActiveWindow(&results.window);
    const QList<QWidget *> chain = {results.button(QStringLiteral("Select All")),
                                    results.button(QStringLiteral("Unselect All")),
                                    results.button(QStringLiteral("Save List")),
                                    results.button(QStringLiteral("Delete Selected Files")),
                                    results.table(),
                                    results.button(QStringLiteral("Scan Configuration"))};
    chain.first()->setFocus();
    for (int i = 1; i < chain.size(); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), chain.at(i));
    }
    for (auto i = chain.size() - 2; i >= 0; --i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget(), chain.at(i));
    }
    QCOMPARE(results.table()->accessibleName(), QStringLiteral("Duplicate files"));
}

void tst_DuplicatedFilesListWidget::selectAllAndUnselectAll()
{
    // The buttons tick every row, top rows too, and none; the current row is forgotten.
    ResultsPage results;
    results.scanned(twoGroups());
    results.clickCell(1, 1);
    results.press(QStringLiteral("Select All"));
    QCOMPARE(results.tickedPaths().size(), 5);
    QVERIFY(!results.table()->currentIndex().isValid());
    results.press(QStringLiteral("Unselect All"));
    QCOMPARE(results.tickedPaths(), QStringList());
}

void tst_DuplicatedFilesListWidget::goesBackToTheConfiguration()
{
    // The lower button shows the first page of the window.
    ResultsPage results;
    results.window.setCurrentWidget(2);
    QCOMPARE(results.pages()->currentIndex(), 2);
    results.press(QStringLiteral("Scan Configuration"));
    QCOMPARE(results.pages()->currentIndex(), 0);
}

void tst_DuplicatedFilesListWidget::widensThePathsToFillTheView()
{
    // A larger page widens the paths until the columns are as wide as the view; a smaller one
    // changes nothing.
    ResultsPage results;
    QTableView *const table = results.table();
    QCOMPARE(columnsWidth(table), table->width());
    const int others = table->columnWidth(0) + table->columnWidth(1) + table->columnWidth(3);
    results.page.resize(1100, 600);
    QCOMPARE(table->columnWidth(2), table->width() - others);
    const int before = table->columnWidth(2);
    results.page.resize(700, 600);
    QCOMPARE(table->columnWidth(2), before);
    QVERIFY(columnsWidth(table) > table->width());
}

void tst_DuplicatedFilesListWidget::columnsStandBesideTheScrollBar()
{
    // The vertical scroll bar covers no column and brings no horizontal one, whether it comes before
    // the page gets its size or after; when it goes, the columns fill the view again.
    ResultsPage results;
    QTableView *const table = results.table();
    const QScrollBar *const vertical = table->verticalScrollBar();
    results.scanned({manyFiles()});
    QTRY_VERIFY(vertical->isVisible());
    results.page.resize(1100, 600);
    QTRY_COMPARE(columnsWidth(table), table->width() - vertical->width());
    QVERIFY(!table->horizontalScrollBar()->isVisible());
    results.page.resize(1100, 200 * table->rowHeight(0) + 400);
    QTRY_VERIFY(!vertical->isVisible());
    QTRY_COMPARE(columnsWidth(table), table->width());
    QVERIFY(!table->horizontalScrollBar()->isVisible());
    results.page.resize(1100, 600);
    QTRY_COMPARE(columnsWidth(table), table->width() - vertical->width());
    QVERIFY(!table->horizontalScrollBar()->isVisible());
    // Columns that a hand or a smaller window makes too wide can be scrolled.
    table->setColumnWidth(1, table->columnWidth(1) + 50);
    QTRY_VERIFY(table->horizontalScrollBar()->isVisible());
    table->setColumnWidth(1, table->columnWidth(1) - 50);
    QTRY_VERIFY(!table->horizontalScrollBar()->isVisible());
    results.page.resize(900, 600);
    QTRY_VERIFY(table->horizontalScrollBar()->isVisible());
}

void tst_DuplicatedFilesListWidget::fillsTheViewWheneverThePageIsShown()
{
    // The groups of a second scan arrive while another page is shown; this one keeps its size, and
    // its columns are fitted when it is shown.
    ResultsPage results;
    results.page.hide();
    results.table()->setColumnWidth(DuplicatedFilesTableModel::FilepathColumn, 5000);
    results.table()->setColumnWidth(DuplicatedFilesTableModel::SizeColumn, 5);
    results.scanned(twoGroups());
    results.page.show();
    QTRY_COMPARE(columnsWidth(results.table()), results.table()->width());
}

void tst_DuplicatedFilesListWidget::resizesTheColumnOfPathsForEachScan()
{
    // The end of a scan fits the paths to what is shown; small sizes leave their column as it is.
    ResultsPage results;
    QTableView *const table = results.table();
    const int sizes = table->columnWidth(3);
    results.scanned(twoGroups());
    const int narrow = table->columnWidth(2);
    QVERIFY(narrow < 300);
    QVERIFY(narrow >= table->fontMetrics().horizontalAdvance(QStringLiteral("/a")) + 32);
    const QString longPath = QLatin1Char('/') + QString(150, QLatin1Char('m'));
    results.scanned({{longPath, longPath}});
    QVERIFY(table->columnWidth(2) > table->fontMetrics().horizontalAdvance(longPath));
    QCOMPARE(table->columnWidth(3), sizes);
}

void tst_DuplicatedFilesListWidget::showsLargeSizesWhole()
{
    // The column of sizes is as wide as the longest number in it, in bold where it is bold.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString large = tree.sparseFile(QStringLiteral("large"), qint64(900) << 30);
    results.scanned({{}, {large, large}});
    const QString size = results.rows()->index(1, 3).data().toString();
    QCOMPARE(size, QStringLiteral("943718400"));
    const QFontMetrics bold(results.rows()->index(1, 3).data(Qt::FontRole).value<QFont>());
    QVERIFY(results.table()->columnWidth(3) > bold.horizontalAdvance(size));
}

void tst_DuplicatedFilesListWidget::paintsRedAndGreyRows()
{
    // The rows on the screen are plain, grey by group, and red once their file has gone.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString gone = tree.file(QStringLiteral("c"));
    results.scanned({{tree.file(QStringLiteral("a"))}, {tree.file(QStringLiteral("b"))}, {gone}});
    QVERIFY(QFile::remove(gone));
    const QImage image = results.table()->viewport()->grab().toImage();
    const auto colorOf = [&](int row) {
        const QRect cell = results.table()->visualRect(results.rows()->index(row, 1));
        return image.pixelColor(cell.topLeft() + QPoint(2, 2));
    };
    QCOMPARE(colorOf(0), results.table()->palette().color(QPalette::Base));
    QCOMPARE(colorOf(1), QColor(QStringLiteral("#e9e9e4")));
    QCOMPARE(colorOf(2), QColor(QStringLiteral("#ff6961")));
}

void tst_DuplicatedFilesListWidget::hasNoMenuWithoutACurrentRow()
{
    // A right click below the rows opens nothing while no row is current.
    ResultsPage results;
    results.scanned(twoGroups());
    const QPoint below(10, results.table()->viewport()->height() - 10);
    QTest::mouseClick(results.table()->viewport(), Qt::RightButton, Qt::NoModifier, below);
    QVERIFY(results.contextMenu(below) == nullptr);
}

void tst_DuplicatedFilesListWidget::menuOfAFile()
{
    // The menu of a row has all entries, and opens at the mouse cursor wherever the click was.
    const TempTree tree(path(QString()));
    ResultsPage results;
    results.scanned({{tree.file(QStringLiteral("a"))}});
    results.clickCell(0, 2, Qt::RightButton);
    QCursor::setPos(200, 150);
    QMenu *const menu = results.contextMenu(QPoint(5, 5));
    QVERIFY(menu != nullptr);
    QCOMPARE(ResultsPage::texts(menu),
             QStringList({QStringLiteral("Open File"),
                          QStringLiteral("Open File Location"),
                          QStringLiteral("Delete Current File"),
                          QStringLiteral("-"),
                          QStringLiteral("Save List"),
                          QStringLiteral("-"),
                          QStringLiteral("Select All"),
                          QStringLiteral("Unselect All")}));
    QCOMPARE(menu->pos(), QCursor::pos());
    QCOMPARE(menu->parentWidget(), &results.page);
    menu->close();
}

void tst_DuplicatedFilesListWidget::menuOfAFileThatHasGone()
{
    // Once the file has gone its row offers only what needs no file.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString file = tree.file(QStringLiteral("a"));
    results.scanned({{file}});
    results.clickCell(0, 2, Qt::RightButton);
    QVERIFY(QFile::remove(file));
    QMenu *const menu = results.contextMenu();
    QVERIFY(menu != nullptr);
    QCOMPARE(ResultsPage::texts(menu),
             QStringList({QStringLiteral("Save List"),
                          QStringLiteral("-"),
                          QStringLiteral("Select All"),
                          QStringLiteral("Unselect All")}));
    menu->close();
}

void tst_DuplicatedFilesListWidget::menuIsAboutTheCurrentRow()
{
    // A right click below the rows opens the menu of the row that is current.
    const TempTree tree(path(QString()));
    ResultsPage results;
    results.scanned({{tree.file(QStringLiteral("a"))}});
    results.clickCell(0, 2);
    const QPoint below(10, results.table()->viewport()->height() - 10);
    QTest::mouseClick(results.table()->viewport(), Qt::RightButton, Qt::NoModifier, below);
    QMenu *const menu = results.contextMenu(below);
    QVERIFY(menu != nullptr);
    QCOMPARE(ResultsPage::texts(menu).size(), 8);
    menu->close();
}

void tst_DuplicatedFilesListWidget::menuGoesWhenItIsDismissed()
{
    // A menu that is closed without a choice is not kept.
    ResultsPage results;
    results.scanned(twoGroups());
    results.clickCell(0, 2);
    const QPointer<QMenu> menu = results.contextMenu();
    QVERIFY(menu != nullptr);
    QTest::keyClick(menu, Qt::Key_Escape);
    QTRY_VERIFY(menu.isNull());
    QCOMPARE(results.tickedPaths().size(), 3);
}

void tst_DuplicatedFilesListWidget::menuTicksAndUnticksAll()
{
    // The lower entries of the menu do what the buttons do, and the menu goes.
    ResultsPage results;
    results.scanned(twoGroups());
    results.clickCell(0, 2);
    results.choose(QStringLiteral("Select All"));
    QCOMPARE(results.tickedPaths().size(), 5);
    results.clickCell(0, 2);
    results.choose(QStringLiteral("Unselect All"));
    QCOMPARE(results.tickedPaths(), QStringList());
    QTRY_VERIFY(results.page.findChildren<QMenu *>().isEmpty());
}

void tst_DuplicatedFilesListWidget::opensTheFileOrItsFolder()
{
    // The desktop is handed the bare path as an address, in which "#" begins a fragment.
    const TempTree tree(path(QString()));
    ResultsPage results;
    const QString file = tree.file(QStringLiteral("folder/a#b.txt"));
    results.scanned({{file}});
    const UrlCatcher catcher(QStringList{QString()});
    results.clickCell(0, 2);
    results.choose(QStringLiteral("Open File"));
    results.choose(QStringLiteral("Open File Location"));
    const QList<QUrl> opened = catcher.urls();
    QCOMPARE(opened, QList<QUrl>({QUrl(file), QUrl(tree.path(QStringLiteral("folder")))}));
    QCOMPARE(opened.first().fragment(), QStringLiteral("b.txt"));
    QVERIFY(opened.first().scheme().isEmpty());
}

void tst_DuplicatedFilesListWidget::ignoresAMenuWhoseRowHasGone()
{
    // An entry that is chosen after the rows have been replaced by fewer does nothing.
    ResultsPage results;
    results.scanned(twoGroups());
    results.clickCell(4, 2);
    QMenu *const menu = results.contextMenu();
    QVERIFY(menu != nullptr);
    results.scanned({{QStringLiteral("/x"), QStringLiteral("/y")}});
    QAction *const selectAll = menu->actions().at(menu->actions().size() - 2);
    QCOMPARE(selectAll->text(), QStringLiteral("Select All"));
    QTest::mouseClick(menu,
                      Qt::LeftButton,
                      Qt::NoModifier,
                      menu->actionGeometry(selectAll).center());
    QCOMPARE(results.tickedPaths(), QStringList(QStringLiteral("/x")));
}

TWINSIFT_TEST_MAIN(tst_DuplicatedFilesListWidget)
#include "tst_DuplicatedFilesListWidget.moc"
