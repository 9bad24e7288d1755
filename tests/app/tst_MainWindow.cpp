// SPDX-License-Identifier: MIT
#include "app/Controller.h"
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "app/Product.h"
#include "engine/Configuration.h"
#include "engine/FileFinderEngine.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/UrlCatcher.h"
#include "tests/support/WindowDriver.h"
#include "ui/config/ScanConfigurationWidget.h"
#include "ui/progress/AboutWidget.h"
#include "ui/progress/ProgressWidget.h"
#include "ui/progress/StatusBarWidget.h"
#include "ui/progress/WidgetAnalyzeWaiting.h"
#include "ui/results/DuplicatedFilesListWidget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QPixmap>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QStackedWidget>
#include <QTableView>
#include <QThread>
#include <QTimer>

namespace
{
/** Notes which of the window's heirs are deleted on the GUI thread, in their order. */
class DeletionRecorder final : public QObject
{
public:
    DeletionRecorder() { qApp->installEventFilter(this); }

    QStringList deleted;

    bool eventFilter(QObject *object, QEvent *event) override
    {
        const QString name = QLatin1String(object->metaObject()->className());
        if (event->type() == QEvent::DeferredDelete
            && (name == QLatin1String("QThread") || name == QLatin1String("FileFinderEngine"))) {
            deleted.append(name);
        }
        return false;
    }
};

/** Counts the calls that are delivered to an engine on the GUI thread. */
class CallRecorder final : public QObject
{
public:
    CallRecorder() { qApp->installEventFilter(this); }

    int calls = 0;

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::MetaCall && object->thread() == thread()
            && qobject_cast<FileFinderEngine *>(object) != nullptr) {
            ++calls;
        }
        return false;
    }
};

/** Notes the addresses that the network is asked for; the toolkit looks for a proxy to each. */
class AddressRecorder final : public QNetworkProxyFactory
{
public:
    explicit AddressRecorder(QStringList *addresses)
        : asked(addresses)
    {
    }

    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        asked->append(query.url().toString());
        return {QNetworkProxy(QNetworkProxy::NoProxy)};
    }

private:
    QStringList *asked;
};
} // namespace

class tst_MainWindow final : public TestCase
{
    Q_OBJECT

private slots:
    void slotsInDeclaredOrder();
    void freshStart();
    void startButtonIsLarge();
    void stopLeavesThePageAsItIs();
    void pagesInOrder();
    void eventsInTheOrderOfThePages();
    void header();
    void versionLine();
    void menuActions();
    void blackTexts();
    void whiteGround();
    void scanStartShowsPageOneBeforeTheEngineBegins();
    void scanRunsOnAThreadOfItsOwn();
    void stoppedScanReportsItsGroups();
    void setCurrentWidgetChangesThePage();
    void newerVersion_data();
    void newerVersion();
    void yesOpensThePage();
    void otherEventsAreIgnored();
    void aboutBox();
    void homepage();
    void feedbackFallsBackToTheContactPage();
    void exitEndsTheProgram();
    void closingEndsTheProgramBesideOtherWindows();
    void checksForUpdates();
    void otherActionsDoNothing();
    void threadAndEngineGoWithTheWindow();
    void leavingEndsARunningScan();
    void severalWindows();
    void startOnItsWayIsForgotten();

private:
    static Model *modelOf(const MainWindow &window) { return window.findChild<Model *>(); }
    static QStackedWidget *pages(const MainWindow &window);
    static QMenu *menuOf(const MainWindow &window);
    static void chooseInMenu(MainWindow &window, const QString &text);
    static void prepareScan(const QStringList &folders);
};

QStackedWidget *tst_MainWindow::pages(const MainWindow &window)
{
    return window.centralWidget()->findChild<QStackedWidget *>(QString(),
                                                               Qt::FindDirectChildrenOnly);
}

QMenu *tst_MainWindow::menuOf(const MainWindow &window)
{
    return window.menuBar()->actions().constFirst()->menu();
}

// By mouse, as a user does.
void tst_MainWindow::chooseInMenu(MainWindow &window, const QString &text)
{
    QMenuBar *const bar = window.menuBar();
    QTest::mouseClick(bar,
                      Qt::LeftButton,
                      Qt::NoModifier,
                      bar->actionGeometry(bar->actions().constFirst()).center());
    QMenu *const menu = menuOf(window);
    QTRY_VERIFY(menu->isVisible());
    for (QAction *const action : menu->actions()) {
        if (action->text() == text) {
            QTest::mouseClick(menu,
                              Qt::LeftButton,
                              Qt::NoModifier,
                              menu->actionGeometry(action).center());
        }
    }
}

