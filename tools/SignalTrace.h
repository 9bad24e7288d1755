// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ScanOutput.h"

#include <QByteArray>
#include <QObject>

class FileFinderEngine;

/**
 * Counts the signals of an engine, stops it after the n-th and prints each one as a line.
 *
 * Lives on the engine's thread, so that the count is exact: the stop is posted before the engine
 * takes its next step.
 */
class SignalTrace final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(SignalTrace)

public:
    /** Prints nothing when the descriptor is below zero; never stops when stopAfter is zero. */
    SignalTrace(FileFinderEngine *observedEngine, int fileDescriptor, int stopAfterCount);

private:
    void add(const QByteArray &line);

    FileFinderEngine *engine;
    bool isPrinting;
    int stopAfter;
    int count = 0;
    ScanOutput output;
};
