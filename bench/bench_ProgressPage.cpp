// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"

#include <QLabel>
#include <QTest>

/** What the window does with the events of a scan, while page 1 is shown. */
class bench_ProgressPage final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void countingFiles();
    void countingDuplicates();

private:
    MainWindow window;
    Model *hub = nullptr;
    QLabel *info = nullptr;
};

namespace
{
// As many as a large scan has, so that the bar moves by far less than a pixel at a time.
constexpr int eventCount = 20000;
} // namespace

void bench_ProgressPage::initTestCase()
{
    // The window has the page that is measured.
    window.show();
    window.setCurrentWidget(1);
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    hub = window.findChild<Model *>();
    info = window.findChild<QLabel *>(QStringLiteral("infoLabel"));
    QVERIFY(hub != nullptr && info != nullptr);
    hub->emitModelEvent(FindAllFilesStartedEvent());
}

void bench_ProgressPage::countingFiles()
{
    // Many folders reported, the last one shown, and what they cost with the painting.
    QBENCHMARK {
        for (int i = 1; i <= eventCount; ++i) {
            hub->countingFilesInFolderChanged(i, QStringLiteral("/home/user/Pictures/%1").arg(i));
        }
        QCoreApplication::processEvents();
    }
    QVERIFY(info->text().contains(QString::number(eventCount)));
}

void bench_ProgressPage::countingDuplicates()
{
    // Many grouped files reported, the last one shown, and what they cost with the painting.
    hub->countingFilesInFolderChanged(eventCount, QStringLiteral("/home/user"));
    hub->emitModelEvent(FindDuplicatedFilesStartedEvent());
    QBENCHMARK {
        for (int i = 1; i <= eventCount; ++i) {
            hub->emitModelEvent(CountingFindFilesDuplicatedEvent(i, i, 4096LL * i));
        }
        QCoreApplication::processEvents();
    }
    QVERIFY(info->text().contains(QString::number(eventCount)));
}

QTEST_MAIN(bench_ProgressPage)
#include "bench_ProgressPage.moc"
