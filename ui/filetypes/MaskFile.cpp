// SPDX-License-Identifier: MIT
#include "ui/filetypes/MaskFile.h"

#include "engine/LocalText.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

#include <unistd.h>

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
QString dataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
}

// The content is on the disk before it takes the place of the file. Asked for in two steps, since
// the toolkit's own end of a file says nothing of a buffer that could not be written.
bool finish(QSaveFile *file, const QByteArray &content)
{
    return file->write(content) == content.size() && file->flush() && ::fsync(file->handle()) == 0
        && file->commit();
}

// As every list that this program has made.
bool isListOfTypes(const QByteArray &content)
{
    const QList<QByteArray> lines = content.split('\n');
    return !content.contains('\0')
        && std::all_of(lines.cbegin(), lines.cend(), [](const QByteArray &line) {
               return line.trimmed().isEmpty() || line.contains('|');
           });
}

// Entries that were left out when the list was read would be gone for good.
bool isReadWhole(const QByteArray &content)
{
    const QList<QByteArray> lines = content.split('\n');
    const int ends = content.endsWith('\n') ? 1 : 0;
    return content.size() <= MaskFile::maxFileBytes && lines.size() - ends <= MaskFile::maxEntries
        && std::all_of(lines.cbegin(), lines.cend(), [](const QByteArray &line) {
               return line.size() < MaskFile::maxLineBytes;
           });
}

bool isReadFromHere()
{
    return QFileInfo(fileName()).absolutePath() == QFileInfo(dataFolder()).canonicalFilePath();
}

enum class Place { Free, Replaceable, UpToDate, Forbidden };

Place placeFor(const QByteArray &content)
{
    using MaskFile::maxFileBytes;
    const QFileInfo place(fileName());
    if (!place.isSymLink() && !place.exists()) {
        return Place::Free;
    }
    QFile file(fileName());
    if (place.isSymLink() || !place.isFile()
        || !file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        return Place::Forbidden;
    }
    const QByteArray old = file.read(qMax(maxFileBytes, content.size()) + 1);
    if (old == content) {
        return Place::UpToDate;
    }
    return isReadWhole(old) && (isReadFromHere() || isListOfTypes(old)) ? Place::Replaceable
                                                                        : Place::Forbidden;
}
} // namespace

QString MaskFile::readingPath()
{
    const QString folder = dataFolder();
    QDir().mkpath(folder);
    return folder + QDir::separator() + fileName();
}

void MaskFile::createDefault(const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qDebug() << file.errorString();
    } else if (!finish(&file, LocalText::encode(defaultContent()))) {
        qDebug() << qt_error_string();
    }
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
    decltype(content.size()) start = 0;
    while (start < content.size() && all.size() < maxEntries) {
        const auto lineFeed = content.indexOf('\n', start);
        const auto end = lineFeed < 0 ? content.size() : lineFeed + 1;
        const QByteArray line = content.mid(start, qMin(end - start, maxLineBytes));
        // By its pointer, so that the text ends at a zero byte.
        all.append(QString::fromUtf8(line.constData()).remove(carriageReturnAndLineFeed()));
        start = end;
    }
    return all;
}

bool MaskFile::save(const QStringList &entries)
{
    QStringList lines = entries;
    for (QString &line : lines) {
        if (!line.endsWith(carriageReturnAndLineFeed())) {
            line.append(carriageReturnAndLineFeed());
        }
    }
    const QByteArray content = LocalText::encode(lines.join(QString()));
    const Place place = placeFor(content);
    QSaveFile file(fileName());
    if (place == Place::UpToDate) {
        return true;
    }
    if (place == Place::Forbidden || !file.open(QIODevice::WriteOnly)) {
        return false;
    }
    for (const QString &line : std::as_const(lines)) {
        qDebug() << "write" << line;
    }
    return finish(&file, content);
}
