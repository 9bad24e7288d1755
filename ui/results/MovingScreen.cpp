// SPDX-License-Identifier: MIT
#include "ui/results/MovingScreen.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QTableView>
#include <QTimer>

namespace
{
// A window manager needs some of it, and a desktop that fades its windows most.
constexpr int millisecondsToLeave = 100;
constexpr int millisecondsBetweenRows = 50;
} // namespace

MovingScreen::MovingScreen(QTableView *tableView)
    : table(tableView)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

MovingScreen::~MovingScreen()
{
    QGuiApplication::restoreOverrideCursor();
}

// No system says when a window has left the screen, and only some ask for what lay below it.
void MovingScreen::letBoxesGo() const
{
    QEventLoop loop;
    QTimer::singleShot(millisecondsToLeave, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

// Painting a screen of rows costs more than moving a file, and the view paints no more than its own
// frame, of which a corner will do.
void MovingScreen::showProgress()
{
    table->repaint(0, 0, 1, 1);
    if (!sinceRows.isValid() || sinceRows.hasExpired(millisecondsBetweenRows)) {
        table->viewport()->repaint();
        sinceRows.start();
    }
}
