// SPDX-License-Identifier: MIT
#pragma once

#include "engine/GoOn.h"

#include <QStringList>
#include <QVector>

/**
 * Remembers which files of a bucket stand in its group, so that no long list has to be searched.
 *
 * Files are named by their index in the bucket. A path that occurs twice there counts as one file.
 */
class DuplicateGroup final
{
public:
    /** An empty group. Looks for paths that occur twice only if any may. */
    DuplicateGroup(const QStringList &bucketPaths, bool mayRepeat, const GoOn &goOn);

    /** False, and it is of no use, when goOn denied to go through the files. */
    bool knowsAllFiles() const { return isWhole; }
    bool isEmpty() const { return !isOpen; }
    /**
     * Adds the second file of an equal pair, and the first one as well when the group is empty.
     * False, and nothing is added, when the second file is in the group or is the first one.
     */
    bool add(int first, int second);

private:
    int firstIndexOf(int index) const;

    QVector<int> firstIndexes; // of the same path, by file; empty where none occurs twice
    QVector<bool> isInGroup;
    bool isOpen = false;
    bool isWhole = false;
};
