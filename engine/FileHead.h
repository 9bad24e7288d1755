// SPDX-License-Identifier: MIT
#pragma once

#include "engine/RegularFile.h"

#include <QByteArray>
#include <QString>

/** The beginning of a file, and what is learned with it. */
struct FileHead {
    static constexpr qint64 maxBytes = qint64(4) * 1024;

    enum class Outcome {
        Read, // all that was wanted
        Odd, // it was cut short, or has bytes behind its announced end: it is like no other file
        Failed // it could not be opened or read
    };

    /**
     * Reads the first bytes, at most so many. A file that has more stays open behind them if it is
     * to. Usable on any thread.
     */
    static FileHead read(const QString &path, qint64 bytes, bool staysOpen);

    Outcome outcome = Outcome::Failed;
    QString error;
    qint64 size = 0; // bytes
    qint64 modified = 0; // nanoseconds since 1970 (UTC)
    qint64 changed = 0; // see RegularFile
    QByteArray bytes;
    RegularFile file;
};
