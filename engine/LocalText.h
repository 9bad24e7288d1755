// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/**
 * Text for others, in the encoding that the system's locale names (LC_ALL, LC_CTYPE, LANG). Qt 5 has
 * it behind its toLocal8Bit(); Qt 6 takes every locale for UTF-8, and makes it so for the process.
 * Safe on any thread.
 */
namespace LocalText
{
/** Each character that the encoding lacks becomes a question mark. */
QByteArray encode(const QString &text);

/**
 * Has names of files read and written as UTF-8 where the locale is the plain one, which knows ASCII
 * alone. To be called once, before any name is looked at.
 */
void useUtf8InPlainLocale();
} // namespace LocalText
