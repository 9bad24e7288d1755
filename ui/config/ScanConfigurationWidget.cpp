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
    layout->addWidget(fileSystemTreeWidget);
    layout->addLayout(right);
}

void ScanConfigurationWidget::onScanButtonClicked()
{
    if (isPutAway()) {
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

// The stack hides this page while another one is shown. What is left of a double click may still
// reach the button then, and must not write the settings of the scan that it has just started.
bool ScanConfigurationWidget::isPutAway() const
{
    return isHidden() && testAttribute(Qt::WA_WState_ExplicitShowHide);
}
