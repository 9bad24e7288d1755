// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/** The desktop's trash. Each platform has its own source. */
namespace Trash
{
/**
 * True when the file has left its place and can be restored from the trash. Otherwise it is still
 * there: nothing is ever deleted instead.
 */
bool moveFile(const QString &path);
} // namespace Trash
