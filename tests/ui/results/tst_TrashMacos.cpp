// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"

#include <QProcess>
#include <QStandardPaths>

/** Where the source of another system cannot be built, it is at least parsed. */
class tst_TrashMacos final : public TestCase
{
    Q_OBJECT

private slots:
    void isParsed_data();
    void isParsed();
};

void tst_TrashMacos::isParsed_data()
{
    QTest::addColumn<QStringList>("more");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("said");
    QTest::newRow("with the calls that the system has") << QStringList() << 0 << QString();
    QTest::newRow("not without the one that moves")
        << QStringList(QStringLiteral("-DWITHOUT_TRASH")) << 1
        << QStringLiteral("'-trashItemAtURL:resultingItemURL:error:' not found");
}

void tst_TrashMacos::isParsed()
{
    // The macOS source is sound Objective-C++ and makes the calls that move a file to the trash.
    QFETCH(QStringList, more);
    QFETCH(int, exitCode);
    QFETCH(QString, said);
    const QString clang = QStandardPaths::findExecutable(QStringLiteral("clang"));
    if (clang.isEmpty()) {
        QSKIP("clang is not installed, so the macOS source is not parsed");
    }
    const auto source = QStringLiteral(SOURCE_FOLDER);
    QStringList arguments = {QStringLiteral("-fsyntax-only"),
                             QStringLiteral("-x"),
                             QStringLiteral("objective-c++"),
                             QStringLiteral("-std=c++17"),
                             QStringLiteral("-fPIC"),
                             QStringLiteral("-Wall"),
                             QStringLiteral("-Wextra"),
                             QStringLiteral("-Werror"),
                             QStringLiteral("-I") + source,
                             QStringLiteral("-isystem"),
                             source + QStringLiteral("/tests/ui/results/macos")};
    for (const QString &headers : QStringLiteral(QT_INCLUDE_FOLDERS).split(QLatin1Char('|'))) {
        arguments += {QStringLiteral("-isystem"), headers};
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(clang,
                  arguments + more
                      + QStringList(source + QStringLiteral("/ui/results/Trash_macos.mm")));
    QVERIFY(process.waitForFinished(120000));
    const QString output = QString::fromLocal8Bit(process.readAll());
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == exitCode,
             qPrintable(output));
    QVERIFY2(output.contains(said), qPrintable(output));
}

TWINSIFT_TEST_MAIN(tst_TrashMacos)
#include "tst_TrashMacos.moc"
