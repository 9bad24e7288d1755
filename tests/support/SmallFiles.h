// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <csignal>

#include <sys/resource.h>

/** While it lives, no file of this process grows beyond a number of bytes. */
class SmallFiles final
{
    Q_DISABLE_COPY(SmallFiles)

public:
    explicit SmallFiles(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit small = {bytes, before.rlim_max};
        handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallFiles()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }

private:
    rlimit before = {};
    void (*handler)(int) = nullptr;
};
