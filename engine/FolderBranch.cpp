// SPDX-License-Identifier: MIT
#include "engine/FolderBranch.h"

#include <QElapsedTimer>
#include <QStringList>

#include <utility>

namespace
{
class Lister final
{
public:
    using Listed = FolderBranch::Listed;
    using Tell = Pending<Listed>::Tell;

    Lister(const FolderBranch::Options &branchOptions, const Tell &tellListed, const GoOn &mayGoOn)
        : options(branchOptions)
        , tell(tellListed)
        , goOn(mayGoOn)
    {
    }

    // At most so many folders; returns how many. Those that are promised behind a folder are counted
    // before anything below it.
    int list(const QString &folder, int maxFolders)
    {
        QElapsedTimer timer;
        timer.start();
        Listed listed = {FolderListing::list(folder, options.masks, goOn, options.takesHidden), 0};
        const bool goesDown = listed.entries.fileSystem == FileSystemKind::Storage
            && timer.nsecsElapsed() < options.maxNanosecondsOfQuickFolder;
        const QStringList subfolders =
            goesDown ? takeSubfolders(folder, maxFolders - 1, &listed) : QStringList();
        tell(std::move(listed));
        int rest = maxFolders - 1 - static_cast<int>(subfolders.size());
        for (const QString &subfolder : subfolders) {
            if (goOn()) {
                rest -= list(subfolder, 1 + rest) - 1;
            }
        }
        return maxFolders - rest;
    }

private:
    static QStringList takeSubfolders(const QString &folder, int maxFolders, Listed *listed)
    {
        const QString prefix =
            folder.endsWith(QLatin1Char('/')) ? folder : QString(folder + QLatin1Char('/'));
        QStringList subfolders;
        int &next = listed->listedSubfolders;
        for (; next < listed->entries.folders.size() && subfolders.size() < maxFolders; ++next) {
            const FolderListing::Folder &subfolder = listed->entries.folders.at(next);
            if (!subfolder.isLink) {
                subfolders.append(prefix + subfolder.name);
            }
        }
        return subfolders;
    }

    const FolderBranch::Options &options;
    const Tell &tell;
    const GoOn &goOn;
};

auto listerOf(const QString &folder, const FolderBranch::Options &options)
{
    return [folder, options](const Lister::Tell &tell, const GoOn &goOn) {
        Lister(options, tell, goOn).list(folder, options.maxFolders);
    };
}
} // namespace

FolderBranch::FolderBranch(const QString &folder, const Options &options, int depth)
    : pending(listerOf(folder, options), depth)
{
}

bool FolderBranch::take(Listed *listed, const GoOn &goOn)
{
    if (taken == ready.size()) {
        ready.clear();
        taken = 0;
        if (pending.take(&ready, goOn) == Pending<Listed>::Outcome::Denied || ready.empty()) {
            return false;
        }
    }
    *listed = std::move(ready[taken++]);
    return true;
}
