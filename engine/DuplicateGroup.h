// SPDX-License-Identifier: MIT
#pragma once

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
    /** The group may hold files from before. */
    DuplicateGroup(const QStringList &bucketPaths, const QStringList &groupPaths);

    bool isEmpty() const { return !isOpen; }
    /**
     * Adds the second file of an equal pair, and the first one as well when the group is empty.
     * False, and nothing is added, when the second file is in the group or is the first one.
     */
    bool add(int first, int second);

private:
    QVector<int> firstIndexes; // of the same path
    QVector<bool> isInGroup;
    bool isOpen;
};
