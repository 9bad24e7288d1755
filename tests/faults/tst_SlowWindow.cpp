// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "engine/Background.h"
#include "tests/faults/FaultShim.h"
#include "tests/faults/Scan.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/WindowDriver.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QMutex>
#include <QScopeGuard>
#include <QThread>
#include <QTimer>
#include <QWaitCondition>

#include <atomic>
#include <memory>

/** The window while a scan hangs in a call to a file system that does not answer. */
class tst_SlowWindow final : public TestCase
{
    Q_OBJECT

private slots:
    void windowGoesOnWhileACallIsHeld_data();
    void windowGoesOnWhileACallIsHeld();

private:
    static void tryTheWindow(MainWindow *window, WindowDriver *driver);
    static void pressStop(MainWindow *window, WindowDriver *driver, ModalDriver *boxes);
};

namespace
{
constexpr int folderCount = 60;
constexpr int filesInFolder = 5;
// Far enough from the start for the scan to be under way, and far from its end.
constexpr long heldCall = 7;
constexpr long maxOpensAfterStop = 1;

/** Holds one call of a kind on what lies below a folder, until it is opened. */
class Gate final
{
    Q_DISABLE_COPY(Gate)

public:
    Gate(const QString &folder, FaultShim::Kind watchedKind)
        : place(QFile::encodeName(folder))
        , kind(watchedKind)
    {
        FaultShim::watch(place.constData());
        FaultShim::setHook(hook, this);
    }
    ~Gate() { FaultShim::setHook(nullptr, nullptr); }

    bool isHolding()
    {
        const QMutexLocker lock(&mutex);
        return holding;
    }
    /** What the engine has opened since its call was held. */
    long opensSince() const { return opens; }
    void open()
    {
        const QMutexLocker lock(&mutex);
        isOpen = true;
        opened.wakeAll();
    }

private:
    static void hook(FaultShim::Kind kind, const char *path, long number, void *context)
    {
        Q_UNUSED(path)
        Q_UNUSED(number)
        auto *const gate = static_cast<Gate *>(context);
        if (kind == gate->kind && QThread::currentThread() != qApp->thread()) {
            gate->pass();
        } else if (kind == FaultShim::Open && QThread::currentThread() == gate->engine) {
            ++gate->opens;
        }
    }
    void pass()
    {
        const QMutexLocker lock(&mutex);
        if (++calls != heldCall) {
            return;
        }
        engine = QThread::currentThread();
        holding = true;
        while (!isOpen) {
            opened.wait(&mutex);
        }
        holding = false;
    }

    QByteArray place;
    FaultShim::Kind kind;
    QMutex mutex;
    QWaitCondition opened;
    std::atomic<QThread *> engine{nullptr};
    std::atomic<long> opens{0};
    long calls = 0;
    bool holding = false;
    bool isOpen = false;
};

/** Counts what a widget is told to paint. */
class PaintCounter final : public QObject
{
public:
    explicit PaintCounter(QWidget *widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
    int count = 0;
};

void fill(const TempTree &tree)
{
    for (int i = 0; i < folderCount * filesInFolder; ++i) {
        tree.file(QStringLiteral("inner/%1/%2").arg(i / filesInFolder).arg(i),
                  QByteArray(100, static_cast<char>(i / 2 % 128)));
    }
}

bool chooseMode(WindowDriver *driver, int mode)
{
    if (mode == Scan::ByteByByte) {
        return true;
    }
    const char *const names[] = {"", "MD5 Hash", "SHA-1 Hash", "Cyclic Redundancy Check (CRC)"};
    return driver->click(QStringLiteral("Advanced Match"))
        && driver->click(QLatin1String(names[mode]));
}

int timersOf(const MainWindow *window)
{
    return static_cast<int>(
        window->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly).size());
}
} // namespace

// Paints, shows its about box, and leads from page 0 back to the scan. The button that leads a user to
// page 0 is hidden while a scan runs.
void tst_SlowWindow::tryTheWindow(MainWindow *window, WindowDriver *driver)
{
    PaintCounter paints(window);
    window->update();
    QTRY_VERIFY(paints.count > 0);
    for (QAction *const action : window->menuBar()->actions().constFirst()->menu()->actions()) {
        if (action->text() == QStringLiteral("About")) {
            action->trigger();
        }
    }
    QTRY_VERIFY(driver->otherWindow("AboutWidget") != nullptr);
    driver->otherWindow("AboutWidget")->close();
    QTRY_VERIFY(driver->otherWindow("AboutWidget") == nullptr);
    QVERIFY(!driver->isEnabled(QStringLiteral("Scan Confurations")));
    window->setCurrentWidget(0);
    QCOMPARE(driver->page(), 0);
    QVERIFY2(driver->click(QStringLiteral("Start scan")), qPrintable(driver->problem()));
    QCOMPARE(driver->page(), 1);
}

