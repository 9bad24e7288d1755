// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "tests/app/ContrastReader.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/WindowDriver.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QStyleFactory>
#include <QTableView>
#include <QToolTip>
#include <QTreeView>

#include <memory>

/**
 * Whether what the program shows can be read, measured in pictures of its windows. Runs once for each
 * theme of a desktop that the list of tests names; TWINSIFT_STYLE is the one that must be there.
 */
class tst_Themes final : public TestCase
{
    Q_OBJECT

protected slots:
    void init() override;
    void cleanup() override;

private slots:
    void initTestCase();
    void pages_data();
    void pages();
    void disabledTexts();
    void selectedRowsInAnInactiveWindow();
    void boxes_data();
    void boxes();
    void windowsBesideTheMainOne();
    void menusAndToolTips();
    void paletteChangedByTheDesktop();

private:
    void showPage(int page);
    void emitEvent(const ModelEvent &event) { window->findChild<Model *>()->emitModelEvent(event); }

    std::unique_ptr<MainWindow> window;
    std::unique_ptr<ModalDriver> modals;
    std::unique_ptr<WindowDriver> driver;
};

namespace
{
const QStringList pageNames = {QStringLiteral("configuration"),
                               QStringLiteral("tree"),
                               QStringLiteral("progress"),
                               QStringLiteral("results")};

// For whoever wants to look: TWINSIFT_PICTURES names a folder.
void keepPicture(QWidget *widget, const QString &name)
{
    const QString album = qEnvironmentVariable("TWINSIFT_PICTURES");
    if (!album.isEmpty()) {
        QDir().mkpath(album);
        widget->grab().save(QDir(album).filePath(name + QStringLiteral(".png")));
    }
}
} // namespace

void tst_Themes::initTestCase()
{
    const QString wanted = qEnvironmentVariable("TWINSIFT_STYLE");
    if (!wanted.isEmpty() && !QStyleFactory::keys().contains(wanted, Qt::CaseInsensitive)) {
        QSKIP(qPrintable(QStringLiteral("The style %1 is not installed").arg(wanted)));
    }
    // Some themes put their colours in place when the event loop runs first.
    QCoreApplication::processEvents();
    // Without a screen each generation of the toolkit has a font of another size. The strokes of a
    // small one are too thin to show their colour.
    QFont font = QApplication::font();
    font.setPointSize(12);
    font.setHintingPreference(QFont::PreferFullHinting);
    QApplication::setFont(font);
}

void tst_Themes::init()
{
    TestCase::init();
    allowMessages(QRegularExpression(QStringLiteral("^\"?(SEE|write)")));
    window = std::make_unique<MainWindow>();
    modals = std::make_unique<ModalDriver>();
    driver = std::make_unique<WindowDriver>(window.get(), modals.get());
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void tst_Themes::cleanup()
{
    driver.reset();
    modals.reset();
    window.reset();
    TestCase::cleanup();
}

void tst_Themes::showPage(int page)
{
    const TempTree tree(path(QStringLiteral("files")));
    if (page == 1) {
        const QString ticked = tree.folder(QStringLiteral("Library"));
        tree.folder(QStringLiteral("Music"));
        QVERIFY2(driver->chooseFolder(tree.root()) && driver->tickFolder(ticked),
                 qPrintable(driver->problem()));
    } else if (page == 2) {
        window->setCurrentWidget(1);
        emitEvent(FindAllFilesStartedEvent());
        emitEvent(CountingFilesInFolderEvent(100, QStringLiteral("/a")));
        emitEvent(FindDuplicatedFilesStartedEvent());
        emitEvent(CountingFindFilesDuplicatedEvent(10, 5, 1 << 20));
    } else if (page == 3) {
        QList<QStringList> groups;
        for (const char *name : {"a", "b", "c"}) {
            groups.append({tree.file(QLatin1String(name) + QStringLiteral("/one.txt"), "same"),
                           tree.file(QLatin1String(name) + QStringLiteral("/two.txt"), "same")});
        }
        // A file that has gone has a row of another colour.
        groups.append({tree.path(QStringLiteral("gone")), tree.path(QStringLiteral("gone, too"))});
        emitEvent(FindDuplicatedFilesFinishedEvent(groups));
        window->setCurrentWidget(2);
        driver->table()->selectRow(1);
    }
}

void tst_Themes::pages_data()
{
    QTest::addColumn<int>("page");
    for (int page = 0; page < pageNames.size(); ++page) {
        QTest::newRow(qPrintable(pageNames.at(page))) << page;
    }
}

void tst_Themes::pages()
{
    // Every text and tick of a page stands out from what is behind it.
    QFETCH(int, page);
    showPage(page);
    QCoreApplication::processEvents();
    keepPicture(window.get(), pageNames.at(page));
    QCOMPARE(ContrastReader::problemsOf(window.get()), QString());
    if (page == 2) {
        emitEvent(FindDuplicatedFilesFinishedEvent({}));
        QCOMPARE(ContrastReader::problemsOf(window.get()), QString());
    }
}

void tst_Themes::disabledTexts()
{
    // A control that cannot be used now can be read all the same.
    showPage(1);
    for (QWidget *const widget : window->findChildren<QWidget *>()) {
        if (auto *const box = qobject_cast<QCheckBox *>(widget)) {
            box->setChecked(true);
        }
    }
    window->centralWidget()->setEnabled(false);
    window->menuBar()->setEnabled(false);
    keepPicture(window.get(), QStringLiteral("disabled"));
    QCOMPARE(ContrastReader::problemsOf(window.get()), QString());
}

void tst_Themes::selectedRowsInAnInactiveWindow()
{
    // A selected row can be read while another window is in front.
    showPage(3);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QCOMPARE(ContrastReader::problemsOf(window.get()), QString());
}

void tst_Themes::boxes_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("button");

    QTest::newRow("no folder") << 0 << QStringLiteral("Start scan");
    QTest::newRow("choice of a folder") << 0 << QStringLiteral("Select folder...");
    QTest::newRow("stop") << 2 << QStringLiteral("Stop Searching");
    QTest::newRow("deletion") << 3 << QStringLiteral("Delete Selected Files");
    QTest::newRow("list") << 3 << QStringLiteral("Save List");
}

