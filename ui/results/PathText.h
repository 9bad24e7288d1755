// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/** How a path is shown to a user. */
namespace PathText
{
/**
 * The path with its folders one after the other from left to right, whatever script their names are
 * of. Characters that turn the direction of what follows, with which a name could pass for another
 * one, are replaced by a visible mark (U+FFFD). Other paths come back as they are.
 */
QString shown(const QString &path);
} // namespace PathText
