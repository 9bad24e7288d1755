// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/Configuration.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/WindowDriver.h"

#include <QAbstractButton>
#include <QFile>
#include <QRandomGenerator>
#include <QSet>
#include <QTimer>

#include <functional>
#include <utility>

#include <unistd.h>

/**
 * Many scans in one window, stopped at random moments and run to their end. TWINSIFT_STOPS and
 * TWINSIFT_SCANS set how many.
 */
class tst_RepeatedScans final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void stopsAtRandomMoments();
    void doubleStarts();
    void hastyPresses_data();
    void hastyPresses();
    void memoryStaysLevel();

private:
    using Press = std::function<bool(WindowDriver &, QAbstractButton *)>;

    static int countFrom(const char *variable, int otherwise);
    void prepare(const QString &mode) const;
    // Waits until the groups of the running scan have arrived.
    bool waitForEnd();

    std::unique_ptr<TempTree> tree;
    std::unique_ptr<MainWindow> window;
    QList<QStringList> groups;
    QList<int> eventTypes; // without the repeated ones of a phase
    int startedScans = 0;
    int finishedScans = 0;
};

namespace
{
constexpr int groupsCount = 40;
constexpr int copiesCount = 5;
constexpr int maxWaitMilliseconds = 60000;
constexpr int quietMilliseconds = 100;

QSet<QString> pathsOf(const QList<QStringList> &groups)
{
    QSet<QString> paths;
    for (const QStringList &group : groups) {
        for (const QString &path : group) {
            paths.insert(path);
        }
    }
    return paths;
}

// Megabytes of memory that the process holds, from the system's own account.
double residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    return file.readAll().split(' ').at(1).toDouble() * double(::sysconf(_SC_PAGESIZE)) / 1048576;
}

// As a window system delivers a key that is held: presses and releases that say so. All before the
// engine begins, because a release after the end of a scan starts another.
void holdKey(QWidget *widget, Qt::Key key)
{
    constexpr int repeatsCount = 20;
    QTest::keyPress(widget, key);
    for (int i = 0; i < repeatsCount; ++i) {
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, QStringLiteral(" "), true);
        QCoreApplication::sendEvent(widget, &release);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QStringLiteral(" "), true);
        QCoreApplication::sendEvent(widget, &press);
    }
    QTest::keyRelease(widget, key);
}

const QString backText = QStringLiteral("Scan Confurations");
} // namespace

Q_DECLARE_METATYPE(std::function<bool(WindowDriver &, QAbstractButton *)>)

int tst_RepeatedScans::countFrom(const char *variable, int otherwise)
{
    return qEnvironmentVariableIsSet(variable) ? qEnvironmentVariableIntValue(variable) : otherwise;
}

void tst_RepeatedScans::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
    for (int group = 0; group < groupsCount; ++group) {
        // Sizes differ from group to group, so that each is a bucket with one content.
        const QByteArray content(20000 + 100 * group, char('a' + group % 26));
        for (int copy = 0; copy < copiesCount; ++copy) {
            tree->file(QStringLiteral("%1/%2.txt").arg(copy).arg(group), content);
        }
    }
    window = std::make_unique<MainWindow>();
    window->show();
    groups.clear();
    eventTypes.clear();
    startedScans = 0;
    finishedScans = 0;
    connect(
        window->findChild<Model *>(),
        &Model::modelEvent,
        this,
        [this](const ModelEvent *event) {
            if (eventTypes.isEmpty() || eventTypes.last() != event->type) {
                eventTypes.append(event->type);
            }
            if (event->type == TypeFindAllFilesStartedEvent) {
                ++startedScans;
            } else if (event->type == TypeFindDuplicatedFilesFinishedEvent) {
                groups =
                    static_cast<const FindDuplicatedFilesFinishedEvent *>(event)->duplicatedFiles;
                ++finishedScans;
            }
        });
}

