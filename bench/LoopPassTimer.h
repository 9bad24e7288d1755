// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QElapsedTimer>

#include <functional>

/**
 * An application that times the passes of its event loop: from the first event that a pass delivers
 * until the pass ends. Waiting for events does not count.
 */
class LoopPassTimer final : public QApplication
{
    Q_OBJECT
    Q_DISABLE_COPY(LoopPassTimer)

public:
    LoopPassTimer(int &argc, char **argv);

    bool notify(QObject *receiver, QEvent *event) override;

    /** Forgets the passes so far, the one that runs included. */
    void reset();
    qint64 longestNanoseconds() const { return longest; }
    /** Called at the end of each pass that has delivered something. */
    std::function<void()> onPassEnd;

private slots:
    void endPass();

private:
    QElapsedTimer pass;
    qint64 longest = 0;
    int depth = 0;
};
