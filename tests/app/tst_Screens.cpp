// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/WindowDriver.h"
#include "ui/progress/ClickableLabel.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QStackedWidget>
#include <QTableView>
#include <QTreeView>

#include <memory>

/**
 * What a user of one screen can see and click. Runs under a window manager with a panel, once for
 * each size of screen, ratio and font that the list of tests names.
 */
class tst_Screens final : public TestCase
{
    Q_OBJECT

protected slots:
    void init() override;
    void cleanup() override;

private slots:
    void initTestCase();
    void everyControlOfEveryPage_data();
    void everyControlOfEveryPage();
    void maximizedWindow();
    void windowMovedPartlyOffTheScreen();
    void resizedWindow();
    void everyBox_data();
    void everyBox();
    void windowsBesideTheMainOne();
    void contextMenu();

private:
    QRect screen() const { return QGuiApplication::primaryScreen()->availableGeometry(); }
    /** Names of what is not wholly on the screen, one a line. */
    QString hiddenControls(const QWidget *window) const;
    bool isOnScreen(const QWidget *window) const;
    void showPage(const QString &name);
    void emitEvent(const ModelEvent &event) { window->findChild<Model *>()->emitModelEvent(event); }
    void keepPicture(const QString &name) const;

    std::unique_ptr<MainWindow> window;
    std::unique_ptr<ModalDriver> boxes;
    std::unique_ptr<WindowDriver> driver;
};

namespace
{
constexpr int fewestRows = 3;

const QStringList pageNames = {QStringLiteral("no folder yet"),
                               QStringLiteral("tree with its warning"),
                               QStringLiteral("scan that runs"),
                               QStringLiteral("scan that is done"),
                               QStringLiteral("results")};

// What a user reads or clicks; a control that is made of others is looked at as a whole.
bool isControl(const QWidget *widget)
{
    const bool isPart = qobject_cast<const QHeaderView *>(widget) != nullptr
        || qobject_cast<const QAbstractSpinBox *>(widget->parentWidget()) != nullptr
        || qobject_cast<const QComboBox *>(widget->parentWidget()) != nullptr;
    if (isPart) {
        return false;
    }
    const auto *const label = qobject_cast<const QLabel *>(widget);
    return (label != nullptr
            && (!label->text().isEmpty() || !label->pixmap(Qt::ReturnByValue).isNull()))
        || qobject_cast<const QAbstractButton *>(widget) != nullptr
        || qobject_cast<const ClickableLabel *>(widget) != nullptr
        || qobject_cast<const QAbstractSpinBox *>(widget) != nullptr
        || qobject_cast<const QComboBox *>(widget) != nullptr
        || qobject_cast<const QLineEdit *>(widget) != nullptr
        || qobject_cast<const QAbstractItemView *>(widget) != nullptr
        || qobject_cast<const QProgressBar *>(widget) != nullptr
        || qobject_cast<const QMenuBar *>(widget) != nullptr;
}

QString nameOf(const QWidget *widget)
{
    const auto *const button = qobject_cast<const QAbstractButton *>(widget);
    const auto *const label = qobject_cast<const QLabel *>(widget);
    QString name = widget->accessibleName();
    if (name.isEmpty() && button != nullptr) {
        name = button->text();
    } else if (name.isEmpty() && label != nullptr) {
        name = label->text();
    }
    return QStringLiteral("%1 \"%2\"").arg(QLatin1String(widget->metaObject()->className()), name);
}

bool canBeClicked(const QWidget *widget)
{
    const QRect inner = widget->rect().adjusted(2, 2, -2, -2);
    for (const QPoint &point :
         {inner.center(), inner.topLeft(), inner.bottomLeft(), inner.topRight()}) {
        const QWidget *const hit = QApplication::widgetAt(widget->mapToGlobal(point));
        if (hit == nullptr || (hit != widget && !widget->isAncestorOf(hit))) {
            return false;
        }
    }
    return true;
}

bool isTooSmall(const QWidget *widget)
{
    if (const auto *const view = qobject_cast<const QAbstractItemView *>(widget)) {
        return view->viewport()->height() < fewestRows * view->fontMetrics().height();
    }
    // The toolkit's own dialog makes some of its controls smaller than they ask for.
    if (qobject_cast<const QFileDialog *>(widget->window()) != nullptr) {
        return false;
    }
    const QSize needed = widget->minimumSizeHint().expandedTo(widget->minimumSize());
    const auto *const label = qobject_cast<const QLabel *>(widget);
    if (label != nullptr && label->wordWrap()) {
        return widget->height() < widget->heightForWidth(widget->width());
    }
    return widget->width() < needed.width() || widget->height() < needed.height();
}
} // namespace

void tst_Screens::initTestCase()
{
    // The panel takes its part of the screen as soon as the window manager runs.
    QTRY_VERIFY_WITH_TIMEOUT(screen() != QGuiApplication::primaryScreen()->geometry(), 30000);
}

