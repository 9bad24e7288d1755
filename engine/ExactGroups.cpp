// SPDX-License-Identifier: MIT
#include "engine/ExactGroups.h"

#include <QSet>

#include <algorithm>
#include <utility>

namespace
{
// A set costs more than to search so many.
constexpr int maxSearchedFiles = 8;
} // namespace

bool ExactGroups::add(int numberOfFirst,
                      const QVector<ScannedFile> &files,
                      bool mayRepeat,
                      const GoOn &goOn)
{
    Group group = {numberOfFirst, files};
    if (mayRepeat && !takeEachOnce(files, goOn, &group.files)) {
        return false;
    }
    if (group.files.size() > 1) {
        group.files.squeeze();
        groups.append(group);
    }
    return true;
}

bool ExactGroups::takeEachOnce(const QVector<ScannedFile> &files,
                               const GoOn &goOn,
                               QVector<ScannedFile> *taken)
{
    const bool isSearched = files.size() <= maxSearchedFiles;
    taken->clear();
    QSet<QString> known;
    known.reserve(isSearched ? 0 : files.size());
    for (const ScannedFile &file : files) {
        if (!goOn()) {
            return false;
        }
        const bool isKnown = isSearched
            ? std::any_of(taken->cbegin(),
                          taken->cend(),
                          [&file](const ScannedFile &other) { return other.path == file.path; })
            : known.contains(file.path);
        if (!isKnown) {
            taken->append(file);
            if (!isSearched) {
                known.insert(file.path);
            }
        }
    }
    return true;
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
