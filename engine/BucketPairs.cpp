// SPDX-License-Identifier: MIT
#include "engine/BucketPairs.h"

#include <algorithm>

BucketPairs::BucketPairs(const std::vector<ContentClasses::File> &files)
    : nextEqual(files.size(), -1)
    , equalsBehind(files.size(), 0)
    , isUnreadable(files.size(), false)
{
    std::vector<int> lastOfClass(files.size(), -1);
    for (auto i = files.size(); i-- > 0;) {
        const auto first = static_cast<std::size_t>(files[i].first);
        nextEqual[i] = lastOfClass[first];
        if (nextEqual[i] >= 0) {
            equalsBehind[i] = equalsBehind[static_cast<std::size_t>(nextEqual[i])] + 1;
        }
        lastOfClass[first] = static_cast<int>(i);
        isUnreadable[i] = !files[i].isReadable;
        if (isUnreadable[i]) {
            unreadable.push_back(static_cast<int>(i));
        }
    }
    std::reverse(unreadable.begin(), unreadable.end());
}

void BucketPairs::addLonger(const std::vector<ContentClasses::File> &beginnings,
                            const QVector<int> &indexes,
                            qint64 size)
{
    QHash<int, QVector<int>> longerOfClass;
    for (int i = 0; i < indexes.size(); ++i) {
        const ContentClasses::File &file = beginnings[static_cast<std::size_t>(i)];
        if (file.isReadable && file.size > size) {
            longerOfClass[file.first].append(indexes.at(i));
        }
    }
    for (int i = 0; i < indexes.size(); ++i) {
        const ContentClasses::File &file = beginnings[static_cast<std::size_t>(i)];
        if (!file.isReadable || file.size != size) {
            continue;
        }
        for (const int second : longerOfClass.value(file.first)) {
            if (second > indexes.at(i)) {
                longer[indexes.at(i)].append(second);
            }
        }
    }
}

BucketPairs::Row BucketPairs::row(int first, bool isWhole) const
{
    Row row;
    const auto at = static_cast<std::size_t>(first);
    if (isUnreadable[at]) {
        for (int second = first + 1; second < static_cast<int>(nextEqual.size()); ++second) {
            row.pairs.push_back({second, first});
        }
        return row;
    }
    if (isWhole) {
        for (int second = nextEqual[at]; second >= 0;
             second = nextEqual[static_cast<std::size_t>(second)]) {
            row.pairs.push_back({second, -1});
        }
    } else {
        row.otherEqualPairs = equalsBehind[at];
    }
    for (const int second : longer.value(first)) {
        row.pairs.push_back({second, -1});
    }
    for (auto file = std::upper_bound(unreadable.begin(), unreadable.end(), first);
         file != unreadable.end();
         ++file) {
        row.pairs.push_back({*file, *file});
    }
    std::sort(row.pairs.begin(), row.pairs.end(), [](const Pair &a, const Pair &b) {
        return a.second < b.second;
    });
    return row;
}