void tst_MainWindow::prepareScan(const QStringList &folders)
{
    Configuration::instance()->folders = folders;
    Configuration::instance()->scanProfile = ScanProfile();
}

void tst_MainWindow::slotsInDeclaredOrder()
{
    // The window has two slots and no signal of its own.
    const QMetaObject &meta = MainWindow::staticMetaObject;
    QList<QByteArray> names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        names.append(meta.method(i).methodSignature());
    }
    QCOMPARE(names,
             QList<QByteArray>({"onModelEvent(const ModelEvent*)", "onMenuClicked(QAction*)"}));
}

void tst_MainWindow::freshStart()
{
    // A new window shows page 0, has no title of its own and at least its designed size.
    Configuration::instance()->nameFilters.clear();
    MainWindow window;
    window.show();
    QCOMPARE(pages(window)->currentIndex(), 0);
    QCOMPARE(window.windowTitle(), QString());
    QCOMPARE(window.minimumSize(), QSize(1024, 1280) / qRound(qApp->devicePixelRatio()));
    QVERIFY(!window.windowIcon().isNull());
    QCOMPARE(Configuration::instance()->nameFilters, QStringList({QStringLiteral("*.*")}));
}

void tst_MainWindow::startButtonIsLarge()
{
    // Half the width and an eighth of the height that a window has before it gets a size.
    const MainWindow window;
    for (const QPushButton *const button : window.findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String("Start scan")) {
            QCOMPARE(button->minimumSize(), QSize(320, 60));
            return;
        }
    }
    QFAIL("there is no such button");
}

void tst_MainWindow::stopLeavesThePageAsItIs()
{
    // Until the groups come, the page of the progress shows what it showed before the stop.
    MainWindow window;
    window.setCurrentWidget(1);
    modelOf(window)->emitModelEvent(FindAllFilesStartedEvent());
    modelOf(window)->emitModelEvent(CountingFilesInFolderEvent(7, QStringLiteral("/a")));
    modelOf(window)->emitModelEvent(FindDuplicatedFilesStartedEvent());
    modelOf(window)->emitModelEvent(CountingFindFilesDuplicatedEvent(5, 3, 1 << 22));
    const auto texts = [&window] {
        QStringList all;
        for (const QLabel *const label :
             window.findChild<WidgetAnalyzeWaiting *>()->findChildren<QLabel *>()) {
            all.append(label->text());
        }
        return all;
    };
    const QStringList before = texts();
    QVERIFY(before.contains(QStringLiteral("<H1>3</H1>")));
    window.stopScan();
    QCOMPARE(texts(), before);
    QCOMPARE(pages(window)->currentIndex(), 1);
}

void tst_MainWindow::pagesInOrder()
{
    // The pages stand at their fixed indexes.
    const MainWindow window;
    QCOMPARE(pages(window)->count(), 3);
    QVERIFY(qobject_cast<ScanConfigurationWidget *>(pages(window)->widget(0)) != nullptr);
    QVERIFY(qobject_cast<WidgetAnalyzeWaiting *>(pages(window)->widget(1)) != nullptr);
    QVERIFY(qobject_cast<DuplicatedFilesListWidget *>(pages(window)->widget(2)) != nullptr);
}

