// SPDX-License-Identifier: MIT
#include "ui/results/ResultsTableView.h"

#include <QKeyEvent>
#include <QScrollBar>

ResultsTableView::ResultsTableView(QWidget *parent)
    : QTableView(parent)
{
}

void ResultsTableView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    const int position = horizontalScrollBar()->value();
    QTableView::scrollTo(index, hint);
    horizontalScrollBar()->setValue(position);
}

void ResultsTableView::keyPressEvent(QKeyEvent *event)
{
    const bool isSideways = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    if (!isSideways || event->modifiers() != Qt::NoModifier) {
        QTableView::keyPressEvent(event);
        return;
    }
    const bool isForward = (event->key() == Qt::Key_Right) != isRightToLeft();
    horizontalScrollBar()->triggerAction(isForward ? QAbstractSlider::SliderSingleStepAdd
                                                   : QAbstractSlider::SliderSingleStepSub);
}
