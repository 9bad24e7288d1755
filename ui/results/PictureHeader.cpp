// SPDX-License-Identifier: MIT
#include "ui/results/PictureHeader.h"

#include <QIODevice>
#include <QtEndian>

namespace
{
constexpr int gifCanvasOffset = 6;
constexpr int iconEntryOffset = 6;
constexpr int iconEntryBytes = 16;
constexpr int iconImageBytesOffset = 8;
constexpr int iconImageOffset = 12;
constexpr int pngSizeOffset = 16;
constexpr int pngBitsOffset = 24;
constexpr int bitmapSizeOffset = 4;

constexpr char pngSignature[] = "\x89PNG\r\n\x1a\n";

// Of at most 64 kilobytes each. Some cameras put a second picture of many of them before the first.
constexpr int maxJpegSegments = 512;
constexpr int maxStrayBytes = 65536;
constexpr uchar jpegMarker = 0xff;
constexpr uchar startOfScan = 0xda;
constexpr uchar endOfImage = 0xd9;
constexpr int heightInFrameOffset = 5;
constexpr int widthInFrameOffset = 7;
constexpr int componentsInFrameOffset = 9;
constexpr int componentsInScanOffset = 4;

struct Signature {
    QByteArray bytes;
    QByteArray format;
};

QVector<Signature> signatures()
{
    return {{QByteArrayLiteral("BM"), QByteArrayLiteral("bmp")},
            {QByteArrayLiteral("GIF87a"), QByteArrayLiteral("gif")},
            {QByteArrayLiteral("GIF89a"), QByteArrayLiteral("gif")},
            {QByteArrayLiteral("\0\0\1\0"), QByteArrayLiteral("ico")},
            {QByteArrayLiteral("\x8bJNG\r\n\x1a\n"), QByteArrayLiteral("jng")},
            {QByteArrayLiteral("\xff\xd8\xff"), QByteArrayLiteral("jpeg")},
            {QByteArray(pngSignature), QByteArrayLiteral("png")}};
}

// As many as there are.
QByteArray bytesFrom(QIODevice *device, qint64 offset, int count)
{
    QByteArray bytes = device->seek(offset) ? device->read(count) : QByteArray();
    device->seek(0);
    return bytes;
}

// All or none.
QByteArray bytesAt(QIODevice *device, qint64 offset, int count)
{
    QByteArray bytes = bytesFrom(device, offset, count);
    return bytes.size() == count ? bytes : QByteArray();
}

template<typename Number>
int littleEndian(const QByteArray &bytes, int offset)
{
    return static_cast<int>(qFromLittleEndian<Number>(bytes.constData() + offset));
}

int bigEndian16(const QByteArray &bytes, int offset)
{
    return qFromBigEndian<quint16>(bytes.constData() + offset);
}

uchar byteAt(const QByteArray &bytes, int offset)
{
    return static_cast<uchar>(bytes.at(offset));
}

// A marker that is followed by no length: of a restart, of the start and the end of a picture.
bool standsAlone(uchar marker)
{
    return marker == 0x01 || (marker >= 0xd0 && marker <= endOfImage);
}

// Of the numbers for frames three stand for something else.
bool isFrame(uchar marker)
{
    return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

// Coded by Huffman's trees, not progressive.
bool isSequential(uchar frame)
{
    return frame == 0xc0 || frame == 0xc1;
}

bool isMarker(const QByteArray &segment)
{
    return byteAt(segment, 0) == jpegMarker && byteAt(segment, 1) != jpegMarker
        && byteAt(segment, 1) != 0;
}

QSize pngSize(const QByteArray &header)
{
    return {qFromBigEndian<qint32>(header.constData() + pngSizeOffset),
            qFromBigEndian<qint32>(header.constData() + pngSizeOffset + 4)};
}

int indexOfMarkerByte(const QByteArray &jpeg, int from)
{
    return static_cast<int>(jpeg.indexOf(static_cast<char>(jpegMarker), from));
}

// Behind coded data, in which only a zero or a restart follows such a byte. -1 where there is none.
int nextMarker(const QByteArray &jpeg, int from)
{
    int at = indexOfMarkerByte(jpeg, from);
    while (at >= 0 && at + 1 < jpeg.size()) {
        const uchar marker = byteAt(jpeg, at + 1);
        if (marker != 0 && marker != jpegMarker && (marker < 0xd0 || marker > 0xd7)) {
            return at;
        }
        at = indexOfMarkerByte(jpeg, at + 1);
    }
    return -1;
}
} // namespace

QByteArray PictureHeader::format(QIODevice *device)
{
    const QByteArray start = device->peek(sizeof pngSignature - 1);
    const QVector<Signature> known = signatures();
    for (const Signature &signature : known) {
        if (start.startsWith(signature.bytes)) {
            return signature.format;
        }
    }
    return {};
}

PictureHeader::Jpeg PictureHeader::jpeg(QIODevice *device)
{
    Jpeg jpeg;
    uchar frame = 0;
    int components = 0;
    qint64 at = 2;
    for (int i = 0; i < maxJpegSegments; ++i) {
        QByteArray segment = bytesAt(device, at, componentsInFrameOffset + 1);
        if (!segment.isEmpty() && !isMarker(segment)) {
            // The decoder goes on behind what is out of place.
            at += qMax(0, nextMarker(bytesFrom(device, at, maxStrayBytes), 0));
            segment = bytesAt(device, at, componentsInFrameOffset + 1);
        }
        if (segment.isEmpty() || !isMarker(segment)) {
            break;
        }
        const uchar marker = byteAt(segment, 1);
        if (marker == startOfScan) {
            jpeg.isSingleScan =
                isSequential(frame) && byteAt(segment, componentsInScanOffset) == components;
            jpeg.firstScan = at;
            return jpeg;
        }
        if (isFrame(marker)) {
            frame = marker;
            components = byteAt(segment, componentsInFrameOffset);
            jpeg.size = {bigEndian16(segment, widthInFrameOffset),
                         bigEndian16(segment, heightInFrameOffset)};
        }
        at += standsAlone(marker) ? 2 : 2 + bigEndian16(segment, 2);
    }
    return {};
}

int PictureHeader::countScans(const QByteArray &bytes, qint64 firstScan)
{
    int scans = 0;
    int at = firstScan < bytes.size() ? static_cast<int>(firstScan) : -1;
    while (at >= 0 && at + 4 <= bytes.size() && byteAt(bytes, at + 1) != endOfImage) {
        const uchar marker = byteAt(bytes, at + 1);
        if (marker == startOfScan) {
            ++scans;
        }
        at = nextMarker(bytes, standsAlone(marker) ? at + 2 : at + 2 + bigEndian16(bytes, at + 2));
    }
    return scans;
}

PictureHeader::Png PictureHeader::png(QIODevice *device)
{
    const QByteArray header = bytesAt(device, 0, pngBitsOffset + 1);
    return header.isEmpty() ? Png() : Png{pngSize(header), byteAt(header, pngBitsOffset)};
}

QSize PictureHeader::canvasOfGif(QIODevice *device)
{
    const QByteArray canvas = bytesAt(device, gifCanvasOffset, 4);
    return canvas.isEmpty()
        ? QSize()
        : QSize(littleEndian<quint16>(canvas, 0), littleEndian<quint16>(canvas, 2));
}

QSize PictureHeader::firstImageOfIcon(QIODevice *device)
{
    const QByteArray entry = bytesAt(device, iconEntryOffset, iconEntryBytes);
    if (entry.isEmpty()) {
        return {};
    }
    // The decoder makes room for as many bytes as the entry announces.
    if (qFromLittleEndian<quint32>(entry.constData() + iconImageBytesOffset) > device->size()) {
        return {};
    }
    const auto image = qFromLittleEndian<quint32>(entry.constData() + iconImageOffset);
    const QByteArray header = bytesAt(device, image, pngSizeOffset + 8);
    if (header.isEmpty()) {
        return {};
    }
    if (header.startsWith(pngSignature)) {
        return pngSize(header);
    }
    return {littleEndian<qint32>(header, bitmapSizeOffset),
            littleEndian<qint32>(header, bitmapSizeOffset + 4)};
}