void tst_MainWindow::eventsInTheOrderOfThePages()
{
    // The window sees an event first, then the counters, the progress page and the results page.
    MainWindow window;
    const auto *const counter = window.findChild<ProgressWidget *>()->findChild<QLabel *>(
        QStringLiteral("labelFoundDuplicates"));
    const auto *const progress = window.findChild<WidgetAnalyzeWaiting *>();
    const auto *const title = progress->findChild<QLabel *>(QStringLiteral("titleLabel"));
    const auto *const bar = progress->findChild<QProgressBar *>();
    const auto *const rows =
        window.findChild<DuplicatedFilesListWidget *>()->findChild<QTableView *>()->model();

    QString counterAtThePage;
    connect(bar, &QProgressBar::valueChanged, this, [&](int value) {
        if (value == 3) {
            counterAtThePage = counter->text();
        }
    });
    modelOf(window)->emitModelEvent(CountingFilesInFolderEvent(5, QStringLiteral("/a")));
    modelOf(window)->emitModelEvent(FindDuplicatedFilesStartedEvent());
    modelOf(window)->emitModelEvent(CountingFindFilesDuplicatedEvent(3, 2, 1));
    QCOMPARE(counterAtThePage, QStringLiteral("<H1>2</H1>"));

    bool windowKnewAtThePage = false;
    connect(bar, &QProgressBar::valueChanged, this, [&](int value) {
        if (value == 1) {
            windowKnewAtThePage = !window.isScanRunning();
        }
    });
    QString titleAtTheResults;
    connect(rows, &QAbstractItemModel::modelReset, this, [&] {
        titleAtTheResults = title->text();
    });
    prepareScan({});
    window.onScanStart();
    QVERIFY(window.isScanRunning());
    QTRY_VERIFY_WITH_TIMEOUT(!titleAtTheResults.isEmpty(), 30000);
    QCOMPARE(titleAtTheResults, QStringLiteral("<h1>Finding duplicated files was completed!<h1>"));
    QVERIFY(windowKnewAtThePage);
}

void tst_MainWindow::header()
{
    // The logo stands on top, at two thirds of its own height.
    const MainWindow window;
    const QPixmap picture(QStringLiteral(":/content/logo.png"));
    QVERIFY(!picture.isNull());
    const QList<QLabel *> labels =
        window.centralWidget()->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(labels.size(), 1);
    QCOMPARE(labels.constFirst()->pixmap(Qt::ReturnByValue).height(), int(picture.height() / 1.5));
}

void tst_MainWindow::versionLine()
{
    // The status bar shows version, build and a link to the homepage.
    const MainWindow window;
    const auto *const bar = window.findChild<StatusBarWidget *>();
    QVERIFY(bar != nullptr);
    QStringList texts;
    for (const QLabel *const label : bar->findChildren<QLabel *>()) {
        texts.append(label->text());
    }
    QVERIFY(texts.contains(
        QStringLiteral("1.2.3 Build 211117 <a href=\"%1\">%2</a>")
            .arg(QLatin1String(Product::homepage), QLatin1String(Product::homepageShortForm))));
}

void tst_MainWindow::menuActions()
{
    // The one menu holds the five entries, with a separator before the last.
    const MainWindow window;
    QCOMPARE(window.menuBar()->actions().size(), 1);
    QCOMPARE(menuOf(window)->title(), QStringLiteral("Menu"));
    QStringList texts;
    for (const QAction *const action : menuOf(window)->actions()) {
        texts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    QCOMPARE(texts,
             QStringList({QStringLiteral("About"),
                          QStringLiteral("Homepage"),
                          QStringLiteral("Feedback"),
                          QStringLiteral("-"),
                          QStringLiteral("Exit")}));
}

void tst_MainWindow::blackTexts()
{
    // Texts are black in every colour group, whatever the desktop's palette says.
    const MainWindow window;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(QGuiApplication::palette().brush(group, QPalette::WindowText), QBrush(Qt::black));
        QCOMPARE(QGuiApplication::palette().brush(group, QPalette::Text), QBrush(Qt::black));
    }
}

void tst_MainWindow::whiteGround()
{
    // The window's own ground is white to its edges.
    MainWindow window;
    window.show();
    const QImage image = window.grab().toImage();
    for (const QPoint &corner : {QPoint(0, image.height() - 1), image.rect().bottomRight()}) {
        QCOMPARE(image.pixelColor(corner), QColor(Qt::white));
    }
}