void tst_Screens::init()
{
    TestCase::init();
    window = std::make_unique<MainWindow>();
    boxes = std::make_unique<ModalDriver>();
    driver = std::make_unique<WindowDriver>(window.get(), boxes.get());
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void tst_Screens::cleanup()
{
    driver.reset();
    boxes.reset();
    window.reset();
    TestCase::cleanup();
}

QString tst_Screens::hiddenControls(const QWidget *where) const
{
    QStringList hidden;
    for (const QWidget *const widget : where->findChildren<QWidget *>()) {
        if (!widget->isVisible() || widget->window() != where || !isControl(widget)) {
            continue;
        }
        const QRect place(widget->mapToGlobal(QPoint(0, 0)), widget->size());
        if (!screen().contains(place)) {
            hidden.append(nameOf(widget) + QStringLiteral(" is not on the screen"));
        } else if (isTooSmall(widget)) {
            hidden.append(nameOf(widget) + QStringLiteral(" is too small"));
        } else if (!canBeClicked(widget)) {
            hidden.append(nameOf(widget) + QStringLiteral(" is covered"));
        }
    }
    return hidden.join(QLatin1Char('\n'));
}

bool tst_Screens::isOnScreen(const QWidget *box) const
{
    return screen().contains(box->frameGeometry()) && hiddenControls(box).isEmpty();
}

// For whoever wants to look: TWINSIFT_PICTURES names a folder.
void tst_Screens::keepPicture(const QString &name) const
{
    const QString album = qEnvironmentVariable("TWINSIFT_PICTURES");
    if (!album.isEmpty()) {
        QDir().mkpath(album);
        QCoreApplication::processEvents();
        QGuiApplication::primaryScreen()->grabWindow(0).save(QDir(album).filePath(
            QString(name).replace(QLatin1Char(' '), QLatin1Char('-')) + QStringLiteral(".png")));
    }
}

void tst_Screens::showPage(const QString &name)
{
    const TempTree tree(path(QStringLiteral("files")));
    const auto page = pageNames.indexOf(name);
    if (page == 1) {
        const QString library = tree.folder(QStringLiteral("Library"));
        tree.folder(QStringLiteral("Music"));
        QVERIFY2(driver->chooseFolder(tree.root()) && driver->tickFolder(library),
                 qPrintable(driver->problem()));
        keepPicture(QStringLiteral("tick"));
        QVERIFY(driver->shows(QStringLiteral("system directories")));
    } else if (page == 2 || page == 3) {
        window->setCurrentWidget(1);
        emitEvent(FindAllFilesStartedEvent());
        emitEvent(CountingFilesInFolderEvent(54321, QString(200, QLatin1Char('d'))));
        emitEvent(FindDuplicatedFilesStartedEvent());
        emitEvent(CountingFindFilesDuplicatedEvent(12345, 2345, 1 << 30));
    }
    if (page == 3) {
        emitEvent(FindDuplicatedFilesFinishedEvent({}));
    } else if (page == 4) {
        QList<QStringList> groups;
        for (int i = 0; i < 100; ++i) {
            const QString number = QString::number(i);
            groups.append({tree.file(number + QStringLiteral("/one.txt"), "same"),
                           tree.file(number + QStringLiteral("/other.txt"), "same")});
        }
        emitEvent(FindDuplicatedFilesFinishedEvent(groups));
        window->setCurrentWidget(2);
    }
}

void tst_Screens::everyControlOfEveryPage_data()
{
    QTest::addColumn<QString>("page");
    for (const QString &name : pageNames) {
        QTest::newRow(qPrintable(name)) << name;
    }
}

void tst_Screens::everyControlOfEveryPage()
{
    // Whatever the screen's size, each control is on it, as large as it needs to be, uncovered.
    QFETCH(QString, page);
    showPage(page);
    const bool isShown = QTest::qWaitFor([this] { return hiddenControls(window.get()).isEmpty(); });
    keepPicture(page);
    QVERIFY2(isShown, qPrintable(hiddenControls(window.get())));
}

void tst_Screens::maximizedWindow()
{
    // A window that fills the screen by the user's will shows every control, too.
    window->showMaximized();
    QTRY_VERIFY(window->isMaximized());
    for (const int page : {0, 1, 2}) {
        window->setCurrentWidget(page);
        QTRY_COMPARE(hiddenControls(window.get()), QString());
    }
}

void tst_Screens::windowMovedPartlyOffTheScreen()
{
    // A part of the window that goes beyond an edge is left empty, and filled when it comes back.
    // Contents can give way in a window that is larger than they need.
    const int beyond = 60;
    const int needed = window->layout()->totalMinimumSize().width();
    window->resize(needed + 2 * beyond, window->height());
    QTRY_COMPARE(hiddenControls(window.get()), QString());
    const QRect before = window->contentsRect();
    const QPoint place = window->pos();
    window->move(screen().left() - beyond, screen().top());
    QTRY_VERIFY(window->x() < screen().left());
    QTRY_COMPARE(hiddenControls(window.get()), QString());
    window->move(screen().right() - window->width() + beyond, screen().top());
    QTRY_VERIFY(window->geometry().right() > screen().right());
    QTRY_COMPARE(hiddenControls(window.get()), QString());
    window->move(place);
    QTRY_COMPARE(window->contentsRect(), before);
}

void tst_Screens::resizedWindow()
{
    // However high the window is, its controls stay above the lower edge of the screen.
    window->resize(window->width(), screen().height() + 700);
    QTRY_VERIFY(window->height() > screen().height() + 600);
    QTRY_COMPARE(hiddenControls(window.get()), QString());
    const int bottom = window->contentsMargins().bottom();
    QVERIFY2(bottom > 600, qPrintable(QString::number(bottom)));
}

void tst_Screens::everyBox_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("button");

    QTest::newRow("no folder") << pageNames.at(0) << QStringLiteral("Start scan");
    QTest::newRow("choice of a folder") << pageNames.at(0) << QStringLiteral("Select folder...");
    QTest::newRow("stop") << pageNames.at(2) << QStringLiteral("Stop Searching");
    QTest::newRow("deletion") << pageNames.at(4) << QStringLiteral("Delete Selected Files");
    QTest::newRow("list") << pageNames.at(4) << QStringLiteral("Save List");
}

