// SPDX-License-Identifier: MIT
#include "ui/results/PictureFile.h"

#include "ui/QtCompat.h"
#include "ui/results/PictureHeader.h"

namespace
{
// What is decoded on the GUI thread holds it up by half a second, with the slowest kinds by one:
// measured for a megapixel 1.4 ms of a JPEG at reduced size and 5 ms at full size, 6 to 10 ms of a
// progressive one, 4 ms of BMP, 10 to 13 ms of PNG and 24 ms of PNG with 16 bits a channel. Photos
// of phones have 108 megapixels, pictures of a screen 33.
constexpr qint64 maxReducedPixels = 256'000'000;
constexpr qint64 maxPhotoPixels = 128'000'000;
constexpr qint64 maxPixels = 40'000'000;
// Of PNG with 16 bits a channel, which takes 16 bytes a pixel on the way.
constexpr qint64 maxDeepPixels = 20'000'000;
// Each costs as much as going through the whole picture. Encoders write about ten.
constexpr int maxScans = 32;
constexpr qint64 maxMilliseconds = 2000;
constexpr qint64 maxBytesInMemory = qint64(64) * 1024 * 1024;
constexpr qint64 readBytes = qint64(1024) * 1024;
// To the first image; the toolkit would look at all of them.
constexpr qint64 maxGifHeaderBytes = qint64(1024) * 1024;
// The painter's own limit.
constexpr int maxSidePixels = 32767;

// As the toolkit's fast scaling rounds, but never down to a picture without pixels.
int scaledSide(int side, int otherSide, int otherTarget)
{
    return qMax(1, qRound(qreal(otherTarget) / otherSide * side));
}
} // namespace

PictureFile::PictureFile(const QString &path, const std::atomic<bool> *isEnded)
    : file(maxMilliseconds, isEnded)
    , mostPixels(maxPixels)
{
    QtCompat::liftPictureLimit();
    if (!file.openFile(path)) {
        return;
    }
    format = PictureHeader::format(&file);
    if (format.isEmpty()) {
        return;
    }
    // Any reader of the system may take any content for its own, and some open what a picture names.
    reader.setAutoDetectImageFormat(false);
    reader.setFormat(format);
    reader.setDevice(&file);
    const QSize size = headerSize();
    if (!size.isEmpty() && qint64(size.width()) * size.height() <= mostPixels) {
        announcedSize = size;
    }
}

QImage PictureFile::read()
{
    return isWithin(maxPhotoPixels) && takeIntoMemory() ? decode() : QImage();
}

QImage PictureFile::readAtSize(const QSize &target)
{
    if (target.isEmpty() || !announcedSize.isValid() || !takeIntoMemory()) {
        return {};
    }
    const QSize reduced = target * 2;
    if (reduced.height() < announcedSize.height()
        && reader.supportsOption(QImageIOHandler::ScaledSize)) {
        reader.setScaledSize(reduced);
        // At this size nobody sees the finer of the decoder's two ways.
        reader.setQuality(0);
    } else if (!isWithin(maxPhotoPixels)) {
        return {};
    }
    const QImage image = decode();
    return image.isNull() ? image
                          : image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage PictureFile::readAtHeight(int height)
{
    return readAtSize(sizeAtHeight(announcedSize, height));
}

QSize PictureFile::sizeAtHeight(const QSize &size, int height)
{
    if (size.isEmpty()) {
        return {};
    }
    // Rounded as the smooth scaling of Qt 5 rounds.
    const qreal width = qreal(height) / size.height() * size.width() + 0.9999;
    return width > maxSidePixels ? QSize() : QSize(static_cast<int>(width), height);
}

QSize PictureFile::sizeWithin(const QSize &size, int side)
{
    if (size.width() <= side && size.height() <= side) {
        return size;
    }
    if (size.height() > size.width()) {
        return {scaledSide(size.width(), size.height(), side), side};
    }
    return {side, scaledSide(size.height(), size.width(), side)};
}

QImage PictureFile::decode()
{
    QImage image = reader.read();
    // Of a picture that came too slowly the rest is missing.
    if (file.isLate()) {
        return {};
    }
    // The toolkit takes "@2x" in a file's name for a picture that is meant to be shown smaller.
    image.setDevicePixelRatio(1.0);
    return image;
}

bool PictureFile::isWithin(qint64 pixels) const
{
    return announcedSize.isValid()
        && qint64(announcedSize.width()) * announcedSize.height() <= pixels;
}

// The decoder of JPEG takes a slower path near the end of each piece that it is given. False where
// the picture would take too long.
bool PictureFile::takeIntoMemory()
{
    if (format != "jpeg") {
        return true;
    }
    if (file.size() > maxBytesInMemory || !file.seek(0)) {
        return isSingleScan;
    }
    QByteArray bytes;
    bytes.reserve(static_cast<int>(file.size()));
    for (QByteArray piece = file.read(readBytes);
         !piece.isEmpty() && bytes.size() < maxBytesInMemory;
         piece = file.read(readBytes)) {
        bytes.append(piece);
    }
    content.setData(bytes);
    content.open(QIODevice::ReadOnly);
    reader.setDevice(&content);
    return !file.isLate()
        && (isSingleScan || PictureHeader::countScans(bytes, firstScan) <= maxScans);
}

QSize PictureFile::headerSize()
{
    // The file is looked at before the reader moves in it: what these announce to the toolkit is not
    // what decoding them takes, or takes long to find.
    if (format == "jpeg") {
        const PictureHeader::Jpeg header = PictureHeader::jpeg(&file);
        isSingleScan = header.isSingleScan;
        firstScan = header.firstScan;
        mostPixels = isSingleScan ? maxReducedPixels : maxPixels;
        return header.size;
    }
    if (format == "png") {
        const PictureHeader::Png header = PictureHeader::png(&file);
        mostPixels = header.bitsPerChannel > 8 ? maxDeepPixels : maxPixels;
        return header.size;
    }
    if (format == "gif") {
        return sizeOfGif();
    }
    if (format == "ico") {
        const QSize first = PictureHeader::firstImageOfIcon(&file);
        if (first.isEmpty() || qint64(first.width()) * first.height() > maxDeepPixels) {
            return {};
        }
    }
    return reader.size();
}

QSize PictureFile::sizeOfGif()
{
    const QSize canvas = PictureHeader::canvasOfGif(&file);
    content.setData(file.peek(maxGifHeaderBytes));
    content.open(QIODevice::ReadOnly);
    reader.setDevice(&content);
    const QSize size = reader.size();
    reader.setDevice(&file);
    content.close();
    content.setData(QByteArray());
    return size.isValid() ? size.expandedTo(canvas) : size;
}
