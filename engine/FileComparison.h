// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/** Compares the contents of two files, byte by byte. */
namespace FileComparison
{
/** Of the comparison; the end of a file is looked for between them. */
constexpr qint64 stepBytes = 256;

enum class Verdict {
    Equal,
    Different,
    /** A file could not be opened or read to its end; nothing is known of the contents. */
    Failed
};

/**
 * Reads both files up to the first difference.
 *
 * Works in steps of 256 bytes of which only the end of a is tested: a file whose length is a
 * multiple of 256 also equals a longer one that begins with it. A file that cannot be opened or
 * read leaves a line in the critical log, the first of the two that fails. Ends early, as failed,
 * when the thread is asked to interrupt its work.
 */
Verdict compare(const QString &a, const QString &b);

/** Leaves the line in the log of a file that cannot be opened or read. */
void complain(const QString &path, const QString &reason);
} // namespace FileComparison
