// SPDX-License-Identifier: MIT
#include "engine/FileKey.h"

#include "engine/ContentHash.h"
#include "engine/Crc32.h"
#include "engine/RegularFile.h"
#include "engine/ScanProfile.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <memory>

namespace
{
constexpr qint64 minBlockBytes = qint64(4) * 1024;
constexpr qint64 maxBlockBytes = qint64(128) * 1024;
// So much more than it announced is read of a file, which may grow as fast as it is read.
constexpr qint64 maxBytesBehindTheEnd = qint64(64) * 1024 * 1024;

QDateTime creationTime(const QFileInfo &info)
{
    // As the toolkit's own date of creation, which its newer generation lacks: where the file system
    // keeps none, it is the last change of the file's metadata.
    const QDateTime birth = info.birthTime();
    return birth.isValid() ? birth : info.metadataChangeTime();
}
} // namespace

QString FileKey::ofAttributes(const QString &path, const ScanProfile &profile)
{
    return ofAttributes(path, RegularFile::sizeOf(path), profile);
}

QString FileKey::ofAttributes(const QString &path, qint64 size, const ScanProfile &profile)
{
    QByteArray key = QByteArray::number(size);
    if (profile.sameFileName || profile.sameFileExtension || profile.sameDateOfCreation) {
        const QFileInfo info(path);
        if (profile.sameFileName) {
            key += info.baseName().toLocal8Bit();
        }
        if (profile.sameFileExtension) {
            key += info.completeSuffix().toLocal8Bit();
        }
        if (profile.sameDateOfCreation) {
            key += creationTime(info).toString(Qt::TextDate).toLocal8Bit();
        }
    }
    return QString::fromLatin1(key.toBase64());
}

FileKey::Checksum FileKey::crcOf(const QString &path, const GoOn &goOn)
{
    Checksum checksum;
    RegularFile file;
    quint32 crc = 0;
    if (file.open(path)) {
        checksum.size = file.size();
        checksum.modified = file.modified();
        checksum.changed = file.changed();
        crc = Crc32().calculate(&file, goOn, &checksum.isWhole);
    }
    checksum.error = file.errorString();
    checksum.key = QString::number(crc);
    return checksum;
}

FileKey::Checksum FileKey::hashOf(const QString &path,
                                  QCryptographicHash::Algorithm algorithm,
                                  const GoOn &goOn)
{
    Checksum checksum;
    RegularFile file;
    if (!file.open(path)) {
        checksum.error = file.errorString();
        return checksum;
    }
    checksum.size = file.size();
    checksum.modified = file.modified();
    checksum.changed = file.changed();
    const qint64 bufferBytes = std::clamp(file.size() + 1, minBlockBytes, maxBlockBytes);
    const std::unique_ptr<char[]> buffer(new char[static_cast<std::size_t>(bufferBytes)]);
    QCryptographicHash hash(algorithm);
    ContentHash contentHash;
    qint64 done = 0;
    qint64 bytes = bufferBytes;
    while (bytes == bufferBytes) {
        bytes = file.read(buffer.get(), bufferBytes);
        if (bytes < 0 || !goOn()) {
            checksum.error = file.errorString();
            return checksum;
        }
        hash.addData(QByteArray::fromRawData(buffer.get(), static_cast<int>(bytes)));
        contentHash.add(buffer.get(), bytes);
        done += bytes;
        if (done > file.size() + maxBytesBehindTheEnd) {
            return checksum;
        }
    }
    // A file that has been cut short since it was opened has no key.
    if (done >= file.size()) {
        checksum.isWhole = true;
        checksum.key = QString::fromLatin1(hash.result().toBase64());
        checksum.contentHash = contentHash.result();
    }
    return checksum;
}

FileKey::Checksum FileKey::ofContent(const QString &path,
                                     const ScanProfile &profile,
                                     const GoOn &goOn)
{
    if (profile.crcHash) {
        return crcOf(path, goOn);
    }
    return hashOf(path, profile.md5Hash ? QCryptographicHash::Md5 : QCryptographicHash::Sha1, goOn);
}

QString FileKey::ofCrc(const QString &path)
{
    return crcOf(path, untilInterrupted()).key;
}

QString FileKey::ofHash(const QString &path, QCryptographicHash::Algorithm algorithm)
{
    return hashOf(path, algorithm, untilInterrupted()).key;
}
