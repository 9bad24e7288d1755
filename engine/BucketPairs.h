// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ContentClasses.h"

#include <QHash>
#include <QVector>

#include <vector>

/**
 * What comes of a comparison of every file of a bucket with every one behind it, told from the
 * classes of their contents, without a look at the pairs.
 *
 * A plain value. Files are named by their index in the bucket; building it and telling all rows takes
 * time in proportion to the files and to what is told.
 */
class BucketPairs final
{
public:
    /** A pair of the row's file and one behind it that does not just differ. */
    struct Pair {
        int second;
        /** The file of the pair that cannot be read; negative for a pair of equal files. */
        int unreadable;
    };
    struct Row {
        /** In ascending order. */
        std::vector<Pair> pairs;
        /** So many more pairs are equal that are not told one by one. */
        int otherEqualPairs = 0;
    };

    explicit BucketPairs(const std::vector<ContentClasses::File> &files);

    /**
     * Takes it that files of one size equal longer ones behind them that begin with them: the classes
     * of that many bytes from the start, and the indexes that their files have in the bucket.
     */
    void addLonger(const std::vector<ContentClasses::File> &beginnings,
                   const QVector<int> &indexes,
                   qint64 size);
    bool hasLonger(int first) const { return longer.contains(first); }
    /** Equal files of one size are told as pairs only if isWhole. */
    Row row(int first, bool isWhole) const;

private:
    std::vector<int> nextEqual;
    std::vector<int> equalsBehind;
    std::vector<int> unreadable;
    std::vector<bool> isUnreadable;
    QHash<int, QVector<int>> longer;
};
