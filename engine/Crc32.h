// SPDX-License-Identifier: MIT
#pragma once

#include "engine/GoOn.h"

#include <QMap>
#include <QString>

#include <array>

class RegularFile;

/**
 * The CRC-32 of zlib and PNG (reflected, polynomial 0xEDB88320), of a whole file or of data that is
 * pushed piece by piece into numbered running checksums.
 *
 * A plain value, cheap enough to be made for each file, used on one thread at a time.
 */
class Crc32 final
{
public:
    Crc32();

    /**
     * Zero for an empty file and for one that cannot be opened or read to its end, also when the
     * thread is asked to interrupt its work meanwhile.
     */
    quint32 calculateFromFile(QString fileName) const;

    /**
     * Of an open file, from its place on, as many bytes as it had when it was opened. Zero when they
     * could not be read, or the work was ended; only otherwise they were the whole file. A file
     * that has more to read than it announces is not whole.
     */
    quint32 calculate(RegularFile *file, const GoOn &goOn, bool *isWhole) const;

    /** Starts the instance, or starts it again. */
    void initInstance(int id);
    /** Does nothing for an instance that is not running; a length below one changes nothing. */
    void pushData(int id, char *data, int len);
    /** Ends the instance and returns its checksum; zero for one that is not running. */
    quint32 releaseInstance(int id);

private:
    quint32 advance(quint32 crc, const char *data, qint64 bytes) const;

    std::array<quint32, 256> crcTable;
    // A running value of zero is the mark of an instance that does not run. A stream whose value
    // becomes zero on the way is therefore frozen: it takes nothing more and is released as zero.
    QMap<int, quint32> instances;
};
