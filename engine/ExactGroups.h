// SPDX-License-Identifier: MIT
#pragma once

#include "engine/GoOn.h"
#include "engine/ScanFindings.h"

#include <QVector>

/** Collects the sets of files of one content while a scan finds them, in whatever order. */
class ExactGroups final
{
public:
    /**
     * The files in the order in which they were found, the first of them with its number. A path
     * that was found twice, if any may be, is one file; a single file is no set. False, and nothing is
     * added, when goOn denied to go through the files.
     */
    bool add(int numberOfFirst,
             const QVector<ScannedFile> &files,
             bool mayRepeat,
             const GoOn &goOn);
    void clear() { groups.clear(); }
    /** By the numbers of their first files. */
    QVector<QVector<ScannedFile>> inOrder() const;

private:
    struct Group {
        int numberOfFirst;
        QVector<ScannedFile> files;
    };

    static bool takeEachOnce(const QVector<ScannedFile> &files,
                             const GoOn &goOn,
                             QVector<ScannedFile> *taken);

    QVector<Group> groups;
};
