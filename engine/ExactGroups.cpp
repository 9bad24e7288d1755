// SPDX-License-Identifier: MIT
#include "engine/ExactGroups.h"

#include <QSet>

#include <algorithm>
#include <utility>

void ExactGroups::add(int numberOfFirst, const QVector<ScannedFile> &files)
{
    Group group = {numberOfFirst, {}};
    QSet<QString> known;
    for (const ScannedFile &file : files) {
        if (!known.contains(file.path)) {
            known.insert(file.path);
            group.files.append(file);
        }
    }
    if (group.files.size() > 1) {
        group.files.squeeze();
        groups.append(group);
    }
}

QVector<QVector<ScannedFile>> ExactGroups::inOrder() const
{
    QVector<Group> sorted = groups;
    std::sort(sorted.begin(), sorted.end(), [](const Group &a, const Group &b) {
        return a.numberOfFirst < b.numberOfFirst;
    });
    QVector<QVector<ScannedFile>> result;
    result.reserve(sorted.size());
    for (const Group &group : std::as_const(sorted)) {
        result.append(group.files);
    }
    return result;
}
