// SPDX-License-Identifier: MIT
#include "bench/LoopPassTimer.h"

#include <QAbstractEventDispatcher>
#include <QThread>

#include <algorithm>

LoopPassTimer::LoopPassTimer(int &argc, char **argv)
    : QApplication(argc, argv)
{
    // Where exactly a dispatcher emits the two differs between systems, but a pass always lies
    // between two emissions.
    const auto *const dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, SIGNAL(awake()), this, SLOT(endPass()));
    connect(dispatcher, SIGNAL(aboutToBlock()), this, SLOT(endPass()));
}

bool LoopPassTimer::notify(QObject *receiver, QEvent *event)
{
    // The engine's events come along here as well, on its own thread.
    if (QThread::currentThread() != thread()) {
        return QApplication::notify(receiver, event);
    }
    if (!pass.isValid()) {
        pass.start();
    }
    ++depth;
    const bool result = QApplication::notify(receiver, event);
    --depth;
    return result;
}

void LoopPassTimer::reset()
{
    longest = 0;
    pass.invalidate();
}

void LoopPassTimer::endPass()
{
    // Within an event: a loop inside the pass, which goes on.
    if (depth > 0 || !pass.isValid()) {
        return;
    }
    longest = std::max(longest, pass.nsecsElapsed());
    pass.invalidate();
    if (onPassEnd) {
        onPassEnd();
    }
}
