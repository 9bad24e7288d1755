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
/** What a JPEG says before its first scan. */
struct Jpeg {
    /** In pixels; invalid where no scan was found. */
    QSize size;
    /** One scan holds all of it, so that it can be decoded line by line. */
    bool isSingleScan = false;
    /** Offset in bytes. */
    qint64 firstScan = 0;
};

Jpeg jpeg(QIODevice *device);
/** Scans of a whole JPEG, from the one that begins at the offset. */
int countScans(const QByteArray &bytes, qint64 firstScan);

/** What a PNG says in its first bytes. */
struct Png {
    /** In pixels; invalid if the header is cut short. */
    QSize size;
    int bitsPerChannel = 0;
};

Png png(QIODevice *device);
/** In pixels; invalid if the header is cut short. */
QSize canvasOfGif(QIODevice *device);
/** Of the first image itself, not of its entry; invalid where it does not lie in the file. */
QSize firstImageOfIcon(QIODevice *device);
} // namespace PictureHeader
