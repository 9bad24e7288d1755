// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ExactGroups.h"
#include "engine/GoOn.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/** What both ways of grouping files have in common. */
namespace Grouping
{
/** The files to group, in the order in which they were found, and their sizes in bytes then. */
struct Files {
    QStringList paths;
    QVector<qint64> sizes;
    /** False where it is known that no path stands there twice, which is costly to find out. */
    bool mayRepeat = true;
};

/** What has been found so far. */
struct Result {
    QHash<QString, QStringList> groups; // by key; some may hold one file
    ExactGroups exactGroups;
    int groupedFiles = 0;
    qint32 groupedBytes = 0; // of 32 bits: wraps

    void addBytes(qint64 bytes);
};

/** What is told on the way, on the thread that groups. */
struct Events {
    /** Before the key of a file is made. */
    std::function<void(const QString &path)> fileAnalyzed;
    /** A file was counted, under that number. */
    std::function<void(int number)> counted;
    /** A file could not be read; why. May be null. */
    std::function<void(const QString &path, const QString &reason)> skipped;
    /** Stands between any two steps. */
    GoOn goOn;
    /** Stands where a file may take long to be read. */
    GoOn whileReading;
};

/** Indexes of files that belong together: the first and the last of a linked list. Most buckets hold
 *  one file, and a list object for each would cost more than the file's path. */
struct Chain {
    int first;
    int last;
};
} // namespace Grouping