void tst_MainWindow::scanStartShowsPageOneBeforeTheEngineBegins()
{
    // A start shows page 1 at once; the engine begins 10 ms later.
    MainWindow window;
    QElapsedTimer timer;
    QList<qint64> times;
    connect(modelOf(window), &Model::modelEvent, this, [&] { times.append(timer.elapsed()); });
    prepareScan({});
    timer.start();
    window.onScanStart();
    QCOMPARE(pages(window)->currentIndex(), 1);
    QVERIFY(times.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(times.size(), 4, 30000);
    QVERIFY2(times.constFirst() >= 10, qPrintable(QString::number(times.constFirst())));
}

void tst_MainWindow::scanRunsOnAThreadOfItsOwn()
{
    // The engine works elsewhere; its events arrive on the GUI thread, in the order of a scan.
    const TempTree tree(path(QStringLiteral("tree")));
    tree.file(QStringLiteral("a"), "same");
    tree.file(QStringLiteral("b"), "same");
    MainWindow window;
    QList<int> types;
    QList<QStringList> groups;
    connect(modelOf(window), &Model::modelEvent, this, [&](const ModelEvent *event) {
        QCOMPARE(QThread::currentThread(), qApp->thread());
        types.append(event->type);
        if (event->type == TypeFindDuplicatedFilesFinishedEvent) {
            groups = static_cast<const FindDuplicatedFilesFinishedEvent *>(event)->duplicatedFiles;
        }
    });
    prepareScan({tree.root()});
    window.onScanStart();
    QTRY_VERIFY_WITH_TIMEOUT(types.contains(TypeFindDuplicatedFilesFinishedEvent), 30000);
    QCOMPARE(types, QList<int>({2, 0, 3, 4, 1, 6}));
    QCOMPARE(
        groups,
        QList<QStringList>({{tree.path(QStringLiteral("a")), tree.path(QStringLiteral("b"))}}));
}

void tst_MainWindow::stoppedScanReportsItsGroups()
{
    // A stop ends a scan that would run for long; what the pages see is the end of a scan.
    const TempTree tree(path(QStringLiteral("tree")));
    for (int i = 0; i < 200; ++i) {
        tree.sparseFile(QStringLiteral("%1").arg(i), 64LL * 1024 * 1024);
    }
    MainWindow window;
    QList<int> types;
    connect(modelOf(window), &Model::modelEvent, this, [&](const ModelEvent *event) {
        types.append(event->type);
    });
    prepareScan({tree.root()});
    Configuration::instance()->scanProfile.advancedMatch = true;
    window.onScanStart();
    QTRY_VERIFY_WITH_TIMEOUT(types.contains(TypeCountingFindFilesDuplicatedEvent), 30000);
    window.stopScan();
    QTRY_VERIFY_WITH_TIMEOUT(types.contains(TypeFindDuplicatedFilesFinishedEvent), 30000);
    QVERIFY(types.count(TypeCountingFindFilesDuplicatedEvent) < 200);
    QVERIFY(!types.contains(TypeFindDuplicatedFilesStoppedEvent));
}

void tst_MainWindow::setCurrentWidgetChangesThePage()
{
    // The pages change each other by their index.
    MainWindow window;
    for (const int page : {2, 1, 0}) {
        window.setCurrentWidget(page);
        QCOMPARE(pages(window)->currentIndex(), page);
    }
}

void tst_MainWindow::newerVersion_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("asks");

    QTest::newRow("the same") << QStringLiteral("1.2.3") << false;
    QTest::newRow("older") << QStringLiteral("1.2.2") << false;
    QTest::newRow("newer") << QStringLiteral("1.2.4") << true;
    QTest::newRow("fewer digits") << QStringLiteral("1.3") << false;
    QTest::newRow("more digits") << QStringLiteral("1.2.10") << true;
    QTest::newRow("one character, as the check delivers it") << QStringLiteral("9") << false;
    QTest::newRow("no number") << QStringLiteral("x.y.z") << false;
    QTest::newRow("none") << QString() << false;
}

void tst_MainWindow::newerVersion()
{
    // Only a strictly greater number, the points taken out, asks the user.
    QFETCH(QString, version);
    QFETCH(bool, asks);
    MainWindow window;
    ModalDriver driver;
    const UrlCatcher urls({QStringLiteral("https")});
    if (asks) {
        driver.expectMessageBox(QStringLiteral("Updates"),
                                QStringLiteral("New version is avialable! Go to website?"),
                                QMessageBox::Yes | QMessageBox::No,
                                QMessageBox::No);
    }
    modelOf(window)->emitModelEvent(
        GetUpdateVersionEvent(version, QStringLiteral("."), QStringLiteral("https://a.example/")));
    QCOMPARE(driver.failures(), QStringList());
    QCOMPARE(urls.opened(), QStringList());
}

