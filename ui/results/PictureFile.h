// SPDX-License-Identifier: MIT
#pragma once

#include "ui/results/TimedFile.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <QSize>
#include <QString>

/**
 * A picture in a file that may be anything: a pipe, a torn download, a header that announces more
 * pixels than there is memory. Such a file reads as a null image, and never blocks.
 *
 * BMP, GIF, ICO, JPEG and PNG are read, and JNG where the toolkit has a reader for it, by what the
 * file holds and whatever its name; nothing else is handed to a decoder. What a picture may cost is
 * bounded in pixels, and in seconds for a slow disk. Usable on any thread, by one at a time.
 */
class PictureFile final
{
    Q_DISABLE_COPY(PictureFile)

public:
    /** Reads no more than the header. Where given, the flag ends the reading once it is set. */
    explicit PictureFile(const QString &path, const std::atomic<bool> *isEnded = nullptr);

    /** In pixels, as the header announces it; invalid if the file cannot be read as a picture. */
    QSize size() const { return announcedSize; }
    /**
     * Decodes the whole picture, which may be too large for it while it is not for an icon. One of
     * the functions that decode works, once.
     */
    QImage read();
    /** Decodes at a reduced size where the format can, and scales smoothly. */
    QImage readAtSize(const QSize &target);
    /** At sizeAtHeight(). */
    QImage readAtHeight(int height);

    /** Keeps the aspect ratio. Empty where the width would be more than can be painted. */
    static QSize sizeAtHeight(const QSize &size, int height);
    /** Keeps the aspect ratio; a size that fits into the square stays. No side falls to nothing. */
    static QSize sizeWithin(const QSize &size, int side);

private:
    QImage decode();
    bool isWithin(qint64 pixels) const;
    bool takeIntoMemory();
    QSize headerSize();
    QSize sizeOfGif();

    TimedFile file;
    QBuffer content;
    QByteArray format;
    QImageReader reader;
    QSize announcedSize;
    qint64 mostPixels;
    /** Of a JPEG: it is decoded from line to line, and need not be held as a whole. */
    bool isSingleScan = false;
    qint64 firstScan = 0;
};
