// SPDX-License-Identifier: MIT
#pragma once

#include "engine/GoOn.h"
#include "tools/ScanReport.h"

#include <QVector>

/** Makes of what a scan has found what may be printed for scripts that delete. */
namespace GroupReview
{
/**
 * The files of a group that are still what the scan has read, each file once: of the paths on which
 * links to folders lead to one directory entry the first one is kept, and of the names of one file
 * never more than it has. Hard links are files of their own. Fewer than two paths are no group.
 *
 * Files that have changed or are gone are added to the skipped ones. Asks the system about each file.
 */
ReportedGroup review(const QVector<ScannedFile> &files, QVector<SkippedPath> *skipped);

/**
 * The groups divided by a comparison of all their bytes. When it is ended, those that were not
 * compared are left out. Files that cannot be read are added to the skipped ones.
 */
QVector<QVector<ScannedFile>> prove(const QVector<QVector<ScannedFile>> &groups,
                                    const GoOn &goOn,
                                    QVector<SkippedPath> *skipped);
} // namespace GroupReview
