// SPDX-License-Identifier: MIT
#include "engine/Background.h"

namespace
{
std::atomic<int> fixedCount = {0};
}

std::atomic<int> Background::tasksAtWork = {0};
std::atomic<bool> Background::isWithoutThreads = {false};

QThreadPool *Background::pool()
{
    static auto *const threads = new QThreadPool;
    return threads;
}

void Background::setThreadCount(int count)
{
    pool()->setMaxThreadCount(fixedCount > 0 ? fixedCount.load() : count);
}

void Background::fixThreadCount(int count)
{
    fixedCount = count;
}

bool Background::waitForDone(int milliseconds)
{
    return pool()->waitForDone(milliseconds);
}
