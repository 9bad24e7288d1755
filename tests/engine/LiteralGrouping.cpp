// SPDX-License-Identifier: MIT
#include "tests/engine/LiteralGrouping.h"

#include "tests/support/Toolkit.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace
{
quint32 crcOfFile(const QString &path)
{
    QFile file(path);
    quint32 crc = 0xFFFFFFFF;
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray content = file.readAll();
        for (const char character : content) {
            crc ^= static_cast<quint8>(character);
            for (int bit = 0; bit < 8; ++bit) {
                crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xEDB88320 : crc >> 1;
            }
        }
    }
    return crc ^ 0xFFFFFFFF;
}

QString hashOfFile(const QString &path, QCryptographicHash::Algorithm algorithm)
{
    QFile file(path);
    QCryptographicHash hash(algorithm);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        return {};
    }
    return QString::fromLatin1(hash.result().toBase64());
}
} // namespace

LiteralGrouping::LiteralGrouping(const QStringList &files, const ScanProfile &scanProfile)
    : allFiles(files)
    , profile(scanProfile)
{
    if (profile.advancedMatch) {
        groupByChecksum();
    } else {
        groupByContent();
    }
}

QList<QStringList> LiteralGrouping::result() const
{
    QList<QStringList> groups;
    for (int i = 0; i < duplicatedGroups.values().size(); ++i) {
        if (duplicatedGroups.values().at(i).size() > 1) {
            groups.append(duplicatedGroups.values().at(i));
        }
    }
    return groups;
}

QList<QStringList> LiteralGrouping::exactGroups() const
{
    QStringList contents;
    QList<QStringList> groups;
    for (const QString &path : allFiles) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QString content = key(path, profile) + QLatin1Char(' ')
            + (profile.advancedMatch ? QString::number(file.size())
                                     : QString::fromLatin1(file.readAll().toHex()));
        if (!contents.contains(content)) {
            contents.append(content);
            groups.append(QStringList());
        }
        QStringList &group = groups[contents.indexOf(content)];
        if (!group.contains(path)) {
            group.append(path);
        }
    }
    groups.erase(std::remove_if(groups.begin(),
                                groups.end(),
                                [](const QStringList &group) { return group.size() < 2; }),
                 groups.end());
    return groups;
}

void LiteralGrouping::groupByContent()
{
    QHash<QString, QStringList> buckets;
    for (const QString &path : std::as_const(allFiles)) {
        const QString fileKey = key(path, profile);
        if (!fileKey.isEmpty()) {
            QStringList bucket = buckets.value(fileKey);
            bucket.append(path);
            buckets.insert(fileKey, bucket);
        }
    }
    for (int i = 0; i < buckets.keys().size(); ++i) {
        const QString bucketKey = buckets.keys().at(i);
        const QStringList bucket = buckets.value(bucketKey);
        for (int j = 0; j < bucket.size() - 1; ++j) {
            for (int k = j + 1; k < bucket.size(); ++k) {
                const QString &a = bucket.at(j);
                const QString &b = bucket.at(k);
                if (!compare(a, b, &unreadableFiles)) {
                    continue;
                }
                add(QFileInfo(b).size());
                QStringList dup = duplicatedGroups.value(bucketKey);
                if (dup.isEmpty()) {
                    ++countFoundedDuplicated;
                    add(QFileInfo(a).size());
                    dup.append(a);
                }
                if (!dup.contains(b)) {
                    dup.append(b);
                    ++countFoundedDuplicated;
                    duplicatedGroups.insert(bucketKey, dup);
                    count(i);
                }
            }
        }
    }
}

void LiteralGrouping::groupByChecksum()
{
    int n = 0;
    for (const QString &path : std::as_const(allFiles)) {
        const QString fileKey = key(path, profile);
        ++n;
        if (fileKey.isEmpty()) {
            continue;
        }
        QStringList group = duplicatedGroups.value(fileKey);
        if (!group.isEmpty()) {
            if (group.size() == 1) {
                ++countFoundedDuplicated;
                add(QFileInfo(group.first()).size());
            }
            ++countFoundedDuplicated;
            add(QFileInfo(path).size());
        }
        group.append(path);
        duplicatedGroups.insert(fileKey, group);
        count(n);
    }
}

void LiteralGrouping::add(qint64 bytes)
{
    const qint64 sum = static_cast<qint64>(summFileSize) + static_cast<qint32>(bytes);
    summFileSize = static_cast<qint32>(sum);
}

void LiteralGrouping::count(int index)
{
    lines.append(
        QStringLiteral("%1 %2 %3").arg(index).arg(countFoundedDuplicated).arg(summFileSize));
}

bool LiteralGrouping::compare(const QString &a, const QString &b, QStringList *unreadable)
{
    QFile fileA(a);
    QFile fileB(b);
    if (!fileA.open(QIODevice::ReadOnly)) {
        unreadable->append(a);
        return false;
    }
    if (!fileB.open(QIODevice::ReadOnly)) {
        unreadable->append(b);
        return false;
    }
    while (!fileA.atEnd()) {
        if (fileA.read(256) != fileB.read(256)) {
            return false;
        }
    }
    return true;
}

QString LiteralGrouping::key(const QString &path, const ScanProfile &profile)
{
    if (profile.advancedMatch && profile.crcHash) {
        return QString::number(crcOfFile(path), 10);
    }
    if (profile.advancedMatch) {
        return hashOfFile(path,
                          profile.md5Hash ? QCryptographicHash::Md5 : QCryptographicHash::Sha1);
    }
    const QFileInfo info(path);
    QByteArray text = QString::number(info.size(), 10).toLocal8Bit();
    if (profile.sameFileName) {
        text += info.baseName().toLocal8Bit();
    }
    if (profile.sameFileExtension) {
        text += info.completeSuffix().toLocal8Bit();
    }
    if (profile.sameDateOfCreation) {
        text += Toolkit::created(info).toString(Qt::TextDate).toLocal8Bit();
    }
    return QString::fromLatin1(text.toBase64());
}