void tst_RepeatedScans::prepare(const QString &mode) const
{
    Configuration::instance()->folders = QStringList(tree->root());
    ScanProfile profile;
    profile.advancedMatch = mode != QLatin1String("bytes");
    profile.matchByteByByte = !profile.advancedMatch;
    profile.md5Hash = mode == QLatin1String("md5");
    profile.crcHash = mode == QLatin1String("crc");
    Configuration::instance()->scanProfile = profile;
}

bool tst_RepeatedScans::waitForEnd()
{
    return QTest::qWaitFor([this] { return !window->isScanRunning(); }, maxWaitMilliseconds);
}

void tst_RepeatedScans::stopsAtRandomMoments()
{
    // A stop at any moment ends on the completed page with a part of the groups; the next scan is
    // complete.
    const QStringList modes = {QStringLiteral("bytes"),
                               QStringLiteral("md5"),
                               QStringLiteral("sha1"),
                               QStringLiteral("crc")};
    ModalDriver boxes;
    WindowDriver driver(window.get(), &boxes);
    QRandomGenerator random(7);
    const int stops = countFrom("TWINSIFT_STOPS", 20);
    for (int i = 0; i < stops; ++i) {
        const QString &mode = modes.at(i % modes.size());
        prepare(mode);
        window->onScanStart();
        QTimer::singleShot(random.bounded(25), window.get(), [this] { window->stopScan(); });
        QVERIFY2(waitForEnd(), qPrintable(mode));
        QVERIFY2(driver.shows(QStringLiteral("Finding duplicated files was completed!")),
                 qPrintable(mode));
        QVERIFY(driver.isEnabled(QStringLiteral("Scan Results")));
        for (const QStringList &group : std::as_const(groups)) {
            // Of one content each, whatever the moment.
            QVERIFY(group.size() > 1 && group.size() <= copiesCount);
            const QString name = group.first().section(QLatin1Char('/'), -1);
            for (const QString &path : group) {
                QCOMPARE(path.section(QLatin1Char('/'), -1), name);
            }
        }
        if (i % 10 == 9) {
            // A stop that came too late for its scan must not reach the next one.
            const int before = startedScans;
            QTRY_COMPARE(
                window->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly).size(),
                0);
            window->onScanStart();
            QVERIFY(waitForEnd());
            QCOMPARE(startedScans, before + 1);
            QCOMPARE(groups.size(), groupsCount);
            QCOMPARE(pathsOf(groups).size(), groupsCount * copiesCount);
        }
    }
    QCOMPARE(startedScans, finishedScans);
}

void tst_RepeatedScans::doubleStarts()
{
    // Starts that arrive within a running scan never leave two scans interleaved: the last one is
    // whole, and each that began has ended.
    prepare(QStringLiteral("sha1"));
    for (int i = 0; i < 5; ++i) {
        window->onScanStart();
        window->onScanStart();
        QTRY_VERIFY_WITH_TIMEOUT(finishedScans > 0 && finishedScans == startedScans
                                     && groups.size() == groupsCount,
                                 maxWaitMilliseconds);
        QCOMPARE(pathsOf(groups).size(), groupsCount * copiesCount);
        groups.clear();
    }
}

