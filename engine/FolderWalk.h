// SPDX-License-Identifier: MIT
#pragma once

#include "engine/FileMasks.h"
#include "engine/FolderBranch.h"
#include "engine/FolderListing.h"
#include "engine/GoOn.h"
#include "engine/ScanProfile.h"
#include "engine/WalkOptions.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

/**
 * Walks folders with all below them, in the order of FolderListing, and tells which files a scan takes.
 *
 * Links to folders are followed, but not back up to a folder that is being walked, and no folder is
 * entered through links more than a thousand times in a scan. File systems that show the system itself
 * are not entered from another one. Folders that come next are listed ahead on other threads. Everything
 * is told on the thread that walks.
 */
class FolderWalk final
{
public:
    struct Events {
        std::function<void(const QString &path, qint64 size)> fileFound;
        /** All below the folder was walked. */
        std::function<void(const QString &folder)> folderDone;
        /** Asked after each folder below another: the rest is left out. */
        std::function<bool()> isStopped;
        /** Asked at the start of each folder: it is left out. */
        std::function<bool()> isLeaving;
        /** Asked while a listing takes long: false when it was stopped since. */
        GoOn whileListing;
        /** What could not be listed, byte for byte as the file system has it, and why. May be null. */
        std::function<void(const QByteArray &path, const QString &reason)> skipped;
    };

    /** How often folders were entered through links, in all walks of a scan. */
    struct LinkEntries {
        QHash<QString, int> byFolder; // the path without links
        bool isBoundReported = false;
    };

    /** Takes the size limits of the profile; the masks are given by themselves. Counts in linkEntries. */
    FolderWalk(const QStringList &includeMasks,
               const QStringList &excludeMasks,
               const ScanProfile &scanProfile,
               const WalkOptions &walkOptions,
               Events walkEvents,
               LinkEntries *linkEntries);
    ~FolderWalk();

    FolderWalk(const FolderWalk &) = delete;
    FolderWalk &operator=(const FolderWalk &) = delete;

    /** Returns the names of the folder's own files that match the include masks. */
    QStringList walk(const QString &folder);

private:
    using Branch = std::shared_ptr<FolderBranch>;
    struct Frame;

    bool enter(const QString &folder, const Branch &branch, bool isTop);
    Branch listAhead(const QString &folder, int depth) const;
    Branch branchOf(Frame *frame, const FolderListing::Folder &subfolder);
    void listSubfoldersAhead(Frame *frame);
    void walkSubfolders();
    bool mayEnter(const QString &path, const FolderListing::Folder &folder);
    bool isBeingWalked(const QString &canonicalFolder);
    void tellSkipped(const QString &folder, const FolderListing::Entries &entries) const;
    bool isTaken(const FolderListing::File &file) const;

    FileMasks masks;
    QStringList excluded;
    ScanProfile profile;
    WalkOptions options;
    Events events;
    std::vector<std::unique_ptr<Frame>>
        frames; // the folder that is being walked, under those above it
    int branchesAhead = 0;
    LinkEntries *linkEntries;
    QStringList topNames;
};
