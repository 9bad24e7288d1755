// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/** Photos as a camera makes them, for a results table. */
namespace Photos
{
/**
 * Groups of two, of 12 megapixels each: links to eight originals that are made in the folder, since
 * ten thousand of them would fill a disk. Prints how large one is; ends the process where a link
 * cannot be made.
 */
QList<QStringList> pairs(const QString &folder, int count);
} // namespace Photos
