// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace Utf8
{
/** Whether the bytes are the UTF-8 of some text, which may begin with a byte order mark. */
inline bool isValid(const QByteArray &bytes)
{
    // What is wrong comes back as another character. The slash keeps the mark from being swallowed.
    const QByteArray whole = '/' + bytes;
    return QString::fromUtf8(whole).toUtf8() == whole;
}
} // namespace Utf8
