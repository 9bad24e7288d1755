// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"

#include <QProcess>

/** The real program at the scale factors that desktops set; runs on a virtual screen. */
class tst_ScaleFactors final : public TestCase
{
    Q_OBJECT

private slots:
    void starts_data();
    void starts();
};

void tst_ScaleFactors::starts_data()
{
    QTest::addColumn<QString>("factor");
    for (const char *const factor : {"0.5", "0.6", "0.75", "1", "1.25", "1.5", "2", "3"}) {
        QTest::newRow(factor) << QString::fromLatin1(factor);
    }
}

void tst_ScaleFactors::starts()
{
    // The window comes, and the program lives on.
    QFETCH(QString, factor);
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), factor);
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QStringLiteral(TWINSIFT_PROGRAM), QStringList());
    QVERIFY(program.waitForStarted());
    QByteArray windows;
    const auto hasWindow = [&] {
        QProcess search;
        search.start(QStringLiteral("xdotool"),
                     {QStringLiteral("search"),
                      QStringLiteral("--onlyvisible"),
                      QStringLiteral("--pid"),
                      QString::number(program.processId())});
        search.waitForFinished(10000);
        windows = search.readAllStandardOutput().trimmed();
        return !windows.isEmpty() || program.state() != QProcess::Running;
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasWindow(), 60000);
    QCOMPARE(program.state(), QProcess::Running);
    QVERIFY(!windows.isEmpty());
    program.terminate();
    QVERIFY(program.waitForFinished(60000));
}

TWINSIFT_TEST_MAIN(tst_ScaleFactors)
#include "tst_ScaleFactors.moc"
