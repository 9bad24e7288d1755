// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanFindings.h"

#include <QVector>

/** Collects the sets of files of one content while a scan finds them, in whatever order. */
class ExactGroups final
{
public:
    /**
     * The files in the order in which they were found, the first of them with its number. A path
     * that was found twice is one file; a single file is no set.
     */
    void add(int numberOfFirst, const QVector<ScannedFile> &files);
    void clear() { groups.clear(); }
    /** By the numbers of their first files. */
    QVector<QVector<ScannedFile>> inOrder() const;

private:
    struct Group {
        int numberOfFirst;
        QVector<ScannedFile> files;
    };

    QVector<Group> groups;
};
