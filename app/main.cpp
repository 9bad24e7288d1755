// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "ui/QtCompat.h"

#include <QApplication>

int main(int argc, char **argv)
{
    QtCompat::useWholeRatios();
    const QApplication application(argc, argv);
    MainWindow window;
    window.show();
    return QApplication::exec();
}
