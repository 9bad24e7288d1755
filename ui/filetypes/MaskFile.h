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

/**
 * Writes the nine default entries; what goes wrong is told to the debug log only, and then there is
 * no file.
 */
void createDefault(const QString &path);

/** The entries of the file, or none when it cannot be opened. */
std::optional<QStringList> read(const QString &path);

/**
 * The entries of the content of such a file. Each keeps a bare line feed that ends its line, loses
 * every pair of carriage return and line feed, and ends at the first zero byte of its line.
 */
QStringList entries(const QByteArray &content);

/**
 * Saves the entries in the working folder, each with a line break. True when the file holds them
 * all, on the disk; a file that holds them already is not written again. False otherwise, and then
 * what was there before still is.
 *
 * Replaced is only what is known as a list of types: the file that entries are read from, and one
 * in which every line that is not blank has a bar; neither where it goes beyond the bounds of a
 * reading. A link is neither followed nor replaced.
 */
bool save(const QStringList &entries);
} // namespace MaskFile
