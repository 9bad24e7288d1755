// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/WindowDriver.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QListWidget>
#include <QTableView>
#include <QTreeView>

#include <functional>

/**
 * The program as a user has it: the real window, driven by mouse and keys alone, from the choice
 * of a folder to the Trash and back to a second scan.
 */
class tst_WholeProgram final : public TestCase
{
    Q_OBJECT

private slots:
    void scanReviewTrashAndScanAgain_data();
    void scanReviewTrashAndScanAgain();
    void stopWithinAScan();
    void warningsBeforeAScan();
    void byKeysAlone();

private:
    using Setup = std::function<bool(WindowDriver &)>;

    static bool chooseTypes(WindowDriver &driver, const QString &button, const QStringList &rows);
    static bool setSize(WindowDriver &driver, const QString &limit, double value);
    void fillTree(const TempTree &tree) const;
    // Opens the window's folder and ticks it.
    static bool chooseAndTick(WindowDriver &driver, const QString &folder);
};

namespace
{
const QString startText = QStringLiteral("Start scan");
const QString completedText = QStringLiteral("completed");
const QString deleteWarning = QStringLiteral(
    "<b>Warning!<br><br>Deleting files may cause some applications to crash.<br></b><br>Before "
    "deleting, we recommend to you check the list of files to be deleted.");

void press(const QWidget *window, Qt::Key key)
{
    QTest::keyClick(window->focusWidget(), key);
}

// By the Tab key, past any other control.
bool tabTo(const QWidget *window, const QString &name)
{
    for (int i = 0; i < 40; ++i) {
        const QWidget *const focused = window->focusWidget();
        const auto *const button = qobject_cast<const QAbstractButton *>(focused);
        if (focused != nullptr
            && (focused->accessibleName() == name
                || (button != nullptr && button->text() == name))) {
            return true;
        }
        QTest::keyClick(const_cast<QWidget *>(focused != nullptr ? focused : window), Qt::Key_Tab);
    }
    return false;
}

// Whether the focused control looks different from what it is without the focus.
bool showsItsFocus(QWidget *window)
{
    // After a box it may still be on its way to be the active window again.
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window)) {
        return false;
    }
    QWidget *const focused = window->focusWidget();
    const QImage with = focused->grab().toImage();
    focused->clearFocus();
    const QImage without = focused->grab().toImage();
    focused->setFocus(Qt::TabFocusReason);
    return with != without;
}

QStringList namesOf(const QStringList &paths)
{
    QStringList names;
    for (const QString &path : paths) {
        names.append(QFileInfo(path).fileName());
    }
    return names;
}
} // namespace

Q_DECLARE_METATYPE(std::function<bool(WindowDriver &)>)

bool tst_WholeProgram::chooseAndTick(WindowDriver &driver, const QString &folder)
{
    return driver.chooseFolder(folder) && driver.tickFolder(folder)
        && driver.folderState(folder) == Qt::Checked;
}

// Presses the button, ticks the rows that begin with the names, closes the window.
bool tst_WholeProgram::chooseTypes(WindowDriver &driver,
                                   const QString &button,
                                   const QStringList &rows)
{
    if (!driver.click(button)) {
        return false;
    }
    QWidget *types = nullptr;
    if (!QTest::qWaitFor(
            [&] { return (types = driver.otherWindow("FileTypesWidget")) != nullptr; })) {
        return false;
    }
    auto *const list = types->findChild<QListWidget *>();
    for (const QString &row : rows) {
        for (int i = 0; i < list->count(); ++i) {
            if (list->item(i)->text().startsWith(row)) {
                list->scrollToItem(list->item(i));
                const QRect rect = list->visualItemRect(list->item(i));
                QTest::mouseClick(list->viewport(),
                                  Qt::LeftButton,
                                  Qt::NoModifier,
                                  QPoint(rect.left() + 10, rect.center().y()));
            }
        }
    }
    return WindowDriver::clickIn(types, QStringLiteral("Close"));
}

