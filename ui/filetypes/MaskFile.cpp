// SPDX-License-Identifier: MIT
#include "ui/filetypes/MaskFile.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace
{
QString fileName()
{
    return QStringLiteral("ftie.dat");
}

QString carriageReturnAndLineFeed()
{
    return QStringLiteral("\r\n");
}

// The second line holds two groups, and that is how every list shows it.
QString defaultContent()
{
    return QStringLiteral(
        "Any File|*.*\n"
        "Adobe Acrobat Files|*.PDFArchive Files|*.7Z;*.ACE;*.ALZ;*.ARC;*.ARJ;*.BZ2;*.BZ2;*.CAB;"
        "*.JAR;*.LZH;*.PAK;*.RAR;*.AT3;*.TGZ;*.TAR;*.GZ;*.UHA;*.ZIP\n"
        "MS Office Files|*.MDB;*.ADP;*.MDA;*.MDE;*.ADE;*.XL;*.XLA;*.XLS*;*.XLT;*.XLM;*.XLC;*.XLW;"
        "*.PPS;*.PPT*;*.DOC*;*.WRI;*.CSV\n"
        "Music Files|*.M4A;*.M4P;*.MP2;*.AAC;*.AIFF;*.APE;*.AU;*.FLAC;*.MID;*.MP3;*.OGG;*.WAV;"
        "*.WMA;*.MP3PRO;*.RM;*.RA\n"
        "Open Office Files|*.ODT;*.ODS;*.ODG;*.ODP;*.ODM;*.ODF\n"
        "Photo Images|*.BMP;*.GIF;*.ICO;*.JNG;*.JPG;*.JPEG;*.JPE;*.JP2;*.JPC;*.J2K;*.PNG;*.TIF;"
        "*.TIFF;*.EPS;*.CLP;*.CRW;*.CR2;*.DCX;*.EXR;*.KDC;*.PCX;*.PSD;*.RAW;*.SFW;*.WMF\n"
        "Text Files|*.TXT;*.RTF\n"
        "Video Files|*.3GP;*.MP4;*.SWF;*.FLA;*.FLV;*.MKV;*.MPEG;*.MPG;*.M1V;*.MP2;*.MPA;*.MPE;"
        "*.MOV;*.AVI;*.WMV;*.DIVX\n"
        "Web Files|*.ASP;*.CSS;*.HTML;*.HTM;*.PHP;*.XHTML;*.JS\n");
}
} // namespace

QString MaskFile::readingPath()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir().mkpath(folder);
    return folder + QDir::separator() + fileName();
}

void MaskFile::createDefault(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qDebug() << file.errorString();
    }
    // Tried even so: the toolkit then names the file in a warning, which the error text does not.
    file.write(defaultContent().toLocal8Bit());
    file.close();
}

std::optional<QStringList> MaskFile::read(const QString &path)
{
    QFile file(path);
    // Opening a FIFO would wait for its other end.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return entries(file.read(maxFileBytes));
}

QStringList MaskFile::entries(const QByteArray &content)
{
    QStringList all;
    int start = 0;
    while (start < content.size() && all.size() < maxEntries) {
        const int lineFeed = content.indexOf('\n', start);
        const int end = lineFeed < 0 ? content.size() : lineFeed + 1;
        const QByteArray line = content.mid(start, qMin(end - start, maxLineBytes));
        // By its pointer, so that the text ends at a zero byte.
        all.append(QString::fromUtf8(line.constData()).remove(carriageReturnAndLineFeed()));
        start = end;
    }
    return all;
}

bool MaskFile::save(const QStringList &entries)
{
    QFile file(fileName());
    const QFileInfo place(fileName());
    if ((place.exists() && !place.isFile()) || !file.open(QIODevice::WriteOnly)) {
        return false;
    }
    for (QString line : entries) {
        if (!line.endsWith(carriageReturnAndLineFeed())) {
            line.append(carriageReturnAndLineFeed());
        }
        qDebug() << "write" << line;
        file.write(line.toLocal8Bit());
    }
    return true;
}