void tst_Screens::everyBox()
{
    // Boxes open where all of them, their frame included, is on the screen.
    QFETCH(QString, page);
    QFETCH(QString, button);
    showPage(page);
    const auto check = [this, button](QWidget *box) {
        const bool isShown = QTest::qWaitFor([&] { return isOnScreen(box); });
        keepPicture(QStringLiteral("box of ") + button);
        return isShown ? QString() : hiddenControls(box) + QStringLiteral(" in a box");
    };
    const auto refuse = [](QWidget *box) {
        QTest::keyClick(box, Qt::Key_Escape);
    };
    boxes->expect(button, check, refuse);
    if (button.startsWith(QLatin1String("Delete"))) {
        boxes->expect(button, check, refuse);
    }
    QVERIFY2(driver->click(button), qPrintable(driver->problem()));
    QCOMPARE(boxes->failures().join(QLatin1Char('\n')), QString());
}

void tst_Screens::windowsBesideTheMainOne()
{
    // The list of types, its editor and the about box fit the screen with all that is in them.
    allowMessages(QRegularExpression(QStringLiteral("^\"?(SEE|write)")));
    QVERIFY2(driver->click(QStringLiteral("Choose file types to include")),
             qPrintable(driver->problem()));
    QWidget *const types = driver->otherWindow("FileTypesWidget");
    QVERIFY(types != nullptr);
    QVERIFY(QTest::qWaitForWindowActive(types));
    QTRY_VERIFY2(isOnScreen(types), qPrintable(hiddenControls(types)));
    keepPicture(QStringLiteral("types"));
    QVERIFY(WindowDriver::clickIn(types, QStringLiteral("Add")));
    QWidget *const editor = driver->otherWindow("FileTypesEditWidget");
    QVERIFY(editor != nullptr);
    QVERIFY(QTest::qWaitForWindowActive(editor));
    QTRY_VERIFY2(isOnScreen(editor), qPrintable(hiddenControls(editor)));
    keepPicture(QStringLiteral("editor"));
    QVERIFY(WindowDriver::clickIn(editor, QStringLiteral("Cancel")));
    QVERIFY(WindowDriver::clickIn(types, QStringLiteral("Close")));

    window->showAboutDialog();
    QWidget *const about = driver->otherWindow("AboutWidget");
    QVERIFY(QTest::qWaitForWindowActive(about));
    QTRY_VERIFY2(isOnScreen(about), qPrintable(hiddenControls(about)));
    keepPicture(QStringLiteral("about"));
    about->close();
}

void tst_Screens::contextMenu()
{
    // The menu of a row opens on the screen, also from the lowest row that is shown.
    showPage(pageNames.at(4));
    QTRY_COMPARE(hiddenControls(window.get()), QString());
    const QWidget *const viewport = driver->table()->viewport();
    const QPoint lowest(viewport->width() / 2, viewport->height() - 5);
    QTest::mouseClick(driver->table()->viewport(), Qt::LeftButton, Qt::NoModifier, lowest);
    QCursor::setPos(viewport->mapToGlobal(lowest));
    QContextMenuEvent event(QContextMenuEvent::Mouse, lowest, viewport->mapToGlobal(lowest));
    QApplication::sendEvent(driver->table()->viewport(), &event);
    QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
    QWidget *const menu = QApplication::activePopupWidget();
    QTRY_VERIFY(screen().contains(menu->frameGeometry()));
    keepPicture(QStringLiteral("context menu"));
    menu->close();
}

TWINSIFT_TEST_MAIN(tst_Screens)
#include "tst_Screens.moc"
