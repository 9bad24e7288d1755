// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "tests/support/TestCase.h"
#include "ui/filetypes/FileTypesWidget.h"

#include <QProcess>
#include <QPushButton>
#include <QScreen>

/** The program while its screen changes under it; runs where xrandr can change it. */
class tst_ChangingScreen final : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void smallerAndLarger();
    void goesAndComesBack();

private:
    static bool xrandr(const QStringList &arguments);
    static QPushButton *startButton(const MainWindow &window);
    static bool isWithoutMonitor();
    static bool isOnScreen(const QWidget *widget);
};

bool tst_ChangingScreen::xrandr(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("xrandr"),
                  QStringList({QStringLiteral("--output"), QStringLiteral("VNC-0")}) + arguments);
    return process.waitForFinished(10000) && process.exitCode() == 0;
}

QPushButton *tst_ChangingScreen::startButton(const MainWindow &window)
{
    for (QPushButton *const button : window.findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String("Start scan")) {
            return button;
        }
    }
    return nullptr;
}

bool tst_ChangingScreen::isWithoutMonitor()
{
    QProcess process;
    process.start(QStringLiteral("xrandr"), QStringList(QStringLiteral("--listmonitors")));
    process.waitForFinished(10000);
    return process.readAllStandardOutput().startsWith("Monitors: 0");
}

bool tst_ChangingScreen::isOnScreen(const QWidget *widget)
{
    const QScreen *const screen = QGuiApplication::primaryScreen();
    const QRect place(widget->mapToGlobal(QPoint(0, 0)), widget->size());
    return screen != nullptr && screen->availableGeometry().contains(place);
}

void tst_ChangingScreen::initTestCase()
{
    QVERIFY(xrandr({QStringLiteral("--mode"), QStringLiteral("1600x1400")}));
}

void tst_ChangingScreen::smallerAndLarger()
{
    // The contents follow a screen that becomes too small for the window, and one that grows.
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_COMPARE(window.contentsMargins(), QMargins());
    QVERIFY(xrandr({QStringLiteral("--mode"), QStringLiteral("1280x720")}));
    QTRY_COMPARE(QGuiApplication::primaryScreen()->size(), QSize(1280, 720));
    QTRY_VERIFY(isOnScreen(startButton(window)));
    QVERIFY(xrandr({QStringLiteral("--mode"), QStringLiteral("1600x1400")}));
    QTRY_COMPARE(window.contentsMargins(), QMargins());
}

void tst_ChangingScreen::goesAndComesBack()
{
    // Without a screen the window and the list of types live on; with the next one they are whole.
    allowMessages(QRegularExpression(QStringLiteral("^\"?(SEE|write)")));
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (int i = 0; i < 3; ++i) {
        QVERIFY(xrandr({QStringLiteral("--off")}));
        QTRY_VERIFY(isWithoutMonitor());
        const FileTypesWidget types;
        QVERIFY(types.width() > 0);
        window.setCurrentWidget(i);
        QVERIFY(xrandr({QStringLiteral("--mode"), QStringLiteral("1280x720")}));
        QTRY_COMPARE(QGuiApplication::primaryScreen()->size(), QSize(1280, 720));
        window.setCurrentWidget(0);
        QTRY_VERIFY(isOnScreen(startButton(window)));
    }
    QVERIFY(xrandr({QStringLiteral("--mode"), QStringLiteral("1600x1400")}));
    QTRY_COMPARE(window.contentsMargins(), QMargins());
}

TWINSIFT_TEST_MAIN(tst_ChangingScreen)
#include "tst_ChangingScreen.moc"
