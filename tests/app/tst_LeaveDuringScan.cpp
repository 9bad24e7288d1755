// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "engine/Configuration.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QRandomGenerator>
#include <QTimer>

/**
 * Leaves the program in the middle of scans, each in a process of its own, by the window's frame
 * and by "Exit" in turn. TWINSIFT_LEAVINGS sets how often, in all.
 */
class tst_LeaveDuringScan final : public TestCase
{
    Q_OBJECT

private slots:
    void endsWithStatusZero_data();
    void endsWithStatusZero();
};

namespace
{
constexpr int defaultLeavings = 24;
constexpr int maxDelayMilliseconds = 900;
constexpr int maxRunMilliseconds = 60000;

ScanProfile profileOf(const QString &mode)
{
    ScanProfile profile;
    profile.includeMasks = QStringList(QStringLiteral("*.*"));
    profile.advancedMatch = mode != QLatin1String("bytes");
    profile.matchByteByByte = !profile.advancedMatch;
    profile.md5Hash = mode == QLatin1String("md5");
    profile.crcHash = mode == QLatin1String("crc");
    return profile;
}

void leave(MainWindow &window, const QString &way)
{
    if (way == QLatin1String("close")) {
        window.close();
        return;
    }
    const QList<QMenu *> menus = window.menuBar()->findChildren<QMenu *>();
    for (QAction *const action : menus.constFirst()->actions()) {
        if (action->text() == QLatin1String("Exit")) {
            action->trigger();
        }
    }
}

// The process that leaves: --leave MODE WAY DELAY FOLDER...
int leavingProcess(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    MainWindow window;
    window.show();
    Configuration::instance()->folders = arguments.mid(5);
    Configuration::instance()->scanProfile = profileOf(arguments.at(2));
    window.onScanStart();
    QTimer::singleShot(arguments.at(4).toInt(), &window, [&window, way = arguments.at(3)] {
        leave(window, way);
    });
    return QApplication::exec();
}
} // namespace

void tst_LeaveDuringScan::endsWithStatusZero_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("way");
    QTest::addColumn<int>("delay");

    const int leavings = qEnvironmentVariableIsSet("TWINSIFT_LEAVINGS")
        ? qEnvironmentVariableIntValue("TWINSIFT_LEAVINGS")
        : defaultLeavings;
    const QStringList modes = {QStringLiteral("bytes"),
                               QStringLiteral("md5"),
                               QStringLiteral("sha1"),
                               QStringLiteral("crc")};
    QRandomGenerator random(1);
    for (int i = 0; i < leavings; ++i) {
        const QString mode = modes.at(i / 2 % modes.size());
        const QString way = i % 2 == 0 ? QStringLiteral("close") : QStringLiteral("exit");
        // Some leave before the engine has begun, some with the start on its way.
        const int delay = random.bounded(i % 5 == 0 ? 20 : maxDelayMilliseconds);
        QTest::addRow("%d: %s, %s, %d ms", i, qPrintable(mode), qPrintable(way), delay)
            << mode << way << delay;
    }
}

void tst_LeaveDuringScan::endsWithStatusZero()
{
    // Leaving at any moment of a scan ends the process in order and without a word.
    QFETCH(QString, mode);
    QFETCH(QString, way);
    QFETCH(int, delay);
    const TempTree tree(path(QStringLiteral("tree")));
    for (int i = 0; i < 6; ++i) {
        tree.sparseFile(QStringLiteral("large %1").arg(i), 200LL * 1024 * 1024);
    }

    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--leave"),
                   mode,
                   way,
                   QString::number(delay),
                   QStringLiteral("/usr/share"),
                   tree.root()});
    QVERIFY(process.waitForFinished(maxRunMilliseconds));
    const QByteArray words = process.readAllStandardError();
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             words.constData());
    QVERIFY2(!words.contains("QThread") && !words.contains("QObject") && !words.contains("ERROR"),
             words.constData());
}

int main(int argc, char **argv)
{
    if (argc > 5 && qstrcmp(argv[1], "--leave") == 0) {
        return leavingProcess(argc, argv);
    }
    return TestSurroundings::run<tst_LeaveDuringScan>(argc, argv);
}
#include "tst_LeaveDuringScan.moc"
