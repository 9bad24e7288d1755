// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"

#include "app/Controller.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "app/Product.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QPainter>
#include <QStackedWidget>

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    model = new Model(this);
    connect(model,
            SIGNAL(modelEvent(const ModelEvent *)),
            this,
            SLOT(onModelEvent(const ModelEvent *)));
    controller = new Controller(model, nullptr);
    stackedWidget = new QStackedWidget(this);
    for (int page = 0; page < 3; ++page) {
        stackedWidget->addWidget(new QWidget);
    }
    setCentralWidget(stackedWidget);
}

MainWindow::~MainWindow() = default;

void MainWindow::onScanStart()
{
    stackedWidget->setCurrentIndex(1);
}

void MainWindow::stopScan() { }

void MainWindow::setCurrentWidget(int index)
{
    stackedWidget->setCurrentIndex(index);
}

void MainWindow::showAboutDialog() { }

void MainWindow::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter(this).fillRect(0, 0, width(), height(), Qt::white);
}

void MainWindow::onModelEvent(const ModelEvent *modelEvent)
{
    Q_UNUSED(modelEvent)
}

void MainWindow::onMenuClicked(QAction *action)
{
    Q_UNUSED(action)
}
