// SPDX-License-Identifier: MIT
#pragma once

#include "engine/GoOn.h"

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
/** The same when the size is known. */
QString ofAttributes(const QString &path, qint64 size, const ScanProfile &profile);

/** A key of the content, and the file as it was when it was read. */
struct Checksum {
    QString key;
    bool isWhole = false; // all of the file was read
    qint64 size = -1; // bytes; negative if it could not be opened
    qint64 modified = 0; // nanoseconds since 1970 (UTC)
    qint64 changed = 0; // see RegularFile
    /** See ContentHash; zero for a CRC. */
    quint64 contentHash = 0;
    QString error; // why it could not be read
};

/** As ofCrc(); of a file that was not read to its end when it may not go on. */
Checksum crcOf(const QString &path, const GoOn &goOn);
/** As ofHash(), likewise. */
Checksum hashOf(const QString &path, QCryptographicHash::Algorithm algorithm, const GoOn &goOn);

/** Whichever of the two the profile asks for. */
Checksum ofContent(const QString &path, const ScanProfile &profile, const GoOn &goOn);

/** The CRC-32 of the content as a decimal number; "0" also for a file that cannot be read. */
QString ofCrc(const QString &path);
/**
 * Base64 of the hash of the content; null for a file that cannot be read to its end, also because it
 * grows by more than 64 MiB meanwhile. Both end early
 * when the thread is asked to interrupt its work.
 */
QString ofHash(const QString &path, QCryptographicHash::Algorithm algorithm);
} // namespace FileKey
