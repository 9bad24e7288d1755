// SPDX-License-Identifier: MIT
#include "tests/app/LeavingProgram.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>

/**
 * Leaves the program in the middle of scans, each in a process of its own: by the window's frame
 * and by "Exit" in turn, and with a dialog open also by the end of the session. TWINSIFT_LEAVINGS
 * sets how often, in all, for each of the two.
 */
class tst_LeaveDuringScan final : public TestCase
{
    Q_OBJECT

private slots:
    void endsWithStatusZero_data();
    void endsWithStatusZero();
    void endsWithStatusZeroInADialog_data();
    void endsWithStatusZeroInADialog();

private:
    static int countFromEnvironment(int otherwise);
    // What is wrong with the end of the process, or nothing.
    static QString judgeRun(const QStringList &arguments);
};

namespace
{
constexpr int defaultLeavings = 24;
constexpr int maxDelayMilliseconds = 900;
constexpr int maxDialogMilliseconds = 200;
constexpr int maxRunMilliseconds = 60000;

QStringList modes()
{
    return {QStringLiteral("bytes"),
            QStringLiteral("md5"),
            QStringLiteral("sha1"),
            QStringLiteral("crc")};
}

void fillWithLargeFiles(const TempTree &tree)
{
    for (int i = 0; i < 6; ++i) {
        tree.sparseFile(QStringLiteral("large %1").arg(i), 200LL * 1024 * 1024);
    }
}
} // namespace

int tst_LeaveDuringScan::countFromEnvironment(int otherwise)
{
    return qEnvironmentVariableIsSet("TWINSIFT_LEAVINGS")
        ? qEnvironmentVariableIntValue("TWINSIFT_LEAVINGS")
        : otherwise;
}

QString tst_LeaveDuringScan::judgeRun(const QStringList &arguments)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), arguments);
    if (!process.waitForFinished(maxRunMilliseconds)) {
        process.kill();
        process.waitForFinished();
        return QStringLiteral("it does not end");
    }
    QStringList words;
    for (const QByteArray &line : process.readAllStandardError().split('\n')) {
        const QString text = QString::fromLocal8Bit(line);
        // The list of file types tells where it reads; a platform without frames says so.
        if (!text.isEmpty() && !text.startsWith(QLatin1String("SEE "))
            && !text.startsWith(QLatin1String("This plugin does not support"))) {
            words.append(text);
        }
    }
    const bool isInOrder = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return isInOrder && words.isEmpty()
        ? QString()
        : QStringLiteral("status %1: %2")
              .arg(QString::number(process.exitCode()), words.join(QLatin1Char('\n')));
}

void tst_LeaveDuringScan::endsWithStatusZero_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("way");
    QTest::addColumn<int>("delay");

    const int leavings = countFromEnvironment(defaultLeavings);
    QRandomGenerator random(1);
    for (int i = 0; i < leavings; ++i) {
        const QString mode = modes().at(i / 2 % modes().size());
        const QString way = LeavingProgram::ways().at(i % 2);
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
    fillWithLargeFiles(tree);
    const QString problem = judgeRun(
        LeavingProgram::arguments(mode, way, delay, {QStringLiteral("/usr/share"), tree.root()}));
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
}

void tst_LeaveDuringScan::endsWithStatusZeroInADialog_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("way");
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<int>("opening");
    QTest::addColumn<int>("delay");

    const QStringList ways = LeavingProgram::ways();
    const QStringList dialogs = LeavingProgram::dialogs();
    const int leavings = countFromEnvironment(static_cast<int>(ways.size() * dialogs.size()));
    QRandomGenerator random(2);
    for (int i = 0; i < leavings; ++i) {
        // Ten dialogs and three ways: each meets each.
        const QString &dialog = dialogs.at(i % dialogs.size());
        const QString &way = ways.at(i % ways.size());
        const QString mode = modes().at(i % modes().size());
        const int opening = random.bounded(i % 5 == 0 ? 20 : maxDialogMilliseconds);
        const int delay = random.bounded(maxDialogMilliseconds);
        QTest::addRow("%d: %s, %s, %s, %d ms, %d ms",
                      i,
                      qPrintable(dialog),
                      qPrintable(way),
                      qPrintable(mode),
                      opening,
                      delay)
            << mode << way << dialog << opening << delay;
    }
}

void tst_LeaveDuringScan::endsWithStatusZeroInADialog()
{
    // Leaving with a dialog open ends in order, too; no file goes but those whose deletion has been
    // confirmed, and nothing is saved.
    QFETCH(QString, mode);
    QFETCH(QString, way);
    QFETCH(QString, dialog);
    QFETCH(int, opening);
    QFETCH(int, delay);
    const bool isOnResults = LeavingProgram::isOnResults(dialog);
    const TempTree tree(path(QStringLiteral("tree")));
    if (isOnResults) {
        for (int i = 0; i < 20; ++i) {
            tree.file(QStringLiteral("%1.txt").arg(i), "the same");
        }
    } else {
        fillWithLargeFiles(tree);
    }
    QStringList folders(tree.root());
    if (!isOnResults) {
        folders.prepend(QStringLiteral("/usr/share"));
    }
    const QStringList files = QDir(tree.root()).entryList(QDir::Files);

    const QString problem =
        judgeRun(LeavingProgram::arguments(mode, way, delay, dialog, opening, folders));
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    const bool isConfirmed = dialog == QLatin1String("end of a deletion");
    QCOMPARE(QDir(tree.root()).entryList(QDir::Files), isConfirmed ? QStringList() : files);
    QCOMPARE(QDir(home()).entryList(QDir::Files), QStringList());
}

int main(int argc, char **argv)
{
    if (LeavingProgram::isAsked(argc, argv)) {
        return LeavingProgram::run(argc, argv);
    }
    return TestSurroundings::run<tst_LeaveDuringScan>(argc, argv);
}
#include "tst_LeaveDuringScan.moc"
