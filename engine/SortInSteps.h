// SPDX-License-Identifier: MIT
#pragma once

#include "engine/GoOn.h"

#include <algorithm>
#include <cstddef>
#include <vector>

/**
 * Sorts numbers by their keys, those of equal keys in the order in which they come.
 *
 * Asks after each of many steps whether to go on, which take some milliseconds for a million numbers;
 * false, and nothing is sorted, when that is denied. Time grows as n log n; holds each key once.
 */
template<typename KeyOf>
bool sortInSteps(std::vector<int> *numbers, const KeyOf &keyOf, const GoOn &goOn)
{
    using Key = decltype(keyOf(0));
    struct Entry {
        Key key;
        int number;
    };
    using Offset = typename std::vector<Entry>::difference_type;
    constexpr Offset run = Offset(16) * 1024;
    std::vector<Entry> entries;
    entries.reserve(numbers->size());
    for (const int number : *numbers) {
        entries.push_back({keyOf(number), number});
    }
    const auto isLess = [](const Entry &a, const Entry &b) {
        return a.key < b.key;
    };
    const auto count = static_cast<Offset>(entries.size());
    const auto at = [&](Offset place) {
        return entries.begin() + std::min(place, count);
    };
    for (Offset begin = 0; begin < count; begin += run) {
        if (!goOn()) {
            return false;
        }
        std::stable_sort(at(begin), at(begin + run), isLess);
    }
    for (Offset width = run; width < count; width *= 2) {
        for (Offset begin = 0; begin + width < count; begin += 2 * width) {
            if (!goOn()) {
                return false;
            }
            std::inplace_merge(at(begin), at(begin + width), at(begin + 2 * width), isLess);
        }
    }
    std::transform(entries.begin(), entries.end(), numbers->begin(), [](const Entry &entry) {
        return entry.number;
    });
    return true;
}