void tst_Themes::boxes()
{
    // What a box asks or says, and its buttons.
    QFETCH(int, page);
    QFETCH(QString, button);
    showPage(page);
    const auto check = [button](QWidget *box) {
        keepPicture(box, QStringLiteral("box of ") + button);
        return ContrastReader::problemsOf(box);
    };
    const auto refuse = [](QWidget *box) {
        QTest::keyClick(box, Qt::Key_Escape);
    };
    modals->expect(button, check, refuse);
    if (button.startsWith(QLatin1String("Delete"))) {
        modals->expect(button, check, refuse);
    }
    QVERIFY2(driver->click(button), qPrintable(driver->problem()));
    QCOMPARE(modals->failures().join(QLatin1Char('\n')), QString());
}

void tst_Themes::windowsBesideTheMainOne()
{
    // The list of types with its ticks and disabled buttons, its editor, and the about box.
    QVERIFY(driver->click(QStringLiteral("Choose file types to include")));
    QWidget *const types = driver->otherWindow("FileTypesWidget");
    QVERIFY(types != nullptr);
    keepPicture(types, QStringLiteral("types"));
    QCOMPARE(ContrastReader::problemsOf(types), QString());
    QVERIFY(WindowDriver::clickIn(types, QStringLiteral("Add")));
    QWidget *const editor = driver->otherWindow("FileTypesEditWidget");
    QVERIFY(editor != nullptr);
    QTest::keyClicks(editor->findChild<QLineEdit *>(), QStringLiteral("Name"));
    QCOMPARE(ContrastReader::problemsOf(editor), QString());
    QVERIFY(WindowDriver::clickIn(editor, QStringLiteral("Cancel")));
    QVERIFY(WindowDriver::clickIn(types, QStringLiteral("Close")));
    window->showAboutDialog();
    QWidget *const about = driver->otherWindow("AboutWidget");
    keepPicture(about, QStringLiteral("about"));
    QCOMPARE(ContrastReader::problemsOf(about), QString());
    about->close();
}

void tst_Themes::menusAndToolTips()
{
    // Each entry of the menu, chosen or not, and the text of a tool tip.
    auto *const menu = window->menuBar()->actions().constFirst()->menu();
    menu->popup(window->mapToGlobal(QPoint(10, 10)));
    QTRY_VERIFY(menu->isVisible());
    menu->setActiveAction(menu->actions().constFirst());
    keepPicture(menu, QStringLiteral("menu"));
    ContrastReader reader(menu);
    for (QAction *const action : menu->actions()) {
        if (!action->isSeparator()) {
            reader.measure(menu,
                           menu->actionGeometry(action),
                           action->text(),
                           ContrastReader::enough);
        }
    }
    QCOMPARE(reader.textsRead(), 4);
    QCOMPARE(reader.problems(), QString());
    menu->close();

    QToolTip::showText(window->mapToGlobal(QPoint(100, 100)), QStringLiteral("A tool tip"));
    QWidget *tip = nullptr;
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QTipLabel")) {
            tip = widget;
        }
    }
    QVERIFY(tip != nullptr);
    keepPicture(tip, QStringLiteral("tool tip"));
    ContrastReader tipReader(tip);
    tipReader.measure(tip,
                      tip->rect().adjusted(2, 2, -2, -2),
                      QStringLiteral("tip"),
                      ContrastReader::enough);
    QCOMPARE(tipReader.textsRead(), 1);
    QCOMPARE(tipReader.problems(), QString());
    QToolTip::hideText();
}

void tst_Themes::paletteChangedByTheDesktop()
{
    // A theme that comes later, with the window open, leaves the texts as they are.
    showPage(1);
    QPalette dark(QColor(40, 40, 40), QColor(30, 30, 30));
    QApplication::setPalette(dark);
    QTRY_COMPARE(QGuiApplication::palette().color(QPalette::Base), QColor(Qt::white));
    // Qt 6 hands it to the widgets with the next pass of the event loop.
    QTRY_COMPARE(window->palette().color(QPalette::WindowText), QColor(Qt::black));
    QCOMPARE(ContrastReader::problemsOf(window.get()), QString());
}

TWINSIFT_TEST_MAIN(tst_Themes)
#include "tst_Themes.moc"
