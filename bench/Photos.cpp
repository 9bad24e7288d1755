// SPDX-License-Identifier: MIT
#include "bench/Photos.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRandomGenerator>

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace
{
constexpr int photoWidth = 4000;
constexpr int photoHeight = 3000;

QImage photo(int seed)
{
    QImage image(photoWidth, photoHeight, QImage::Format_RGB32);
    QRandomGenerator random(static_cast<quint32>(seed));
    for (int y = 0; y < photoHeight; ++y) {
        auto *const line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < photoWidth; ++x) {
            const int grain = random.bounded(16);
            line[x] = qRgb(x * 200 / photoWidth + grain, y * 200 / photoHeight + grain, 90 + grain);
        }
    }
    return image;
}
} // namespace

QList<QStringList> Photos::pairs(const QString &folder, int count)
{
    constexpr int originals = 8;
    for (int i = 0; i < originals; ++i) {
        photo(i).save(QDir(folder).filePath(QStringLiteral("original%1.jpg").arg(i)), "JPEG", 85);
    }
    std::printf("photos of 12 megapixels, %.1f MB each\n",
                double(QFileInfo(QDir(folder).filePath(QStringLiteral("original0.jpg"))).size())
                    / 1e6);
    QList<QStringList> groups;
    for (int i = 0; i < count; ++i) {
        const QString original =
            QDir(folder).filePath(QStringLiteral("original%1.jpg").arg(i % originals));
        const QString path = QDir(folder).filePath(QStringLiteral("photo%1.jpg").arg(i));
        if (::link(QFile::encodeName(original).constData(), QFile::encodeName(path).constData())
            != 0) {
            std::perror("link");
            std::exit(2);
        }
        if (i % 2 == 0) {
            groups.append(QStringList());
        }
        groups.last().append(path);
    }
    return groups;
}
