// SPDX-License-Identifier: MIT
#include "tools/tour/TourSample.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>
#include <QtMath>

namespace
{
constexpr int photosCount = 24;
constexpr int documentsCount = 80;
constexpr int songsCount = 16;
constexpr int photoWidthPixels = 1200;
constexpr int photoHeightPixels = 800;
constexpr int songBytes = 96 * 1024;

struct Sky {
    QRgb top;
    QRgb bottom;
    QRgb sun;
};

constexpr Sky skies[] = {
    {0xff2b6cb0, 0xffbee3f8, 0xfffff5cc},
    {0xff553c9a, 0xfffbb6ce, 0xfffffaf0},
    {0xff1a365d, 0xffed8936, 0xfffefcbf},
    {0xff2c7a7b, 0xffe6fffa, 0xffffffff},
};

// A range of hills: the nearer, the darker and the lower.
void paintHills(QPainter &painter, QRandomGenerator &random, int depth, const QColor &color)
{
    const double base = photoHeightPixels * (0.55 + 0.12 * depth);
    const double phase = random.bounded(6.28);
    const double length = 140 + random.bounded(160);
    QPainterPath hills(QPointF(0, photoHeightPixels));
    for (int x = 0; x <= photoWidthPixels; x += 4) {
        hills.lineTo(x,
                     base + 46 * qSin(x / length + phase) + 18 * qSin(x / (length * 0.37) + phase));
    }
    hills.lineTo(photoWidthPixels, photoHeightPixels);
    painter.fillPath(hills, color.darker(100 + 40 * depth));
}

QImage landscape(quint32 seed)
{
    QRandomGenerator random(seed);
    const Sky &sky = skies[seed % 4];
    QImage image(photoWidthPixels, photoHeightPixels, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient gradient(0, 0, 0, photoHeightPixels * 0.75);
    gradient.setColorAt(0, QColor::fromRgb(sky.top));
    gradient.setColorAt(1, QColor::fromRgb(sky.bottom));
    painter.fillRect(image.rect(), gradient);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(sky.sun));
    painter.drawEllipse(QPointF(200 + random.bounded(800), 140 + random.bounded(200)), 60, 60);
    const QColor green = QColor::fromHsv(90 + random.bounded(80), 110, 170);
    for (int depth = 0; depth < 4; ++depth) {
        paintHills(painter, random, depth, green);
    }
    return image;
}

QByteArray jpeg(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 88);
    return bytes;
}
} // namespace

TourSample::TourSample(const QString &folder)
    : root(folder)
{
    addPhotos();
    addDocuments();
    addMusic();
    addOddities();
}

void TourSample::write(const QString &name, const QByteArray &content)
{
    QFile file(root.filePath(name));
    complete = root.mkpath(QFileInfo(name).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size() && complete;
    ++files;
}

void TourSample::copy(const QString &from, const QString &to)
{
    complete = root.mkpath(QFileInfo(to).path())
        && QFile::copy(root.filePath(from), root.filePath(to)) && complete;
    ++files;
}

// Every photo has come off the camera; every second one is in the album under another name, and
// every third one in a backup.
void TourSample::addPhotos()
{
    for (int i = 0; i < photosCount; ++i) {
        const QString camera = QStringLiteral("Photos/Camera/IMG_%1.jpg").arg(4100 + i);
        write(camera, jpeg(landscape(static_cast<quint32>(i))));
        if (i % 2 == 0) {
            copy(camera, QStringLiteral("Photos/Album/Evening walk %1.jpg").arg(i / 2 + 1));
        }
        if (i % 3 == 0) {
            copy(camera, QStringLiteral("Backup/2021/IMG_%1.jpg").arg(4100 + i));
        }
    }
}

void TourSample::addDocuments()
{
    for (int i = 0; i < documentsCount; ++i) {
        const QString name = QStringLiteral("Documents/Letters/Letter %1.txt").arg(i + 1);
        QByteArray text =
            "Dear reader,\n\nthis is letter number " + QByteArray::number(i + 1) + ".\n";
        text += QByteArray("It rained, then it did not.\n").repeated(20 + i);
        write(name, text);
        if (i % 2 == 0) {
            copy(name, QStringLiteral("Backup/Letters/Letter %1.txt").arg(i + 1));
        }
        if (i % 4 == 0) {
            // As long as the letter, and not the letter.
            text[text.size() / 2] = '!';
            write(QStringLiteral("Documents/Drafts/Letter %1 (draft).txt").arg(i + 1), text);
        }
    }
}

void TourSample::addMusic()
{
    for (int i = 0; i < songsCount; ++i) {
        QByteArray song(songBytes, Qt::Uninitialized);
        for (int sample = 0; sample < songBytes; ++sample) {
            song[sample] =
                static_cast<char>(static_cast<int>(127 * qSin(sample * (0.02 + 0.003 * i))));
        }
        const QString name =
            QStringLiteral("Music/Track %1.wav").arg(i + 1, 2, 10, QLatin1Char('0'));
        write(name, song);
        if (i % 2 == 0) {
            copy(name, QStringLiteral("Music/Favourites/%1. favourite.wav").arg(i / 2 + 1));
        }
    }
}

void TourSample::addOddities()
{
    const QStringList names = {QStringLiteral("Übersicht"),
                               QString::fromUtf8("Фотографии"),
                               QString::fromUtf8("写真"),
                               QString::fromUtf8("תמונות"),
                               QString::fromUtf8("Φωτογραφίες"),
                               QStringLiteral("100% <b>sure</b> & \"quoted\"")};
    for (const QString &name : names) {
        const QString first = QStringLiteral("Documents/%1.txt").arg(name);
        write(first, name.toUtf8().repeated(40));
        copy(first, QStringLiteral("Backup/%1 (2).txt").arg(name));
    }
    for (int i = 0; i < 12; ++i) {
        write(QStringLiteral("Documents/Empty/New file %1").arg(i + 1), QByteArray());
    }
    for (int i = 0; i < 72; ++i) {
        write(QStringLiteral("Documents/Notes/Note %1.md").arg(i + 1),
              QByteArray("# Note\n") + QByteArray(i + 1, '.'));
    }
}
