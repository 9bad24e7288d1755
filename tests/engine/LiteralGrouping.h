// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanProfile.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/**
 * The grouping of duplicates in its plainest form, step by step and without any shortcut: what the
 * engine must agree with in groups, order and signals, whatever it does to be fast.
 *
 * Writes nothing to the log: unreadable() counts the lines that the engine has to write.
 */
class LiteralGrouping final
{
public:
    LiteralGrouping(const QStringList &files, const ScanProfile &scanProfile);

    /** One line "index count bytes" for each counting signal, in order. */
    QStringList signalLines() const { return lines; }
    QHash<QString, QStringList> groups() const { return duplicatedGroups; }
    /** Groups of two or more files, in the order of the hash. */
    QList<QStringList> result() const;
    /**
     * The paths of equal content under one key, each once, sets and files in the order of the list;
     * by CRC of one size, too. Unreadable files are in none.
     */
    QList<QStringList> exactGroups() const;
    int groupedFilesCount() const { return countFoundedDuplicated; }
    qint32 groupedFilesSize() const { return summFileSize; }
    /** The files of failed openings, in order, once for each pair. */
    QStringList unreadable() const { return unreadableFiles; }

    static bool compare(const QString &a, const QString &b, QStringList *unreadable);
    static QString key(const QString &path, const ScanProfile &profile);

private:
    void groupByContent();
    void groupByChecksum();
    void add(qint64 bytes);
    void count(int index);

    QStringList allFiles;
    ScanProfile profile;
    QHash<QString, QStringList> duplicatedGroups;
    QStringList lines;
    QStringList unreadableFiles;
    int countFoundedDuplicated = 0;
    qint32 summFileSize = 0;
};
