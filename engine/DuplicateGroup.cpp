// SPDX-License-Identifier: MIT
#include "engine/DuplicateGroup.h"

#include <QHash>

DuplicateGroup::DuplicateGroup(const QStringList &bucketPaths, const QStringList &groupPaths)
    : isInGroup(bucketPaths.size(), false)
    , isOpen(!groupPaths.isEmpty())
{
    QHash<QString, int> indexes;
    for (const QString &path : bucketPaths) {
        const int index = static_cast<int>(firstIndexes.size());
        const auto known = indexes.constFind(path);
        firstIndexes.append(known == indexes.cend() ? index : *known);
        if (known == indexes.cend()) {
            indexes.insert(path, index);
            isInGroup[index] = isOpen && groupPaths.contains(path);
        }
    }
}

bool DuplicateGroup::add(int first, int second)
{
    const int firstIndex = firstIndexes.at(first);
    const int secondIndex = firstIndexes.at(second);
    if (isInGroup.at(secondIndex) || (!isOpen && firstIndex == secondIndex)) {
        return false;
    }
    isInGroup[firstIndex] = isInGroup.at(firstIndex) || !isOpen;
    isInGroup[secondIndex] = true;
    isOpen = true;
    return true;
}
