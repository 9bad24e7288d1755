// SPDX-License-Identifier: MIT
#include "engine/ScanProgress.h"

ScanProgress *ScanProgress::instance()
{
    static auto *const progress = new ScanProgress;
    return progress;
}

void ScanProgress::reset()
{
    filesFound = 0;
    filesToCompare = 0;
    bytesToCompare = 0;
    filesCompared = 0;
    bytesCompared = 0;
    bytesRead = 0;
}
