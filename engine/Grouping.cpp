// SPDX-License-Identifier: MIT
#include "engine/Grouping.h"

// Unsigned, because the sum is meant to wrap.
void Grouping::Result::addBytes(qint64 bytes)
{
    groupedBytes =
        static_cast<qint32>(static_cast<quint32>(groupedBytes) + static_cast<quint32>(bytes));
}
