// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

struct ScanProgress;

/**
 * Shows on a terminal how far the scan has come, in one line that is rewritten ten times a second at
 * most. Lives on the main thread; the line is erased with the object.
 */
class ProgressLine final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ProgressLine)

public:
    /** Begins at once; the descriptor is not owned. */
    ProgressLine(int terminalDescriptor, QObject *parent);
    ~ProgressLine() override;

    /**
     * Such as "1200 files found, 30 of 90 compared, 4.2 MiB read, about 7 s left". The time is that
     * since the comparison began.
     */
    static QByteArray text(const ScanProgress &progress, qint64 milliseconds);

private:
    void refresh();
    void show(const QByteArray &text);

    int descriptor;
    QTimer timer;
    QElapsedTimer sinceComparison;
    QByteArray shown;
};
