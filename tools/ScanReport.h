// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanFindings.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/** Two or more files of one content, each a file of its own. */
struct ReportedGroup {
    qint64 size = 0; // bytes of each
    QByteArray checksum; // hexadecimal; empty where the mode has none
    QStringList paths; // absolute, in the order in which they were found
    /** Bytes that the disk would gain if the first one alone were left: other links hold theirs. */
    qint64 freeableBytes = 0;
};

/** What a scan has found, a plain value. */
struct ScanReport {
    /** In the order in which their first files were found. */
    QVector<ReportedGroup> groups;
    /** As the window shows them, in no particular order. */
    QList<QStringList> joinedGroups;
    QVector<SkippedPath> skipped;
    int filesFound = 0;
    bool wasStopped = false;
    qint64 milliseconds = 0;

    int redundantFiles() const;
    qint64 freeableBytes() const;
};
