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
        if (taken == ready.size() && !takeReady(goOn)) {
            return false;
        }
        *fact = std::move(ready[taken++]);
        return true;
    }

private:
    bool takeReady(const GoOn &goOn)
    {
        ready.clear();
        taken = 0;
        while (ready.empty()) {
            fill();
            switch (pending.front().take(&ready, goOn)) {
            case Batch::Outcome::Denied:
                return false;
            case Batch::Outcome::Last:
                pending.pop_front();
                fill();
                break;
            case Batch::Outcome::Some:
                break;
            }
        }
        return true;
    }

    void fill()
    {
        while (started < count && pending.size() < static_cast<std::size_t>(bounds.batches)) {
            const int first = started;
            started = std::min(count, first + bounds.batch);
            pending.emplace_back(
                [function = fetch, first, end = started](const auto &tell, const GoOn &goOn) {
                    for (int item = first; item < end && goOn(); ++item) {
                        tell(function(item, goOn));
                    }
                });
        }
    }

    using Batch = Pending<Fact>;

    int count;
    Bounds bounds;
    Fetch fetch;
    int started = 0;
    std::deque<Batch> pending;
    std::vector<Fact> ready;
    std::size_t taken = 0;
};