// Until the stop is on its way to the engine.
void tst_SlowWindow::pressStop(MainWindow *window, WindowDriver *driver, ModalDriver *boxes)
{
    const QString button = QStringLiteral("Stop Searching");
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        boxes->expectMessageBox(QStringLiteral("Question"),
                                QStringLiteral("Do you want to stop the scanning?"),
                                QMessageBox::Yes | QMessageBox::No,
                                answer);
    }
    const int timers = timersOf(window);
    QVERIFY2(driver->click(button) && driver->click(button), qPrintable(driver->problem()));
    QCOMPARE(boxes->failures(), QStringList());
    QTRY_COMPARE(timersOf(window), timers);
}

void tst_SlowWindow::windowGoesOnWhileACallIsHeld_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("title");
    const QString enumeration = QStringLiteral("Analyzing...");
    const QString grouping = QStringLiteral("Finding duplicated files...");
    QTest::newRow("listing a folder")
        << int(Scan::ByteByByte) << int(FaultShim::List) << enumeration;
    QTest::newRow("reading, byte by byte")
        << int(Scan::ByteByByte) << int(FaultShim::Read) << grouping;
    QTest::newRow("reading for an MD5") << int(Scan::Md5) << int(FaultShim::Read) << grouping;
    QTest::newRow("reading for a CRC") << int(Scan::Crc) << int(FaultShim::Read) << grouping;
}

void tst_SlowWindow::windowGoesOnWhileACallIsHeld()
{
    // While a call of the scan does not return the window paints, opens and answers boxes and takes
    // the stop, which ends the scan at once, and what it has found is shown.
    QFETCH(int, mode);
    QFETCH(int, kind);
    QFETCH(QString, title);
    allowMessages(QRegularExpression(QStringLiteral("^\"?(SEE|write)")));
    const TempTree tree(path(QStringLiteral("tree")));
    fill(tree);
    std::unique_ptr<Gate> gate; // outlives the window, whose engine it holds
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    ModalDriver boxes;
    WindowDriver driver(&window, &boxes);
    QVERIFY2(driver.chooseFolder(tree.root()) && driver.tickFolder(tree.root())
                 && chooseMode(&driver, mode),
             qPrintable(driver.problem()));
    gate = std::make_unique<Gate>(tree.path(QStringLiteral("inner")),
                                  static_cast<FaultShim::Kind>(kind));
    const auto release = qScopeGuard([&] { gate->open(); });
    QVERIFY2(driver.click(QStringLiteral("Start scan")), qPrintable(driver.problem()));
    QTRY_VERIFY_WITH_TIMEOUT(gate->isHolding(), WindowDriver::maxWaitMilliseconds);
    QVERIFY2(driver.waitUntilShown(title), qPrintable(driver.problem()));

    tryTheWindow(&window, &driver);
    if (!QTest::currentTestFailed()) {
        pressStop(&window, &driver, &boxes);
    }
    QVERIFY(!QTest::currentTestFailed());
    QVERIFY2(driver.waitUntilShown(QStringLiteral("completed")), qPrintable(driver.problem()));
    QVERIFY(gate->isHolding());
    // The threads that were not held may finish the file that they have in hand.
    const long opens = gate->opensSince();
    gate->open();
    QVERIFY(Background::waitForDone(WindowDriver::maxWaitMilliseconds));
    const long more = gate->opensSince() - opens;
    QVERIFY2(more <= maxOpensAfterStop, qPrintable(QString::number(more)));
    QVERIFY2(driver.click(QStringLiteral("Scan Results")), qPrintable(driver.problem()));
    QCOMPARE(driver.page(), 2);
    QVERIFY(driver.column(2).size() < folderCount * filesInFolder / 2);
}

TWINSIFT_TEST_MAIN(tst_SlowWindow)
#include "tst_SlowWindow.moc"
