// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ToolTipText
{
/** The path as it reads on the screen, whatever it would mean as markup. Names nothing to be opened. */
QString ofPath(const QString &path);
} // namespace ToolTipText
