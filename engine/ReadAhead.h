// SPDX-License-Identifier: MIT
#pragma once

#include "engine/Background.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

/**
 * Hands over what a function tells of the items 0, 1, 2..., in this order, while other threads work
 * on the items to come.
 *
 * At most so many items are worked on, or wait to be taken, at a time; that bounds what they hold of
 * memory and of open files. Items are given out in batches, since waking a thread for one may cost
 * more than the item. Few items are worked on by the thread that takes them, when it takes them.
 */
template<typename Fact>
class ReadAhead final
{
public:
    using Fetch = std::function<Fact(int item, const GoOn &goOn)>;

    struct Bounds {
        int batch; // items
        int batches; // at a time
        int fewItems; // so many, or fewer, are not worth a thread
    };

    ReadAhead(int itemCount, const Bounds &limits, Fetch fetchItem)
        : count(itemCount)
        , bounds(limits)
        , fetch(std::move(fetchItem))
    {
    }

    /** The next one. False when goOn denied to wait for it. */
    bool take(Fact *fact, const GoOn &goOn)
    {
        if (count <= bounds.fewItems) {
            *fact = fetch(started++, goOn);
            return goOn();
        }
        if (taken == ready.size()) {
            fill();
            if (!pending.front().wait(&ready, goOn)) {
                return false;
            }
            pending.pop_front();
            fill();
            taken = 0;
        }
        *fact = std::move(ready[taken++]);
        return true;
    }

private:
    using Batch = std::vector<Fact>;

    void fill()
    {
        while (started < count && pending.size() < static_cast<std::size_t>(bounds.batches)) {
            const int first = started;
            started = std::min(count, first + bounds.batch);
            pending.emplace_back([function = fetch, first, end = started](const GoOn &goOn) {
                Batch batch;
                batch.reserve(static_cast<std::size_t>(end - first));
                for (int item = first; item < end && goOn(); ++item) {
                    batch.push_back(function(item, goOn));
                }
                return batch;
            });
        }
    }

    int count;
    Bounds bounds;
    Fetch fetch;
    int started = 0;
    std::deque<Pending<Batch>> pending;
    Batch ready;
    std::size_t taken = 0;
};
