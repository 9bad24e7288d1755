// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/**
 * Text for others, in the encoding that the system's locale names (LC_ALL, LC_CTYPE, LANG). The
 * toolkit's toLocal8Bit() is no way to it: Qt 5 built with the usual ICU, and Qt 6, take every locale
 * for UTF-8. Safe on any thread.
 */
namespace LocalText
{
/** Each character that the encoding lacks becomes a question mark. UTF-8 in the plain locale. */
QByteArray encode(const QString &text);

/**
 * Has names of files read and written as UTF-8 where the locale is the plain one, which knows ASCII
 * alone. To be called once, before any name is looked at.
 */
void useUtf8InPlainLocale();
} // namespace LocalText
