// SPDX-License-Identifier: MIT
#include "ui/Picture.h"

#include <QImageReader>

namespace
{
// Through the image reader: a QPixmap would look for a picture of twice the size by itself, and
// then count its pixels once more.
QPixmap load(const QString &path)
{
    return QPixmap::fromImageReader(std::make_unique<QImageReader>(path).get());
}

QPixmap withRatio(QPixmap pixmap, qreal ratio)
{
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}
} // namespace

QPixmap Picture::scaled(const QString &path, const QSize &size, qreal ratio)
{
    return withRatio(
        load(path).scaled(size * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
        ratio);
}

QPixmap Picture::scaledToHeight(const QString &path, int height, qreal ratio)
{
    return withRatio(load(path).scaledToHeight(qRound(height * ratio), Qt::SmoothTransformation),
                     ratio);
}

QPixmap Picture::scaledToWidth(const QString &path, int width, qreal ratio)
{
    return withRatio(load(path).scaledToWidth(qRound(width * ratio), Qt::SmoothTransformation),
                     ratio);
}
