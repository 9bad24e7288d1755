// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <functional>
#include <utility>

/** Has a place in a test's surroundings call a function, for as long as it lives. */
class Hook final
{
    Q_DISABLE_COPY(Hook)

public:
    Hook(std::function<void()> *calledPlace, std::function<void()> function)
        : place(calledPlace)
    {
        *place = std::move(function);
    }
    ~Hook() { *place = nullptr; }

private:
    std::function<void()> *place;
};
