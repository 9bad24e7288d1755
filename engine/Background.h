// SPDX-License-Identifier: MIT
#pragma once

#include "engine/GoOn.h"

#include <QRunnable>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

/**
 * The threads that read ahead of a scan, one pool for the process.
 *
 * It is never destroyed, and nothing waits for its threads but waitForDone(): one of them may hang in
 * a read that no file server answers.
 */
namespace Background
{
QThreadPool *pool();
/** How many tasks run at a time from now on; those that run already are not counted. */
void setThreadCount(int count);
/** For tests: every following setThreadCount() sets this; 0 takes it back. */
void fixThreadCount(int count);
/** False if a task was still at work after so long. */
bool waitForDone(int milliseconds);
} // namespace Background

/**
 * What a function tells that runs on another thread, in the order in which it tells.
 *
 * When it is destroyed before the function has ended, the function is told not to go on, and what it
 * tells is thrown away. The function must own all that it uses. To be used on one thread.
 */
template<typename Result>
class Pending final
{
public:
    using Tell = std::function<void(Result &&result)>;
    using Function = std::function<void(const Tell &tell, const GoOn &goOn)>;

    enum class Outcome {
        Denied, // to wait
        Some, // there may be more
        Last // it has ended; also with no result
    };

    /** Of those that wait for a thread, the one of the highest priority runs first. */
    explicit Pending(Function function, int priority = 0)
        : state(std::make_shared<State>())
    {
        Background::pool()->start(new Task(state, std::move(function)), priority);
    }
    Pending(Pending &&other) noexcept = default;
    Pending &operator=(Pending &&other) noexcept = default;
    ~Pending()
    {
        if (state) {
            state->isGivenUp = true;
        }
    }

    /**
     * Appends what has been told since, at least one result unless there are no more. Asks now and
     * then whether to wait on. Not to be called again after the last.
     */
    Outcome take(std::vector<Result> *results, const GoOn &goOn)
    {
        std::unique_lock<std::mutex> lock(state->mutex);
        while (state->results.empty() && !state->isDone) {
            // Woken at the end alone: to be woken for each result may cost more than the result.
            state->done.wait_for(lock, std::chrono::milliseconds(millisecondsBetweenQuestions));
            if (!state->results.empty() || state->isDone) {
                break;
            }
            lock.unlock();
            if (!goOn()) {
                return Outcome::Denied;
            }
            lock.lock();
        }
        std::move(state->results.begin(), state->results.end(), std::back_inserter(*results));
        state->results.clear();
        return state->isDone ? Outcome::Last : Outcome::Some;
    }

private:
    static constexpr int millisecondsBetweenQuestions = 5;

    struct State {
        std::mutex mutex;
        std::condition_variable done;
        bool isDone = false;
        std::vector<Result> results;
        std::atomic<bool> isGivenUp = {false};
    };

    class Task final : public QRunnable
    {
    public:
        Task(std::shared_ptr<State> taskState, Function taskFunction)
            : state(std::move(taskState))
            , function(std::move(taskFunction))
        {
        }

        void run() override
        {
            const auto goOn = [this] {
                return !state->isGivenUp;
            };
            if (!goOn()) {
                return;
            }
            function(
                [this](Result &&result) {
                    const std::lock_guard<std::mutex> lock(state->mutex);
                    state->results.push_back(std::move(result));
                },
                goOn);
            // What the function owns is released here, not by whoever waits.
            function = nullptr;
            const std::lock_guard<std::mutex> lock(state->mutex);
            state->isDone = true;
            state->done.notify_one();
        }

    private:
        std::shared_ptr<State> state;
        Function function;
    };

    std::shared_ptr<State> state;
};
