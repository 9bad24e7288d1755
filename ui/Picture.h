// SPDX-License-Identifier: MIT
#pragma once

#include <QPixmap>
#include <QSize>
#include <QString>

/**
 * The program's pictures, scaled smoothly for the screen they are shown on. Sizes are logical
 * pixels: at a ratio of 2 the pixmap has twice as many and says so by its devicePixelRatio().
 *
 * Above a ratio of 1 the picture "name@2x.png" beside "name.png" is taken where there is one.
 */
namespace Picture
{
QPixmap scaled(const QString &path, const QSize &size, qreal ratio);
QPixmap scaledToHeight(const QString &path, int height, qreal ratio);
QPixmap scaledToWidth(const QString &path, int width, qreal ratio);
/** The picture's own size, the same at every ratio; an invalid size if there is no such picture. */
QSize size(const QString &path);
} // namespace Picture