void tst_RepeatedScans::hastyPresses_data()
{
    QTest::addColumn<Press>("press");

    QTest::newRow("a double click") << Press([](WindowDriver &, QAbstractButton *start) {
        QTest::mouseClick(start, Qt::LeftButton);
        QTest::mouseDClick(start, Qt::LeftButton); // the second press alone
        QTest::mouseRelease(start, Qt::LeftButton);
        return true;
    });
    QTest::newRow("many clicks") << Press([](WindowDriver &, QAbstractButton *start) {
        for (int i = 0; i < 20; ++i) {
            QTest::mouseClick(start, Qt::LeftButton);
        }
        return true;
    });
    QTest::newRow("a held space bar") << Press([](WindowDriver &, QAbstractButton *start) {
        start->setFocus();
        holdKey(start, Qt::Key_Space);
        return true;
    });
    QTest::newRow("a space bar that is hit again")
        << Press([](WindowDriver &, QAbstractButton *start) {
               start->setFocus();
               for (int i = 0; i < 20; ++i) {
                   QTest::keyClick(start, Qt::Key_Space);
               }
               return true;
           });
    QTest::newRow("the way back, and a click")
        << Press([](WindowDriver &driver, QAbstractButton *start) {
               for (int i = 0; i < 5; ++i) {
                   QTest::mouseClick(start, Qt::LeftButton);
                   // Nothing is processed in between: the engine has not begun.
                   if (!driver.click(backText) || driver.page() != 0) {
                       return false;
                   }
               }
               QTest::mouseClick(start, Qt::LeftButton);
               return driver.page() == 1;
           });
    QTest::newRow("the way back, and a held space bar")
        << Press([](WindowDriver &driver, QAbstractButton *start) {
               QTest::mouseClick(start, Qt::LeftButton);
               if (!driver.click(backText)) {
                   return false;
               }
               start->setFocus();
               holdKey(start, Qt::Key_Space);
               return true;
           });
}

void tst_RepeatedScans::hastyPresses()
{
    // However fast "Start scan" is pressed, one scan runs, from its first event to its last; the
    // next one does so, too.
    QFETCH(Press, press);
    ModalDriver boxes;
    WindowDriver driver(window.get(), &boxes);
    QVERIFY2(driver.chooseFolder(tree->root()) && driver.tickFolder(tree->root()),
             qPrintable(driver.problem()));
    QAbstractButton *start = nullptr;
    for (QAbstractButton *const button : window->findChildren<QAbstractButton *>()) {
        if (button->text() == QLatin1String("Start scan")) {
            start = button;
        }
    }
    QVERIFY(start != nullptr);
    const QList<int> wholeScan = {TypeFindAllFilesStartedEvent,
                                  TypeCountingFilesInFolderEvent,
                                  TypeFindAllFilesFinishedEvent,
                                  TypeFindDuplicatedFilesStartedEvent,
                                  TypeCountingFindFilesDuplicatedEvent,
                                  TypeFindDuplicatedFilesFinishedEvent};
    for (int scan = 1; scan <= 2; ++scan) {
        eventTypes.clear();
        QVERIFY2(press(driver, start), qPrintable(driver.problem()));
        QVERIFY(waitForEnd());
        // A start that was still on its way would begin now.
        QTRY_COMPARE(window->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly).size(),
                     0);
        QVERIFY(!QTest::qWaitFor([this, scan] { return startedScans > scan; }, quietMilliseconds));
        QCOMPARE(eventTypes, wholeScan);
        QCOMPARE(startedScans, scan);
        QCOMPARE(finishedScans, scan);
        QCOMPARE(pathsOf(groups).size(), groupsCount * copiesCount);
        window->setCurrentWidget(0);
    }
    QCOMPARE(boxes.failures(), QStringList());
}

void tst_RepeatedScans::memoryStaysLevel()
{
    // The memory held after many scans is that of the first ones, within a tenth.
#if defined(__SANITIZE_ADDRESS__)
    QSKIP("the sanitizer keeps freed memory");
#endif
    if (residentMegabytes() == 0) {
        QSKIP("the system does not tell the memory of a process");
    }
    const int scans = countFrom("TWINSIFT_SCANS", 100);
    double early = 0;
    for (int i = 0; i < scans; ++i) {
        prepare(i % 2 == 0 ? QStringLiteral("bytes") : QStringLiteral("md5"));
        window->onScanStart();
        QVERIFY(waitForEnd());
        if (i == 49) {
            early = residentMegabytes();
        }
    }
    const double late = residentMegabytes();
    QVERIFY2(late <= early * 1.1,
             qPrintable(QStringLiteral("%1 MB, then %2").arg(early).arg(late)));
}

TWINSIFT_TEST_MAIN(tst_RepeatedScans)
#include "tst_RepeatedScans.moc"
