// SPDX-License-Identifier: MIT
#pragma once

#include <QMainWindow>

class Controller;
class DuplicatedFilesListWidget;
class FileFinderEngine;
class Model;
class ModelEvent;
class QAction;
class QHBoxLayout;
class QMenu;
class QStackedWidget;
class QThread;
class QUrl;
class QVBoxLayout;
class ScanConfigurationWidget;
class StatusBarWidget;
class WidgetAnalyzeWaiting;

/**
 * The one window of the program. It owns the event hub, the engine on its worker thread, the pages
 * and the status bar, and is the only place that starts a scan, stops one and changes the page.
 *
 * Lives on the GUI thread. The pages stand at fixed indexes: 0 the configuration of a scan,
 * 1 its progress, 2 its results.
 */
class MainWindow : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY(MainWindow)

public:
    explicit MainWindow(QWidget *parent = nullptr);
    /** Ends a scan that runs; waits for it at most until the block being read is done. */
    ~MainWindow() override;

    /** Runs a scan of what Configuration holds and shows page 1; the engine begins 10 ms later. */
    void onScanStart();
    /** From onScanStart() until the groups have arrived; nobody may write Configuration then. */
    bool isScanRunning() const { return scanRunning; }
    /**
     * Asks the engine to stop, 10 ms later; the scan still reports what it has found. Virtual for
     * whoever stands in for the window, which has no sign of its own that it was asked.
     */
    virtual void stopScan();
    void setCurrentWidget(int index);
    /** Shows an about box that deletes itself when it is closed. */
    void showAboutDialog();

    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

public slots:
    void onModelEvent(const ModelEvent *modelEvent);
    void onMenuClicked(QAction *action);

private:
    QHBoxLayout *createHeader();
    void createPages();
    void createStatusBar(QVBoxLayout *layout);
    void createMenu();
    void endWithTheLastWindow();
    void startEngine();
    void setFittingSize();
    void postToEngine(const char *slot);
    void offerUpdate(const QString &version, const QUrl &page);

    Model *model = nullptr;
    Controller *controller = nullptr;
    QMenu *menu = nullptr;
    FileFinderEngine *engine = nullptr;
    QStackedWidget *stackedWidget = nullptr;
    WidgetAnalyzeWaiting *widgetAnalyzeWaiting = nullptr;
    DuplicatedFilesListWidget *duplicatedFilesListWidget = nullptr;
    ScanConfigurationWidget *scanConfigurationWidget = nullptr;
    StatusBarWidget *statusBarWidget = nullptr;
    QThread *engineThread = nullptr;
    bool scanRunning = false;
};
