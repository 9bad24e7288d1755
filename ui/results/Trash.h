// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

struct FileState;

/** The desktop's trash. Each platform has its own source. */
namespace Trash
{
/**
 * True when the file has left its place and can be restored from the trash. Otherwise it is still
 * there: nothing is ever deleted instead. Where it is told what was seen at the path, any other file
 * that stands there by now is left alone. Where it is to ask whether the file may stay in the trash, it
 * asks as soon as it lies there, and puts it back when that is denied.
 */
bool moveFile(const QString &path,
              const FileState *seen = nullptr,
              const std::function<bool()> &mayStay = nullptr);
/** Whether the file lies in a trash already, and goes when that is emptied. By its path alone. */
bool holds(const QString &path);
} // namespace Trash