bool tst_WholeProgram::setSize(WindowDriver &driver, const QString &limit, double value)
{
    if (!driver.click(limit)) {
        return false;
    }
    // The one that the click has switched on.
    for (QDoubleSpinBox *const box : driver.tree()->window()->findChildren<QDoubleSpinBox *>()) {
        if (box->isEnabled() && box->value() == 0.0) {
            box->setFocus();
            box->selectAll();
            QTest::keyClicks(box, QString::number(value));
            QTest::keyClick(box, Qt::Key_Tab);
        }
    }
    return true;
}

void tst_WholeProgram::fillTree(const TempTree &tree) const
{
    tree.file(QStringLiteral("a.txt"), "one content");
    tree.file(QStringLiteral("b/a.txt"), "one content");
    tree.file(QStringLiteral("b/c.jpg"), "one content");
    tree.file(QStringLiteral("d.rtf"), QByteArray(3000, 'd'));
    tree.file(QStringLiteral("b/d.rtf"), QByteArray(3000, 'd'));
    tree.file(QStringLiteral("lonely.png"), "nobody else has this");
    tree.file(QStringLiteral("other.txt"), "ONE CONTENT");
}

void tst_WholeProgram::scanReviewTrashAndScanAgain_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<QStringList>("names"); // what the results show, from the top

    const QString a = QStringLiteral("a.txt");
    const QString c = QStringLiteral("c.jpg");
    const QString d = QStringLiteral("d.rtf");
    const auto advanced = [](const QString &hash) {
        return [hash](WindowDriver &driver) {
            return driver.click(QStringLiteral("Advanced Match")) && driver.click(hash);
        };
    };
    QTest::newRow("byte by byte") << Setup([](WindowDriver &) { return true; })
                                  << QStringList({a, a, c, d, d});
    QTest::newRow("same name") << Setup([](WindowDriver &driver) {
        return driver.click(QStringLiteral("Same File Name"));
    }) << QStringList({a, a, d, d});
    QTest::newRow("same extension") << Setup([](WindowDriver &driver) {
        return driver.click(QStringLiteral("Same File Extension"));
    }) << QStringList({a, a, d, d});
    QTest::newRow("MD5") << Setup(advanced(QStringLiteral("MD5 Hash")))
                         << QStringList({a, a, c, d, d});
    QTest::newRow("SHA-1") << Setup(advanced(QStringLiteral("SHA-1 Hash")))
                           << QStringList({a, a, c, d, d});
    QTest::newRow("CRC") << Setup(advanced(QStringLiteral("Cyclic Redundancy Check (CRC)")))
                         << QStringList({a, a, c, d, d});
    // The last mask of a chosen entry ends in a line feed and matches nothing: here "*.RTF".
    QTest::newRow("text files only, without the last mask") << Setup([](WindowDriver &driver) {
        return chooseTypes(driver,
                           QStringLiteral("Choose file types to include"),
                           {QStringLiteral("Any File"), QStringLiteral("Text Files")});
    }) << QStringList({a, a});
    QTest::newRow("without photos") << Setup([](WindowDriver &driver) {
        return chooseTypes(driver,
                           QStringLiteral("Choose file types to exclude"),
                           {QStringLiteral("Photo Images")});
    }) << QStringList({a, a, d, d});
    QTest::newRow("from 1 KB") << Setup([](WindowDriver &driver) {
        return setSize(driver, QStringLiteral("Minimum size:"), 1);
    }) << QStringList({d, d});
    QTest::newRow("up to 1 KB") << Setup([](WindowDriver &driver) {
        return setSize(driver, QStringLiteral("Maximum size:"), 1);
    }) << QStringList({a, a, c});
}