void tst_MainWindow::yesOpensThePage()
{
    // Yes opens the page that the event names.
    MainWindow window;
    ModalDriver driver;
    const UrlCatcher urls({QStringLiteral("https")});
    driver.expectMessageBox(QStringLiteral("Updates"),
                            QStringLiteral("New version is avialable! Go to website?"),
                            QMessageBox::Yes | QMessageBox::No,
                            QMessageBox::Yes);
    modelOf(window)->emitModelEvent(GetUpdateVersionEvent(QStringLiteral("1.2.4"),
                                                          QStringLiteral("."),
                                                          QStringLiteral("https://a.example/b")));
    QCOMPARE(driver.failures(), QStringList());
    QCOMPARE(urls.opened(), QStringList({QStringLiteral("https://a.example/b")}));
}

void tst_MainWindow::otherEventsAreIgnored()
{
    // Events that are no news of a version neither ask nor change the page.
    MainWindow window;
    ModalDriver driver;
    window.setCurrentWidget(2);
    const CountingFilesInFolderEvent files(1, QStringLiteral("/a"));
    const CountingFindFilesDuplicatedEvent duplicates(1, 2, 3);
    const FindAllFilesStartedEvent started;
    const FindAllFilesFinishedEvent finished;
    const FindDuplicatedFilesStartedEvent groupingStarted;
    const AnalyzingCurrentDuplicatedFileEvent file(QStringLiteral("/a/1"));
    const FindDuplicatedFilesFinishedEvent groupingFinished({});
    const FindDuplicatedFilesStoppedEvent stopped;
    const QList<const ModelEvent *> events = {&files,
                                              &duplicates,
                                              &started,
                                              &finished,
                                              &groupingStarted,
                                              &file,
                                              &groupingFinished,
                                              &stopped};
    for (const ModelEvent *const event : events) {
        window.onModelEvent(event);
        QCOMPARE(pages(window)->currentIndex(), 2);
    }
    QCOMPARE(driver.failures(), QStringList());
}

void tst_MainWindow::aboutBox()
{
    // "About" opens a box beside the window, which deletes itself when it is closed.
    MainWindow window;
    window.show();
    chooseInMenu(window, QStringLiteral("About"));
    QPointer<AboutWidget> about;
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        if (auto *const found = qobject_cast<AboutWidget *>(widget)) {
            about = found;
        }
    }
    QVERIFY(!about.isNull());
    QVERIFY(about->isVisible() && !about->isModal() && about->parentWidget() == nullptr);
    about->close();
    QTRY_VERIFY(about.isNull());
}

void tst_MainWindow::homepage()
{
    // "Homepage" opens the product's page in the browser.
    MainWindow window;
    window.show();
    const UrlCatcher urls({QStringLiteral("https")});
    chooseInMenu(window, QStringLiteral("Homepage"));
    QCOMPARE(urls.opened(), QStringList({QString::fromLatin1(Product::homepage)}));
}

void tst_MainWindow::feedbackFallsBackToTheContactPage()
{
    // "Feedback" writes a mail; where no program takes one, it opens the contact page instead.
    MainWindow window;
    window.show();
    {
        const UrlCatcher both({QStringLiteral("mailto"), QStringLiteral("https")});
        chooseInMenu(window, QStringLiteral("Feedback"));
        QCOMPARE(both.opened(), QStringList({QString::fromLatin1(Product::supportMail)}));
    }
    const UrlCatcher onlyPages({QStringLiteral("https")});
    chooseInMenu(window, QStringLiteral("Feedback"));
    QCOMPARE(onlyPages.opened(), QStringList({QString::fromLatin1(Product::contactPage)}));
}

void tst_MainWindow::closingEndsTheProgramBesideOtherWindows()
{
    // Neither the about box nor a list of file types keeps the program alive, and the list goes when
    // its frame is closed.
    allowMessages(QRegularExpression(QStringLiteral("^SEE ")));
    MainWindow window;
    window.show();
    window.showAboutDialog();
    ModalDriver boxes;
    WindowDriver driver(&window, &boxes);
    QVERIFY(driver.click(QStringLiteral("Choose file types to include")));
    const QPointer<QWidget> types = driver.otherWindow("FileTypesWidget");
    const QPointer<QWidget> about = driver.otherWindow("AboutWidget");
    QVERIFY(!types.isNull() && !about.isNull());
    QTimer::singleShot(0, &window, [&window] { window.close(); });
    QTimer::singleShot(30000, &window, [] { QCoreApplication::exit(1); });
    QCOMPARE(QApplication::exec(), 0);
    for (const QPointer<QWidget> &other : {types, about}) {
        if (!other.isNull()) {
            other->close();
        }
        QTRY_VERIFY(other.isNull());
    }
}

