// SPDX-License-Identifier: MIT
#include "ui/Picture.h"

#include <QFile>
#include <QImageReader>

namespace
{
QString forRatio(const QString &path, qreal ratio)
{
    const auto dot = path.lastIndexOf(QLatin1Char('.'));
    if (ratio <= 1 || dot < 0) {
        return path;
    }
    const QString doubled = path.left(dot) + QStringLiteral("@2x") + path.mid(dot);
    return QFile::exists(doubled) ? doubled : path;
}

QPixmap load(const QString &path, qreal ratio)
{
    QImageReader reader(forRatio(path, ratio));
    return QPixmap::fromImageReader(&reader);
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
        load(path, ratio).scaled(size * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
        ratio);
}

QPixmap Picture::scaledToHeight(const QString &path, int height, qreal ratio)
{
    return withRatio(
        load(path, ratio).scaledToHeight(qRound(height * ratio), Qt::SmoothTransformation),
        ratio);
}

QPixmap Picture::scaledToWidth(const QString &path, int width, qreal ratio)
{
    return withRatio(
        load(path, ratio).scaledToWidth(qRound(width * ratio), Qt::SmoothTransformation),
        ratio);
}

QSize Picture::size(const QString &path)
{
    return QImageReader(path).size();
}
