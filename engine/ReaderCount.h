// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/** How many files are read at a time, by what is read and what it lies on. */
namespace ReaderCount
{
/** Of listings of folders: each mostly waits for the disk. */
int ofFolders();
/** So many beginnings of files a reader has in hand, each of an open file. */
constexpr int headsInHand = 16;
/**
 * Of the beginnings of files: each mostly waits for the disk. Fewer where the process may not have
 * that many files open.
 */
int ofHeads();
/**
 * Of whole files below the folders: as many as there are processors, but few where the files lie on
 * a disk that turns, which would spend its time between the files, or on another machine.
 */
int ofContents(const QStringList &folders);

/** Whether a device turns, by the folder in which the system tells of its devices. */
bool isRotational(const QString &deviceFolder);
} // namespace ReaderCount
