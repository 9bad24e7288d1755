// SPDX-License-Identifier: MIT
#include "tools/ByteText.h"

QByteArray ByteText::of(qint64 bytes)
{
    if (bytes < 1024) {
        return QByteArray::number(bytes).append(" bytes");
    }
    const char *const units[] = {" KiB", " MiB", " GiB", " TiB", " PiB", " EiB"};
    double number = static_cast<double>(bytes) / 1024;
    int unit = 0;
    for (; number >= 1024 && unit < 5; ++unit) {
        number /= 1024;
    }
    return QByteArray::number(number, 'f', 1).append(units[unit]);
}