void tst_MainWindow::exitEndsTheProgram()
{
    // "Exit" ends the event loop with status 0.
    MainWindow window;
    window.show();
    QTimer::singleShot(0, &window, [&window] { chooseInMenu(window, QStringLiteral("Exit")); });
    QCOMPARE(QApplication::exec(), 0);
}

void tst_MainWindow::checksForUpdates()
{
    // The update file is asked for at the start, and again for the text "Check Updates", which the
    // menu does not offer. Neither check says a word.
    QStringList asked;
    QNetworkProxyFactory::setApplicationProxyFactory(new AddressRecorder(&asked));
    const auto forget =
        qScopeGuard([] { QNetworkProxyFactory::setApplicationProxyFactory(nullptr); });
    const QString address = QString::fromLatin1(Product::updateFile);
    MainWindow window;
    ModalDriver driver;
    QCOMPARE(asked, QStringList(address));
    QAction action(QStringLiteral("Check Updates"));
    window.onMenuClicked(&action);
    QCOMPARE(asked, QStringList({address, address}));
    QCOMPARE(driver.failures(), QStringList());
}

void tst_MainWindow::otherActionsDoNothing()
{
    // Texts are compared with their case; any other one does nothing.
    MainWindow window;
    ModalDriver driver;
    const UrlCatcher urls({QStringLiteral("https"), QStringLiteral("mailto")});
    const auto windows = QApplication::topLevelWidgets().size();
    for (const char *const text : {"about", "HOMEPAGE", "&Exit", "", "Help"}) {
        QAction action(QString::fromLatin1(text));
        window.onMenuClicked(&action);
    }
    QCOMPARE(urls.opened(), QStringList());
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
    QCOMPARE(driver.failures(), QStringList());
}

void tst_MainWindow::threadAndEngineGoWithTheWindow()
{
    // Window, thread, engine: each is deleted after the one before it.
    // Nothing of the windows before.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    DeletionRecorder recorder;
    {
        MainWindow window;
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(recorder.deleted,
                 QStringList({QStringLiteral("QThread"), QStringLiteral("FileFinderEngine")}));
}

void tst_MainWindow::leavingEndsARunningScan()
{
    // A window that is destroyed within a scan ends it, and returns.
    const TempTree tree(path(QStringLiteral("tree")));
    for (int i = 0; i < 100; ++i) {
        tree.sparseFile(QStringLiteral("%1").arg(i), 256LL * 1024 * 1024);
    }
    auto window = std::make_unique<MainWindow>();
    int events = 0;
    connect(modelOf(*window), &Model::modelEvent, this, [&events] { ++events; });
    prepareScan({tree.root()});
    window->onScanStart();
    QTRY_VERIFY_WITH_TIMEOUT(events >= 4, 30000);
    window.reset();
    QCoreApplication::processEvents();
}

void tst_MainWindow::severalWindows()
{
    // Windows made and destroyed one after another, idle or with a start on its way.
    for (int i = 0; i < 10; ++i) {
        MainWindow window;
        window.show();
        prepareScan({path(QString())});
        if (i % 2 == 0) {
            window.onScanStart();
        }
        QCoreApplication::processEvents();
    }
}

void tst_MainWindow::startOnItsWayIsForgotten()
{
    // A start that the worker has not seen when its window goes is not run on the GUI thread.
    // This dispatcher of the toolkit looks at its end before it looks at what has been posted.
    qputenv("QT_NO_GLIB", "1");
    const auto restore = qScopeGuard([] { qunsetenv("QT_NO_GLIB"); });
    const CallRecorder recorder;
    prepareScan({});
    for (int i = 0; i < 40; ++i) {
        auto window = std::make_unique<MainWindow>();
        window->onScanStart();
        auto *const timer = window->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(timer != nullptr);
        connect(timer, &QTimer::timeout, this, [&window] { window.reset(); });
        QTRY_VERIFY(window == nullptr);
        QCoreApplication::processEvents();
    }
    QCOMPARE(recorder.calls, 0);
}

TWINSIFT_TEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
