// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "engine/Configuration.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/WindowDriver.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSet>
#include <QTimer>

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
    void memoryStaysLevel();

private:
    static int countFrom(const char *variable, int otherwise);
    void prepare(const QString &mode) const;
    // Waits until the groups of the running scan have arrived.
    bool waitForEnd();

    std::unique_ptr<TempTree> tree;
    std::unique_ptr<MainWindow> window;
    QList<QStringList> groups;
    int startedScans = 0;
    int finishedScans = 0;
};

namespace
{
constexpr int groupsCount = 40;
constexpr int copiesCount = 5;
constexpr int maxWaitMilliseconds = 60000;

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
} // namespace

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
    startedScans = 0;
    finishedScans = 0;
    connect(
        window->findChild<Model *>(),
        &Model::modelEvent,
        this,
        [this](const ModelEvent *event) {
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
        const QString mode = modes.at(i % modes.size());
        prepare(mode);
        window->onScanStart();
        QTimer::singleShot(random.bounded(25), window.get(), [this] { window->stopScan(); });
        QVERIFY2(waitForEnd(), qPrintable(mode));
        QVERIFY2(driver.shows(QStringLiteral("Finding duplicated files was completed!")),
                 qPrintable(mode));
        QVERIFY(driver.isEnabled(QStringLiteral("Scan Results")));
        for (const QStringList &group : qAsConst(groups)) {
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
