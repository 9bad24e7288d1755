// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/**
 * The options of one scan, a plain value. The panel of page 0 fills it, the engine obeys it.
 * Sizes are in kilobytes of 1024 bytes; both limits include their own value.
 */
struct ScanProfile {
    // The engine looks at advancedMatch alone to choose the mode.
    bool matchByteByByte = true;
    bool sameFileName = false;
    bool sameFileExtension = false;
    bool sameDateOfCreation = false;
    bool advancedMatch = false;
    // CRC goes before MD5; where neither is set the hash is SHA-1, whatever sha1Hash says.
    bool md5Hash = false;
    bool sha1Hash = false;
    bool crcHash = false;
    // Name filters of a folder listing; an empty list takes every file.
    QStringList includeMasks;
    // Only the exact form "*.extension" excludes anything; its case is ignored.
    QStringList excludeMasks;
    bool minSizeEnabled = false;
    qint64 minSizeInKbytes = 0;
    bool maxSizeEnabled = false;
    qint64 maxSizeInKbytes = 0;
};
