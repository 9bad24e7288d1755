// SPDX-License-Identifier: MIT
#pragma once

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QSize>
#include <QString>

/**
 * A picture in a file that may be anything: a pipe, a torn download, a header that announces more
 * pixels than there is memory. Such a file reads as a null image, and never blocks.
 *
 * The format is guessed from the content. Usable on any thread, by one at a time.
 */
class PictureFile final
{
    Q_DISABLE_COPY(PictureFile)

public:
    /** Reads no more than the header. */
    explicit PictureFile(const QString &path);

    /** In pixels, as the header announces it; invalid if the file cannot be read as a picture. */
    QSize size() const { return announcedSize; }
    /** Decodes the whole picture. Either of the two functions that decode works once. */
    QImage read();
    /** Decodes at a reduced size where the format can, and scales smoothly to sizeAtHeight(). */
    QImage readAtHeight(int height);

    /** Keeps the aspect ratio. Empty where the width would be more than can be painted. */
    static QSize sizeAtHeight(const QSize &size, int height);

private:
    void readFromMemory();
    QSize headerSize();
    QSize canvasOfGif();
    QSize firstImageOfIcon();

    QFile file;
    QBuffer content;
    QImageReader reader;
    QSize announcedSize;
};
