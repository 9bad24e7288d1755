// SPDX-License-Identifier: MIT
#pragma once

#include <QThread>

#include <functional>

/**
 * Asked by work that may take long, between any two files and blocks of a file: false ends the work,
 * which then has no result. Called on the thread that does the work.
 */
using GoOn = std::function<bool()>;

/** Goes on until the thread is asked to interrupt its work. */
inline GoOn untilInterrupted()
{
    return [] {
        return !QThread::currentThread()->isInterruptionRequested();
    };
}
