// SPDX-License-Identifier: MIT
#pragma once

#include "engine/Background.h"
#include "engine/FileMasks.h"
#include "engine/FolderListing.h"
#include "engine/GoOn.h"

#include <QString>

#include <memory>
#include <vector>

/**
 * Lists a folder and some of those below it on another thread, in the order of a walk: a folder
 * before its subfolders, and all below one before the next.
 *
 * A thread is woken for a branch, not for each folder of it. A folder that was slow to list is alone,
 * so that several threads wait for a slow disk. To be used on one thread.
 */
class FolderBranch final
{
public:
    struct Listed {
        FolderListing::Entries entries;
        /** So many of its folders, from the first, are listed behind it, but for links among them. */
        int listedSubfolders = 0;
    };

    struct Options {
        FileMasks masks;
        bool takesHidden = false;
        int maxFolders = 1;
        /** A folder that took longer to list is alone. One that is in memory takes less. */
        qint64 maxNanosecondsOfQuickFolder = qint64(500) * 1000;
    };

    /** Of the branches that wait for a thread, the deepest is listed first. */
    FolderBranch(const QString &folder, const Options &options, int depth);

    /** The next folder. False when goOn denied to wait for it, or there is none. */
    bool take(Listed *listed, const GoOn &goOn);

private:
    Pending<Listed> pending;
    std::vector<Listed> ready;
    std::size_t taken = 0;
};
