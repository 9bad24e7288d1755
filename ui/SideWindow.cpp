// SPDX-License-Identifier: MIT
#include "ui/SideWindow.h"

#include <QCoreApplication>
#include <QWidget>

void SideWindow::endWithProgram(QWidget *window)
{
    window->setAttribute(Qt::WA_QuitOnClose, false);
    QObject::connect(QCoreApplication::instance(),
                     &QCoreApplication::aboutToQuit,
                     window,
                     &QObject::deleteLater);
}
