// SPDX-License-Identifier: MIT
#include "engine/FolderWalk.h"

#include <QDebug>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <deque>
#include <utility>

namespace
{
// Of one folder, and of all that are being walked: a listing may hold many names.
constexpr int maxBranchesAheadInFolder = 8;
constexpr int maxBranchesAhead = 32;
constexpr int maxFoldersOfBranch = 16;
// Far more than links that somebody made, and few enough for links that multiply.
constexpr int maxEntriesByLink = 1000;

bool isExcluded(const QString &fileName, const QStringList &excludeMasks)
{
    if (excludeMasks.isEmpty()) {
        return false;
    }
    const auto dot = fileName.lastIndexOf(QLatin1Char('.'));
    const QString suffix = dot < 0 ? QString() : fileName.mid(dot + 1);
    return excludeMasks.contains(QStringLiteral("*.%1").arg(suffix), Qt::CaseInsensitive);
}

bool hasAcceptedSize(qint64 bytes, const ScanProfile &profile)
{
    // 32 bits: a file of 2 TiB or more wraps.
    const auto kilobytes = static_cast<qint32>(bytes / 1024);
    return !(profile.minSizeEnabled && profile.minSizeInKbytes > kilobytes)
        && !(profile.maxSizeEnabled && profile.maxSizeInKbytes < kilobytes);
}

QString withSlash(const QString &folder)
{
    return folder.endsWith(QLatin1Char('/')) ? folder : QString(folder + QLatin1Char('/'));
}
} // namespace

struct FolderWalk::Frame {
    QString folder; // as it is reported
    QString prefix; // absolute, ends in a slash
    QVector<FolderListing::Folder> subfolders;
    bool isPseudo = false;
    QString canonical; // once it was asked for
    int next = 0; // subfolder
    Branch branch; // the first of them are listed in it
    int listedInBranch = 0;
    int nextAhead = 0;
    std::deque<std::pair<int, Branch>> ahead; // by subfolder
};

FolderWalk::FolderWalk(const QStringList &includeMasks,
                       const QStringList &excludeMasks,
                       const ScanProfile &scanProfile,
                       const WalkOptions &walkOptions,
                       Events walkEvents,
                       LinkEntries *scanLinkEntries)
    : masks(includeMasks)
    , excluded(excludeMasks)
    , profile(scanProfile)
    , options(walkOptions)
    , events(std::move(walkEvents))
    , linkEntries(scanLinkEntries)
{
}

FolderWalk::~FolderWalk() = default;

QStringList FolderWalk::walk(const QString &folder)
{
    topNames.clear();
    if (!events.isLeaving() && enter(folder, listAhead(folder, 0), true)) {
        walkSubfolders();
    }
    frames.clear();
    branchesAhead = 0;
    return topNames;
}

// False when the listing was not waited for.
bool FolderWalk::enter(const QString &folder, const Branch &branch, bool isTop)
{
    FolderBranch::Listed listed;
    if (!branch->take(&listed, events.whileListing)) {
        return false;
    }
    FolderListing::Entries &entries = listed.entries;
    const bool isPseudo = entries.fileSystem == FileSystemKind::Pseudo;
    if (!isTop && isPseudo && !frames.back()->isPseudo) {
        return true;
    }
    auto frame = std::make_unique<Frame>();
    frame->folder = folder;
    frame->prefix = withSlash(QDir(folder).absolutePath());
    frame->subfolders = std::move(entries.folders);
    frame->isPseudo = isPseudo;
    frame->branch = branch;
    frame->listedInBranch = listed.listedSubfolders;
    frame->nextAhead = listed.listedSubfolders;
    tellSkipped(frame->prefix, entries);
    for (const FolderListing::File &file : std::as_const(entries.files)) {
        if (isTaken(file)) {
            events.fileFound(frame->prefix + file.name, file.size);
        }
        if (isTop) {
            topNames.append(file.name);
        }
    }
    frames.push_back(std::move(frame));
    return true;
}

FolderWalk::Branch FolderWalk::listAhead(const QString &folder, int depth) const
{
    // A folder of another file system, which is not entered, may never answer.
    const int maxFolders = options.staysOnFileSystem ? 1 : maxFoldersOfBranch;
    // The folder that is walked into first is the one that is waited for first.
    FolderBranch::Options branchOptions = {masks, options.takesHidden, maxFolders};
    return std::make_shared<FolderBranch>(folder, branchOptions, depth);
}