void tst_WholeProgram::scanReviewTrashAndScanAgain()
{
    // From the first click to the Trash: only what was ticked leaves, and nothing is found after.
    QFETCH(Setup, setup);
    QFETCH(QStringList, names);
    allowMessages(QRegularExpression(QStringLiteral("^\"?(SEE|write)")));
    const TempTree tree(path(QStringLiteral("tree")));
    fillTree(tree);
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    ModalDriver boxes;
    WindowDriver driver(&window, &boxes);

    QVERIFY2(chooseAndTick(driver, tree.root()), qPrintable(driver.problem()));
    QVERIFY2(setup(driver), qPrintable(driver.problem()));
    QVERIFY2(driver.click(startText) && driver.waitForPage(1)
                 && driver.waitUntilShown(completedText),
             qPrintable(driver.problem()));
    QVERIFY2(driver.click(QStringLiteral("Scan Results")), qPrintable(driver.problem()));
    QCOMPARE(driver.page(), 2);
    QStringList shown = namesOf(driver.column(2));
    shown.sort();
    QCOMPARE(shown, names);

    // The first row of each group stays, the others are ticked.
    const QStringList groups = driver.column(1);
    const QStringList paths = driver.column(2);
    const QString list = path(QStringLiteral("list.txt"));
    boxes.expectFileDialog(QStringLiteral("Save File"), list);
    boxes.expectMessageBox(QStringLiteral("File saved"),
                           QStringLiteral("File saving complete!"),
                           QMessageBox::Ok,
                           QMessageBox::Ok);
    QVERIFY2(driver.click(QStringLiteral("Save List")), qPrintable(driver.problem()));
    QCOMPARE(TempTree::read(list).count("\r\n"), paths.size());

    QStringList numbers = groups;
    numbers.removeDuplicates();
    const auto ticked = paths.size() - numbers.size();
    boxes.expectMessageBox(QStringLiteral("Warning"),
                           deleteWarning,
                           QMessageBox::Ok,
                           QMessageBox::Ok);
    boxes.expectMessageBox(
        QStringLiteral("Delete Duplicate Files"),
        QStringLiteral("Start moving %1 duplicate files to trash. Are you sure?").arg(ticked),
        QMessageBox::Yes | QMessageBox::No,
        QMessageBox::Yes);
    boxes.expectMessageBox(QStringLiteral("Complete!"),
                           QStringLiteral("Duplicated files was deleted!"),
                           QMessageBox::Ok,
                           QMessageBox::Ok);
    QVERIFY2(driver.click(QStringLiteral("Delete Selected Files")), qPrintable(driver.problem()));
    QCOMPARE(boxes.failures(), QStringList());
    for (int row = 0; row < paths.size(); ++row) {
        const bool firstOfGroup = row == 0 || groups.at(row) != groups.at(row - 1);
        QCOMPARE(QFileInfo::exists(paths.at(row)), firstOfGroup);
    }
    QVERIFY(QFileInfo::exists(tree.path(QStringLiteral("lonely.png"))));

    // Back, and once more: there is nothing left to find.
    QVERIFY2(driver.click(QStringLiteral("Scan Configuration")), qPrintable(driver.problem()));
    QCOMPARE(driver.page(), 0);
    QVERIFY2(driver.click(startText) && driver.waitUntilEnabled(QStringLiteral("Scan Results"))
                 && driver.click(QStringLiteral("Scan Results")),
             qPrintable(driver.problem()));
    QCOMPARE(driver.column(2), QStringList());
}

void tst_WholeProgram::stopWithinAScan()
{
    // "Stop Searching", confirmed, ends on the completed page; the next scan is a whole one.
    allowMessages(QRegularExpression(QStringLiteral("^\"?(SEE|write)")));
    const TempTree tree(path(QStringLiteral("tree")));
    for (int i = 0; i < 400; ++i) {
        tree.sparseFile(QStringLiteral("%1").arg(i), 32LL * 1024 * 1024);
    }
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    ModalDriver boxes;
    WindowDriver driver(&window, &boxes);
    QVERIFY2(chooseAndTick(driver, tree.root()), qPrintable(driver.problem()));
    QVERIFY2(driver.click(startText) && driver.waitUntilShown(QStringLiteral("Finding")),
             qPrintable(driver.problem()));
    boxes.expectMessageBox(QStringLiteral("Question"),
                           QStringLiteral("Do you want to stop the scanning?"),
                           QMessageBox::Yes | QMessageBox::No,
                           QMessageBox::Yes);
    QVERIFY2(driver.click(QStringLiteral("Stop Searching")), qPrintable(driver.problem()));
    QCOMPARE(boxes.failures(), QStringList());
    QVERIFY2(driver.waitUntilShown(completedText), qPrintable(driver.problem()));
    QVERIFY(driver.isEnabled(QStringLiteral("Scan Results")));
    QVERIFY(driver.column(2).size() < 400);
}

