// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/**
 * The file "ftie.dat", one mask entry a line. It is read from the folder of the program's data and
 * saved in the working folder; the two are the same file only when the folders are.
 *
 * What stands in the place of the file is never waited for: anything but a regular file (a folder,
 * a FIFO, a device) counts as a file that cannot be opened.
 */
namespace MaskFile
{
/** Bounds of one reading; what lies beyond them is left out. */
constexpr int maxFileBytes = 4 * 1024 * 1024;
constexpr int maxLineBytes = 16 * 1024;
constexpr int maxEntries = 20000;

/** Where the file is read from. Makes the folder if it does not exist. */
QString readingPath();

/** Writes the nine default entries; what goes wrong is told to the debug log only. */
void createDefault(const QString &path);

/** The entries of the file, or none when it cannot be opened. */
std::optional<QStringList> read(const QString &path);

/**
 * The entries of the content of such a file. Each keeps a bare line feed that ends its line, loses
 * every pair of carriage return and line feed, and ends at the first zero byte of its line.
 */
QStringList entries(const QByteArray &content);

/** Replaces the file in the working folder; each entry gets a line break. False: not opened. */
bool save(const QStringList &entries);
} // namespace MaskFile