// Of the one that was gone on to last.
FolderWalk::Branch FolderWalk::branchOf(Frame *frame, const FolderListing::Folder &subfolder)
{
    const int index = frame->next - 1;
    if (index < frame->listedInBranch && !subfolder.isLink) {
        return frame->branch;
    }
    if (!frame->ahead.empty() && frame->ahead.front().first == index) {
        const Branch branch = frame->ahead.front().second;
        frame->ahead.pop_front();
        --branchesAhead;
        return branch;
    }
    return listAhead(frame->prefix + subfolder.name, static_cast<int>(frames.size()));
}

// Links may lead to where nobody wants to go, and are listed when they are entered.
void FolderWalk::listSubfoldersAhead(Frame *frame)
{
    frame->nextAhead = std::max(frame->nextAhead, frame->next);
    while (frame->nextAhead < frame->subfolders.size() && branchesAhead < maxBranchesAhead
           && frame->ahead.size() < maxBranchesAheadInFolder) {
        const FolderListing::Folder &subfolder = frame->subfolders.at(frame->nextAhead);
        if (!subfolder.isLink) {
            frame->ahead.emplace_back(
                frame->nextAhead,
                listAhead(frame->prefix + subfolder.name, static_cast<int>(frames.size())));
            ++branchesAhead;
        }
        ++frame->nextAhead;
    }
}

// With a stack of its own, since a path may hold two thousand folders. The deepest folders are done
// first; after a stop none that is above another is.
void FolderWalk::walkSubfolders()
{
    while (!frames.empty()) {
        Frame &frame = *frames.back();
        if (frame.next == frame.subfolders.size()) {
            events.folderDone(frame.folder);
            frames.pop_back();
            if (events.isStopped()) {
                return;
            }
            continue;
        }
        listSubfoldersAhead(&frame);
        const FolderListing::Folder subfolder = frame.subfolders.at(frame.next++);
        const QString path = frame.prefix + subfolder.name;
        if (!mayEnter(path, subfolder)) {
            continue;
        }
        if (events.isLeaving() || !enter(path, branchOf(&frame, subfolder), false)) {
            return;
        }
    }
}

bool FolderWalk::mayEnter(const QString &path, const FolderListing::Folder &folder)
{
    if ((folder.isLink && !options.followsLinks)
        || (options.staysOnFileSystem
            && !FolderListing::areOnOneFileSystem(path, frames.back()->prefix))) {
        return false;
    }
    if (!folder.isLink) {
        return true;
    }
    const QString canonical = FolderListing::canonicalPath(path);
    // A link back up would be walked for ever.
    if (isBeingWalked(canonical)) {
        return false;
    }
    if (linkEntries->byFolder[canonical]++ < maxEntriesByLink) {
        return true;
    }
    if (!linkEntries->isBoundReported) {
        linkEntries->isBoundReported = true;
        qDebug().noquote() << QStringLiteral("Too many links lead to the folder:") << canonical;
    }
    return false;
}

// Also true when it cannot be told, because the system did not resolve one of the paths.
bool FolderWalk::isBeingWalked(const QString &canonicalFolder)
{
    return canonicalFolder.isEmpty()
        || std::any_of(frames.rbegin(), frames.rend(), [&](const auto &frame) {
               if (frame->canonical.isEmpty()) {
                   frame->canonical = FolderListing::canonicalPath(frame->prefix);
               }
               return frame->canonical.isEmpty() || frame->canonical == canonicalFolder;
           });
}

void FolderWalk::tellSkipped(const QString &folder, const FolderListing::Entries &entries) const
{
    if (!events.skipped) {
        return;
    }
    if (!entries.error.isEmpty()) {
        events.skipped(QFile::encodeName(QDir::cleanPath(folder)), entries.error);
    }
    for (const QByteArray &name : entries.unlisted) {
        events.skipped(QFile::encodeName(folder) + name,
                       QStringLiteral("its name is no valid UTF-8"));
    }
}

bool FolderWalk::isTaken(const FolderListing::File &file) const
{
    return !isExcluded(file.name, excluded) && hasAcceptedSize(file.size, profile)
        && options.minBytes <= file.size && file.size <= options.maxBytes;
}