void tst_WholeProgram::warningsBeforeAScan()
{
    // A scan without a folder is refused with a word, and leaves page 0 as it is.
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    ModalDriver boxes;
    WindowDriver driver(&window, &boxes);
    boxes.expectMessageBox(QStringLiteral("Warning"),
                           QStringLiteral("You didn't select any folder"),
                           QMessageBox::Ok,
                           QMessageBox::Ok);
    QVERIFY2(driver.click(startText), qPrintable(driver.problem()));
    QCOMPARE(boxes.failures(), QStringList());
    QCOMPARE(driver.page(), 0);
}

void tst_WholeProgram::byKeysAlone()
{
    // Choose, tick, start, look, delete, go back: without a mouse, and one sees where the focus is.
    const TempTree tree(path(QStringLiteral("tree")));
    tree.file(QStringLiteral("a.txt"), "one content");
    tree.file(QStringLiteral("b.txt"), "one content");
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    ModalDriver boxes;
    WindowDriver driver(&window, &boxes);

    QVERIFY(tabTo(&window, QStringLiteral("Select folder...")));
    boxes.expectFileDialog(QStringLiteral("Choose Directory"), tree.root());
    press(&window, Qt::Key_Space);
    QCOMPARE(boxes.failures(), QStringList());
    QCOMPARE(window.focusWidget(), driver.tree());
    QVERIFY(showsItsFocus(&window));
    // A tick counts for the folders above as long as no other folder is loaded beside it.
    const QFileInfo above(QFileInfo(tree.root()).path());
    const auto *const folders = qobject_cast<QFileSystemModel *>(driver.tree()->model());
    QTRY_VERIFY(folders->rowCount(folders->index(above.path())) > 1);
    press(&window, Qt::Key_Space);
    QCOMPARE(driver.folderState(tree.root()), Qt::Checked);

    QVERIFY(tabTo(&window, startText));
    QVERIFY(showsItsFocus(&window));
    press(&window, Qt::Key_Space);
    QVERIFY2(driver.waitForPage(1) && driver.waitUntilShown(completedText),
             qPrintable(driver.problem()));
    QCOMPARE(window.focusWidget()->accessibleName(), QStringLiteral("Scan Results"));
    QVERIFY(showsItsFocus(&window));
    press(&window, Qt::Key_Space);
    QCOMPARE(driver.page(), 2);
    QCOMPARE(window.focusWidget(), driver.table());
    QVERIFY(showsItsFocus(&window));

    // From the second row, which is ticked, to the first.
    const QStringList paths = driver.column(2);
    QCOMPARE(paths.size(), 2);
    press(&window, Qt::Key_Home);
    press(&window, Qt::Key_Space);
    press(&window, Qt::Key_Down);
    press(&window, Qt::Key_Space);
    const auto answer = [&boxes](const QString &title, const QString &button) {
        boxes.expect(
            title,
            [=](QWidget *box) {
                const bool isThere = box->windowTitle() == title && tabTo(box, button);
                return isThere ? QString() : box->windowTitle();
            },
            [](QWidget *box) { press(box, Qt::Key_Space); });
    };
    answer(QStringLiteral("Warning"), QStringLiteral("OK"));
    answer(QStringLiteral("Delete Duplicate Files"), QStringLiteral("&Yes"));
    answer(QStringLiteral("Complete!"), QStringLiteral("OK"));
    QVERIFY(tabTo(&window, QStringLiteral("Delete Selected Files")));
    QVERIFY(showsItsFocus(&window));
    press(&window, Qt::Key_Space);
    QTRY_COMPARE(boxes.failures(), QStringList());
    QVERIFY(!QFileInfo::exists(paths.at(0)));
    QVERIFY(QFileInfo::exists(paths.at(1)));

    QVERIFY(tabTo(&window, QStringLiteral("Scan Configuration")));
    QVERIFY(showsItsFocus(&window));
    press(&window, Qt::Key_Space);
    QCOMPARE(driver.page(), 0);
}

TWINSIFT_TEST_MAIN(tst_WholeProgram)
#include "tst_WholeProgram.moc"
