// SPDX-License-Identifier: MIT
#pragma once

#include <QCryptographicHash>
#include <QString>

struct ScanProfile;

/** The texts by which files are sorted into groups. */
namespace FileKey
{
/**
 * Base64 of the size and of the attributes that the profile asks for, joined without a separator:
 * keys of different attributes may coincide. Never empty; the file is not opened.
 */
QString ofAttributes(const QString &path, const ScanProfile &profile);
/** The CRC-32 of the content as a decimal number; "0" also for a file that cannot be read. */
QString ofCrc(const QString &path);
/** Base64 of the hash of the content; null for a file that cannot be read to its end. */
QString ofHash(const QString &path, QCryptographicHash::Algorithm algorithm);
} // namespace FileKey
