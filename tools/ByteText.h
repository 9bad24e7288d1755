// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/** Numbers of bytes as people read them. */
namespace ByteText
{
/** Such as "512 bytes", "1.5 KiB" or "20.0 GiB". */
QByteArray of(qint64 bytes);
} // namespace ByteText
