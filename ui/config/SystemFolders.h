// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/** What the program knows of folders by their paths alone; nothing here looks at the disk. */
namespace SystemFolders
{
/**
 * True for "/" and the folders in which everybody's home is: "/Users", on Linux also "/home". They
 * are never selected themselves; a tick there means the ticked folders in them.
 */
bool isExcludedRoot(const QString &path);

/**
 * True for a folder that is worth a warning before duplicates are searched in it.
 *
 * The path holds "/Applications", "/Library" or "/System" anywhere, or one of them begins with it.
 * On Linux also: it is, lies in, or holds one of that system's own folders, such as "/usr", compared
 * by whole names: "/home/x/usr" and "/usrlocal" are not.
 */
bool touches(const QString &folder);
} // namespace SystemFolders
