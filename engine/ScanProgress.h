// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <atomic>

/**
 * How far the running scan has come, one object for the process. The threads of a scan count, any
 * thread may read at any time; the numbers need not fit each other.
 */
struct ScanProgress {
    /** Made on first use and never destroyed. */
    static ScanProgress *instance();

    /** Sets all numbers to 0; isWatched stays. */
    void reset();

    /** Whether anybody wants to know what costs a look at each file. Set before a scan. */
    std::atomic<bool> isWatched{false};
    std::atomic<qint64> filesFound{0};
    /** Files whose contents are to be looked at, and their bytes; 0 until they are known. */
    std::atomic<qint64> filesToCompare{0};
    std::atomic<qint64> bytesToCompare{0};
    /** Of them those that are done with, whether or not they were read to their ends. */
    std::atomic<qint64> filesCompared{0};
    std::atomic<qint64> bytesCompared{0};
    /** Of the contents of files, also of those read twice. */
    std::atomic<qint64> bytesRead{0};
};
