// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/** The file that a list of results is saved to. */
namespace ListFile
{
/**
 * True when the file holds the whole list on its disk, and nothing else. Otherwise what was there
 * before is still there. Waits for the disk, but for nothing else: what is no regular file is left
 * alone.
 */
bool write(const QString &path, const QByteArray &list);
} // namespace ListFile
