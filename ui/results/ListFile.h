// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/** The file that a list of results is saved to. */
namespace ListFile
{
/**
 * True when the file holds the whole list, and nothing else. Otherwise what was there before is
 * still there. Never waits: what is no regular file is left alone.
 */
bool write(const QString &path, const QByteArray &list);
} // namespace ListFile
