// SPDX-License-Identifier: MIT
#pragma once

#include "engine/GoOn.h"

#include <QRunnable>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

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
 * The result of a function that runs on another thread.
 *
 * When it is destroyed before the function has ended, the function is told not to go on, and its
 * result is thrown away. The function must own all that it uses. To be used on one thread.
 */
template<typename Result>
class Pending final
{
public:
    using Function = std::function<Result(const GoOn &goOn)>;

    /** Of those that wait for a thread, the one of the highest priority runs first. */
    explicit Pending(Function function, int priority = 0)
        : state(std::make_shared<State>())
    {
        Background::pool()->start(new Task(state, std::move(function)), priority);
    }
    Pending(Pending &&other) noexcept = default;
    Pending &operator=(Pending &&other) = delete;
    ~Pending()
    {
        if (state) {
            state->isGivenUp = true;
        }
    }

    /** Asks now and then whether to wait on; false when that was denied. To be called once. */
    bool wait(Result *result, const GoOn &goOn)
    {
        std::unique_lock<std::mutex> lock(state->mutex);
        while (!state->isDone) {
            state->done.wait_for(lock, std::chrono::milliseconds(millisecondsBetweenQuestions));
            if (state->isDone) {
                break;
            }
            lock.unlock();
            if (!goOn()) {
                return false;
            }
            lock.lock();
        }
        *result = std::move(state->result);
        return true;
    }

private:
    static constexpr int millisecondsBetweenQuestions = 5;

    struct State {
        std::mutex mutex;
        std::condition_variable done;
        bool isDone = false;
        Result result;
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
            Result result = function(goOn);
            // What the function owns is released here, not by whoever waits.
            function = nullptr;
            const std::lock_guard<std::mutex> lock(state->mutex);
            state->result = std::move(result);
            state->isDone = true;
            state->done.notify_one();
        }

    private:
        std::shared_ptr<State> state;
        Function function;
    };

    std::shared_ptr<State> state;
};
