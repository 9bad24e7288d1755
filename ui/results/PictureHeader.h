// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QSize>

class QIODevice;

/**
 * What the first bytes of a picture say, read without a decoder. Each function reads from the start
 * of a device that can be seeked and leaves it there, and takes any content.
 */
namespace PictureHeader
{
/** "bmp", "gif", "ico", "jng", "jpeg" or "png", as the toolkit names them; empty for all else. */
QByteArray format(QIODevice *device);
/** In pixels; invalid if the header is cut short. */
QSize canvasOfGif(QIODevice *device);
/** Of the first image itself, not of its entry; invalid where it does not lie in the file. */
QSize firstImageOfIcon(QIODevice *device);

/** How a JPEG is decoded. */
struct JpegScans {
    /** One scan holds all of it, so that it can be decoded line by line. */
    bool isSingle = false;
    /** Where its first scan begins; 0 if that was not found. */
    qint64 start = 0;
};
JpegScans scansOfJpeg(QIODevice *device);
/** Scans from the one that begins at the offset. */
int countScans(const QByteArray &jpeg, qint64 start);
} // namespace PictureHeader
