// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/**
 * Turns SIGINT, SIGTERM and SIGHUP into a wish to stop. The first of them is told, the second one
 * ends the program as if nobody had asked for it. One that was ignored before stays ignored.
 *
 * At most one object at a time; lives on the main thread.
 */
class StopSignals final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(StopSignals)

public:
    explicit StopSignals(QObject *parent);
    ~StopSignals() override;

    /** The number of the first one that came; 0 for none. Known before caught() is emitted. */
    static int number();

signals:
    /** Once, when the event loop runs. */
    void caught();
};
