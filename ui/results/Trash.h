// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

struct FileState;

/** The desktop's trash. Each platform has its own source. */
namespace Trash
{
/**
 * True when the file has left its place and can be restored from the trash. Otherwise it is still
 * there: nothing is ever deleted instead. Where it is told what was seen at the path, any other file
 * that stands there by now is left alone.
 */
bool moveFile(const QString &path, const FileState *seen = nullptr);
} // namespace Trash
