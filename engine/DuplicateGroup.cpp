// SPDX-License-Identifier: MIT
#include "engine/DuplicateGroup.h"

#include <QHash>

DuplicateGroup::DuplicateGroup(const QStringList &bucketPaths, bool mayRepeat, const GoOn &goOn)
    : isInGroup(bucketPaths.size(), false)
{
    QHash<QString, int> indexes;
    indexes.reserve(mayRepeat ? bucketPaths.size() : 0);
    for (int index = 0; mayRepeat && index < bucketPaths.size(); ++index) {
        if (!goOn()) {
            return;
        }
        const auto known = indexes.constFind(bucketPaths.at(index));
        firstIndexes.append(known == indexes.cend() ? index : *known);
        if (known == indexes.cend()) {
            indexes.insert(bucketPaths.at(index), index);
        }
    }
    isWhole = true;
}

int DuplicateGroup::firstIndexOf(int index) const
{
    return firstIndexes.isEmpty() ? index : firstIndexes.at(index);
}

bool DuplicateGroup::add(int first, int second)
{
    const int firstIndex = firstIndexOf(first);
    const int secondIndex = firstIndexOf(second);
    if (isInGroup.at(secondIndex) || (!isOpen && firstIndex == secondIndex)) {
        return false;
    }
    isInGroup[firstIndex] = isInGroup.at(firstIndex) || !isOpen;
    isInGroup[secondIndex] = true;
    isOpen = true;
    return true;
}
