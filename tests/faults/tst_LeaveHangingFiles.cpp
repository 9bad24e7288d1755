// SPDX-License-Identifier: MIT
#include "tests/app/LeavingProgram.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QProcess>

/** Leaves the program while its scan waits for files that do not answer. */
class tst_LeaveHangingFiles final : public TestCase
{
    Q_OBJECT

private slots:
    void endsAllTheSame_data();
    void endsAllTheSame();
};

namespace
{
constexpr int delayMilliseconds = 120000;
// Of the call that does not return; the window goes, and the process is to follow.
constexpr int maxRunMilliseconds = 30000;
} // namespace

void tst_LeaveHangingFiles::endsAllTheSame_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("kind");
    for (const char *mode : {"bytes", "md5"}) {
        for (const char *kind : {"open", "read", "stat", "list"}) {
            QTest::addRow("%s, %s", mode, kind)
                << QString::fromLatin1(mode) << QString::fromLatin1(kind);
        }
    }
}

void tst_LeaveHangingFiles::endsAllTheSame()
{
    // The process ends in order, whatever call its threads wait for.
    QFETCH(QString, mode);
    QFETCH(QString, kind);
    const TempTree tree(path(QStringLiteral("tree")));
    for (int i = 0; i < 4; ++i) {
        tree.file(QStringLiteral("folder/%1").arg(i), QByteArray(10000, 'x'));
    }
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAULT_SHIM));
    variables.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    variables.insert(QStringLiteral("FAULT_SHIM_FOLDER"), tree.path(QStringLiteral("folder")));
    variables.insert(QStringLiteral("FAULT_SHIM_KIND"), kind);
    variables.insert(QStringLiteral("FAULT_SHIM_N"), QStringLiteral("0"));
    variables.insert(QStringLiteral("FAULT_SHIM_FAULT"), QString());
    variables.insert(QStringLiteral("FAULT_SHIM_DELAY"), QString::number(delayMilliseconds));
    variables.insert(QStringLiteral("FAULT_SHIM_REPORT"), path(QStringLiteral("report")));
    QProcess process;
    process.setProcessEnvironment(variables);
    process.start(QCoreApplication::applicationFilePath(),
                  LeavingProgram::arguments(mode, QStringLiteral("close"), 400, {tree.root()}));
    if (!process.waitForFinished(maxRunMilliseconds)) {
        process.kill();
        process.waitForFinished();
        QFAIL("it does not end");
    }
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
}

int main(int argc, char **argv)
{
    if (LeavingProgram::isAsked(argc, argv)) {
        return LeavingProgram::run(argc, argv);
    }
    return TestSurroundings::run<tst_LeaveHangingFiles>(argc, argv);
}
#include "tst_LeaveHangingFiles.moc"
