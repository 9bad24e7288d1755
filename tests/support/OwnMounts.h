// SPDX-License-Identifier: MIT
#pragma once

#include <sched.h>
#include <sys/mount.h>

/**
 * From the first call on, no other process sees what this one mounts, and it goes with this one;
 * false for whoever may mount nothing. In a changed root that is no mount point others may see it
 * until it is unmounted.
 */
inline bool ownsMounts()
{
    static const bool isOwner = [] {
        const bool isAlone = ::unshare(CLONE_NEWNS) == 0;
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
        return isAlone;
    }();
    return isOwner;
}
