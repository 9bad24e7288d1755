// SPDX-License-Identifier: MIT
#include "ui/config/ScanConfigurationWidget.h"

#include "app/MainWindow.h"
#include "engine/Configuration.h"
#include "ui/config/FileSystemTreeWidget.h"
#include "ui/config/ScanProfileWidget.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QMessageBox>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
constexpr int columnSpacing = 24;
}

ScanConfigurationWidget::ScanConfigurationWidget(MainWindow *parent)
    : QWidget(parent)
    , mainWindow(parent)
{
    fileSystemTreeWidget = new FileSystemTreeWidget(nullptr);
    scanProfileWidget = new ScanProfileWidget(ScanProfile(), nullptr);
    createScanButton();

    auto *const right = new QVBoxLayout;
    right->addWidget(scanProfileWidget);
    right->addStretch();
    right->addWidget(scanButton);
    auto *const layout = new QHBoxLayout(this);
    layout->setSpacing(columnSpacing);
    layout->addWidget(fileSystemTreeWidget);
    layout->addLayout(right);
}

void ScanConfigurationWidget::onScanButtonClicked()
{
    // The second press of a double click, or one on the way back before the engine has begun: the
    // engine reads the settings now.
    if (mainWindow->isScanRunning()) {
        mainWindow->setCurrentWidget(1);
        return;
    }
    const QStringList folders = fileSystemTreeWidget->selectedFolders();
    if (folders.isEmpty()) {
        QMessageBox::warning(this,
                             QStringLiteral("Warning"),
                             QStringLiteral("You didn't select any folder"),
                             QMessageBox::Ok);
        return;
    }
    if (scanProfileWidget->currentScanProfile().includeMasks.isEmpty()) {
        QMessageBox::warning(this,
                             QStringLiteral("Warning"),
                             QStringLiteral("You didn't select any file's mask"),
                             QMessageBox::Ok);
        return;
    }
    Configuration *const configuration = Configuration::instance();
    configuration->folders = folders;
    configuration->scanProfile = scanProfileWidget->currentScanProfile();
    mainWindow->onScanStart();
}

void ScanConfigurationWidget::createScanButton()
{
    scanButton = new QPushButton(QStringLiteral("Start scan"));
    scanButton->setMinimumWidth(mainWindow->width() / 2);
    scanButton->setMinimumHeight(mainWindow->height() / 8);
    scanButton->setIcon(QIcon(QPixmap(QStringLiteral(":/content/start.png"))));
    connect(scanButton, SIGNAL(clicked(bool)), this, SLOT(onScanButtonClicked()));
}
