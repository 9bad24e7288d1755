// SPDX-License-Identifier: MIT
#include "engine/ScanFindings.h"

ScanFindings *ScanFindings::instance()
{
    static auto *const findings = new ScanFindings;
    return findings;
}
