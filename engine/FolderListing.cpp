// SPDX-License-Identifier: MIT
#include "engine/FolderListing.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace
{
// Lower case as the toolkit compares it, made once for each name.
template<typename Entry>
struct Sortable {
    QString lowerName;
    Entry entry;
};

template<typename List>
void sortByName(List *list)
{
    using Entry = typename List::value_type;
    std::vector<Sortable<Entry>> sortables;
    sortables.reserve(static_cast<std::size_t>(list->size()));
    for (const Entry &entry : std::as_const(*list)) {
        sortables.push_back({entry.name.toLower(), entry});
    }
    std::sort(sortables.begin(), sortables.end(), [](const auto &a, const auto &b) {
        const int order = a.lowerName.compare(b.lowerName);
        return order != 0 ? order < 0 : a.entry.name < b.entry.name;
    });
    for (int i = 0; i < list->size(); ++i) {
        (*list)[i] = std::move(sortables[static_cast<std::size_t>(i)].entry);
    }
}
} // namespace

void FolderListing::sort(Entries *entries)
{
    sortByName(&entries->files);
    sortByName(&entries->folders);
}
