// SPDX-License-Identifier: MIT
#include "tools/ScanReport.h"

#include <numeric>

int ScanReport::redundantFiles() const
{
    return std::accumulate(
        groups.cbegin(),
        groups.cend(),
        0,
        [](int sum, const ReportedGroup &group) { return sum + group.paths.size() - 1; });
}

qint64 ScanReport::freeableBytes() const
{
    return std::accumulate(
        groups.cbegin(),
        groups.cend(),
        qint64(0),
        [](qint64 sum, const ReportedGroup &group) { return sum + group.freeableBytes; });
}
