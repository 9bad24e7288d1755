// SPDX-License-Identifier: MIT
#pragma once

#include <QPalette>

class QStyle;

/**
 * The colours of the program, which stands on a white ground whatever the desktop's theme is.
 *
 * A palette for a light ground by the style, or by the toolkit's own where the style is a dark one,
 * with black texts in all colour groups. Texts that are disabled, selected or links have a contrast
 * of at least 4.5 to 1 to what they stand on. Every role is set, so nothing of the theme's shows.
 */
namespace LightPalette
{
QPalette make(const QStyle *style);
/**
 * For the whole program, tool tips included. A style that paints dark by itself is replaced. Cheap
 * where the palette is in place: to be called again whenever a theme may have put one over it.
 */
void install();
/** Of two opaque colours, from 1 (alike) to 21 (black on white). */
double contrast(const QColor &one, const QColor &other);
} // namespace LightPalette
