// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

class ClickableLabel;
class MainWindow;
class Model;
class ModelEvent;
class ProgressWidget;
class QLabel;
class QProgressBar;
class QVBoxLayout;

/**
 * Page 1 of the main window: what a scan does, from its start until it has finished or stopped.
 *
 * Lives on the GUI thread. It learns everything from the event hub and acts only through the main
 * window. The texts of a scan stay until the next one.
 */
class WidgetAnalyzeWaiting final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(WidgetAnalyzeWaiting)

public:
    enum StepWorking : int { StepFindAllFiles = 0, StepFindDuplicatedFiles = 1 };

    explicit WidgetAnalyzeWaiting(Model *eventHub, MainWindow *window);

    /** Called before a scan starts; leaves the texts, the bar and what is hidden as they are. */
    void toDefaults();
    /** The folder is shortened in its middle to three quarters of the page's width. */
    void updateAnalyzeCount(int size, const QString &folder);
    /** The size is in bytes. */
    void updateFindDuplicatedFiles(int currentCount, int foundCount, qint64 summFileSize);
    void setStepWorking(StepWorking step);

public slots:
    void onModelEvent(const ModelEvent *modelEvent);
    void onButtonClicked();

private:
    QLabel *createLabel(const QString &name);
    ClickableLabel *createButton(const QString &text, const QString &picture);
    void createLayout();
    void onFinished();
    void onStopped();
    /** Fills the bar and offers the ways on instead of stopping. */
    void focusOn(ClickableLabel *button);
    void showEnd();
    void askToStop();

    Model *model = nullptr;
    MainWindow *mainWindow = nullptr;
    ProgressWidget *progressWidget = nullptr;
    QLabel *titleLabel = nullptr;
    QLabel *infoLabel = nullptr;
    QProgressBar *progressBar = nullptr;
    ClickableLabel *buttonScanConfigurations = nullptr;
    ClickableLabel *buttonScanResults = nullptr;
    ClickableLabel *buttonStopSearching = nullptr;
    QVBoxLayout *mainLayout = nullptr;
    int filesCount = 0;
    int currentCountFiles = 0;
    int countFoundedDuplicated = 0;
    QString currentFile;
};
