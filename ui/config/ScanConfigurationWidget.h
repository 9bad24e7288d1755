// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class FileSystemTreeWidget;
class MainWindow;
class QPushButton;
class ScanProfileWidget;

/**
 * The first page: the folders to scan on the left, the options and the start button on the right.
 * It is the only writer of the folders and the profile in Configuration, and writes them only just
 * before it starts a scan.
 *
 * Lives on the GUI thread, owned by the window's stack of pages.
 */
class ScanConfigurationWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ScanConfigurationWidget)

public:
    /** The button's minimum size comes from the size the window has now. */
    explicit ScanConfigurationWidget(MainWindow *parent);

public slots:
    /** Starts a scan, or says what is missing for one and changes nothing. */
    void onScanButtonClicked();

private:
    void createScanButton();
    bool isPutAway() const;

    MainWindow *mainWindow = nullptr;
    QPushButton *scanButton = nullptr;
    FileSystemTreeWidget *fileSystemTreeWidget = nullptr;
    ScanProfileWidget *scanProfileWidget = nullptr;
};
