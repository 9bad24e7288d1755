// SPDX-License-Identifier: MIT
#include "ui/results/PictureFile.h"

#include <QFileInfo>
#include <QtEndian>

namespace
{
constexpr qint64 maxPixels = 256'000'000;
constexpr qint64 maxBytesInMemory = qint64(64) * 1024 * 1024;
// The painter's own limit.
constexpr int maxSidePixels = 32767;
constexpr int gifCanvasOffset = 6;
constexpr int iconEntryOffset = 6;
constexpr int iconImageOffset = 12;
constexpr int pngSizeOffset = 16;
constexpr int bitmapSizeOffset = 4;

bool isDecodable(const QSize &size)
{
    return !size.isEmpty() && qint64(size.width()) * size.height() <= maxPixels;
}

template<typename Number>
int littleEndian(const QByteArray &bytes, int offset)
{
    return static_cast<int>(qFromLittleEndian<Number>(bytes.constData() + offset));
}
} // namespace

PictureFile::PictureFile(const QString &path)
    : file(path)
{
    // Opening a pipe waits for its writer.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return;
    }
    reader.setDevice(&file);
    reader.setDecideFormatFromContent(true);
    const QSize size = headerSize();
    if (isDecodable(size)) {
        announcedSize = size;
    }
}

QImage PictureFile::read()
{
    QImage image;
    if (announcedSize.isValid()) {
        image = reader.read();
        // The toolkit takes "@2x" in a file's name for a picture that is meant to be shown smaller.
        image.setDevicePixelRatio(1.0);
    }
    return image;
}

QImage PictureFile::readAtHeight(int height)
{
    const QSize target = sizeAtHeight(announcedSize, height);
    if (target.isEmpty()) {
        return {};
    }
    const QSize reduced = target * 2;
    if (reduced.height() < announcedSize.height()
        && reader.supportsOption(QImageIOHandler::ScaledSize)) {
        readFromMemory();
        reader.setScaledSize(reduced);
        // At this size nobody sees the finer of the decoder's two ways.
        reader.setQuality(0);
    }
    const QImage image = read();
    return image.isNull() ? image
                          : image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QSize PictureFile::sizeAtHeight(const QSize &size, int height)
{
    if (size.isEmpty()) {
        return {};
    }
    // Rounded as the toolkit's smooth scaling rounds.
    const qreal width = qreal(height) / size.height() * size.width() + 0.9999;
    return width > maxSidePixels ? QSize() : QSize(static_cast<int>(width), height);
}

void PictureFile::readFromMemory()
{
    // The decoder of JPEG takes a slower path near the end of each piece that it is given.
    if (reader.format() != "jpeg" || file.size() > maxBytesInMemory || !file.seek(0)) {
        return;
    }
    content.setData(file.read(file.size()));
    content.open(QIODevice::ReadOnly);
    reader.setDevice(&content);
}

QSize PictureFile::headerSize()
{
    const QByteArray format = reader.format();
    // What these two announce to the toolkit is not what decoding them takes. The file is looked at
    // before the reader moves in it.
    QSize atLeast;
    if (format == "gif") {
        atLeast = canvasOfGif();
    } else if ((format == "ico" || format == "cur") && !isDecodable(firstImageOfIcon())) {
        return {};
    }
    const QSize size = reader.size();
    return size.isValid() ? size.expandedTo(atLeast) : size;
}

QSize PictureFile::canvasOfGif()
{
    const QByteArray header = file.peek(gifCanvasOffset + 4);
    if (header.size() < gifCanvasOffset + 4) {
        return {};
    }
    return {littleEndian<quint16>(header, gifCanvasOffset),
            littleEndian<quint16>(header, gifCanvasOffset + 2)};
}

QSize PictureFile::firstImageOfIcon()
{
    const qint64 start = file.pos();
    const QByteArray entry = file.peek(iconEntryOffset + 16);
    if (entry.size() < iconEntryOffset + 16) {
        return {};
    }
    const auto image =
        qFromLittleEndian<quint32>(entry.constData() + iconEntryOffset + iconImageOffset);
    file.seek(start + image);
    const QByteArray header = file.peek(pngSizeOffset + 8);
    file.seek(start);
    if (header.size() < pngSizeOffset + 8) {
        return {};
    }
    if (header.startsWith("\x89PNG")) {
        return {qFromBigEndian<qint32>(header.constData() + pngSizeOffset),
                qFromBigEndian<qint32>(header.constData() + pngSizeOffset + 4)};
    }
    return {littleEndian<qint32>(header, bitmapSizeOffset),
            littleEndian<qint32>(header, bitmapSizeOffset + 4)};
}
