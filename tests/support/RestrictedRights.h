// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <linux/capability.h>
#include <sys/syscall.h>
#endif

#include <unistd.h>

/**
 * While it lives, file modes bind this thread, and the threads that it starts, even if it belongs to
 * the administrator, who may otherwise write and read everywhere.
 */
class RestrictedRights final
{
    Q_DISABLE_COPY(RestrictedRights)

public:
    RestrictedRights()
    {
#ifdef Q_OS_LINUX
        syscall(SYS_capget, &header, before);
        __user_cap_data_struct without[2] = {before[0], before[1]};
        without[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH));
        restricted = syscall(SYS_capset, &header, without) == 0;
#endif
    }
    ~RestrictedRights()
    {
#ifdef Q_OS_LINUX
        syscall(SYS_capset, &header, before);
#endif
    }

    /** False where the administrator cannot lay the rights down: the test is to be skipped. */
    bool areRestricted() const
    {
        // Whoever is no administrator is held by them anyway.
        return restricted || ::geteuid() != 0;
    }

private:
    bool restricted = false;
#ifdef Q_OS_LINUX
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct before[2] = {};
#endif
};
