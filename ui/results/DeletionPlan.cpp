// SPDX-License-Identifier: MIT
#include "ui/results/DeletionPlan.h"

#include <QPair>

#include <algorithm>
#include <functional>
#include <utility>

DeletionPlan::DeletionPlan(const QList<QStringList> &shownGroups,
                           const QStringList &tickedPaths,
                           const ScanFindings &scanFindings,
                           Senses planSenses)
    : findings(scanFindings)
    , senses(std::move(planSenses))
    , areRowsOfScan(shownGroups == scanFindings.groups)
{
    if (!areRowsOfScan) {
        return;
    }
    tickOf.reserve(tickedPaths.size());
    for (int order = 0; order < tickedPaths.size(); ++order) {
        Tick &tick = tickOf[tickedPaths.at(order)];
        tick.order = order;
        ++tick.ticks;
    }
    findWholeGroups(shownGroups);
    findSets();
}

DeletionPlan::Decision DeletionPlan::decide(const QString &path)
{
    const auto tick = tickOf.constFind(path);
    if (!areRowsOfScan || (tick != tickOf.constEnd() && tick->isAskedFor)) {
        return {Verdict::Take, {}, {}, {}};
    }
    const FileState file = senses.look(path);
    if (!file.exists) {
        return {Verdict::Missing, {}, {}, {}};
    }
    if (tick == tickOf.constEnd() || tick->set < 0) {
        return {Verdict::OnlyCopy, {}, {}, {}};
    }
    if (!isAsScanned(file, memberOf(tick->set, tick->member))) {
        return {Verdict::Changed, {}, {}, {}};
    }
    const int comparisonsBefore = comparisons;
    const Decision decision = decideByCopies(*tick, file);
    // To compare contents may take long.
    if (decision.verdict == Verdict::TakeWhatWasSeen && comparisons > comparisonsBefore
        && !senses.look(path).isSameFileAs(file)) {
        return {Verdict::Changed, {}, {}, {}};
    }
    return decision;
}

bool DeletionPlan::isCopyLeft(const Decision &decision) const
{
    const FileState state = senses.look(decision.copy);
    return state.exists && state.isRegular && state.size == decision.copySeen.size
        && state.modified == decision.copySeen.modified;
}

bool DeletionPlan::isLastOfItsContent(const QString &path) const
{
    const FileState file = areRowsOfScan ? senses.look(path) : FileState();
    if (!file.exists) {
        return false;
    }
    const auto isFile = [&path](const ScannedFile &scanned) {
        return scanned.path == path;
    };
    for (const QVector<ScannedFile> &set : findings.exactGroups) {
        const auto own = std::find_if(set.begin(), set.end(), isFile);
        if (own != set.end()) {
            return !isAsScanned(file, *own)
                || std::none_of(set.begin(), set.end(), [&](const ScannedFile &other) {
                       const FileState state = senses.look(other.path);
                       return mayStay(state, other) && !state.isSameEntryAs(file)
                           && haveSameContent(file, *own, state, other);
                   });
        }
    }
    return true;
}

// By the paths: one that stands in several rows is ticked when all of these are.
void DeletionPlan::findWholeGroups(const QList<QStringList> &shownGroups)
{
    if (tickOf.isEmpty()) {
        return;
    }
    for (const QStringList &group : shownGroups) {
        for (const QString &path : group) {
            const auto tick = tickOf.find(path);
            if (tick != tickOf.end()) {
                ++tick->rows;
            }
        }
    }
    for (const QStringList &group : shownGroups) {
        const bool isWhole = std::all_of(group.begin(), group.end(), [this](const QString &path) {
            const auto tick = tickOf.constFind(path);
            return tick != tickOf.constEnd() && tick->ticks >= tick->rows;
        });
        for (const QString &path : group) {
            const auto tick = isWhole ? tickOf.end() : tickOf.find(path);
            if (tick != tickOf.end()) {
                tick->isAskedFor = false;
            }
        }
    }
    for (Tick &tick : tickOf) {
        tick.isAskedFor = tick.isAskedFor && tick.rows > 0;
    }
}

void DeletionPlan::findSets()
{
    if (tickOf.isEmpty()) {
        return;
    }
    for (int set = 0; set < findings.exactGroups.size(); ++set) {
        const QVector<ScannedFile> &files = findings.exactGroups.at(set);
        for (int member = 0; member < files.size(); ++member) {
            const auto tick = tickOf.find(files.at(member).path);
            if (tick != tickOf.end()) {
                tick->set = set;
                tick->member = member;
            }
        }
    }
}

DeletionPlan::Search &DeletionPlan::searchIn(int set)
{
    Search &search = searches[set];
    if (search.isPrepared) {
        return search;
    }
    search.isPrepared = true;
    QVector<QPair<int, int>> ticked; // the order in the deletion, then the member
    const QVector<ScannedFile> &files = findings.exactGroups.at(set);
    for (int member = 0; member < files.size(); ++member) {
        const auto tick = tickOf.constFind(files.at(member).path);
        if (tick == tickOf.constEnd()) {
            search.unticked.append(member);
        } else if (!tick->isAskedFor) {
            ticked.append({tick->order, member});
        }
    }
    std::sort(ticked.begin(), ticked.end(), std::greater<>());
    for (const auto &place : std::as_const(ticked)) {
        search.ticked.append(place.second);
    }
    return search;
}

DeletionPlan::Decision DeletionPlan::decideByCopies(const Tick &tick, const FileState &file)
{
    Search &search = searchIn(tick.set);
    bool isFileKept = false;
    for (int i = 0; i < search.found.size() || findCopy(&search, tick);) {
        Copy &copy = search.found[i];
        if (copy.tick != nullptr && isFileKept) {
            break;
        }
        // What has become of a ticked file at its own turn is not known here.
        if (copy.tick != nullptr && copy.tick->order <= tick.order) {
            ++i;
            continue;
        }
        if (!isCopyThere(&search, i, tick)) {
            search.found.removeAt(i);
            continue;
        }
        ++i;
        const bool isFile = copy.seen.isSameEntryAs(file);
        if (!isFile
            && !haveSameContent(file,
                                memberOf(tick.set, tick.member),
                                copy.seen,
                                memberOf(tick.set, copy.member))) {
            continue;
        }
        if (!isFile) {
            return {Verdict::TakeWhatWasSeen,
                    file,
                    memberOf(tick.set, copy.member).path,
                    copy.seen};
        }
        isFileKept = true;
    }
    return {isFileKept ? Verdict::SameFile : Verdict::OnlyCopy, {}, {}, {}};
}

bool DeletionPlan::findCopy(Search *search, const Tick &tick)
{
    const QVector<ScannedFile> &files = findings.exactGroups.at(tick.set);
    if (search->nextUnticked < search->unticked.size()) {
        search->found.append({search->unticked.at(search->nextUnticked++), nullptr, {}});
        return true;
    }
    if (search->nextTicked == search->ticked.size()) {
        return false;
    }
    const int member = search->ticked.at(search->nextTicked);
    const Tick &last = *tickOf.constFind(files.at(member).path);
    if (last.order <= tick.order) {
        return false;
    }
    ++search->nextTicked;
    search->found.append({member, &last, {}});
    return true;
}

// Another path to a copy that is known already would only be looked at again and again.
bool DeletionPlan::isCopyThere(Search *search, int index, const Tick &tick) const
{
    Copy &copy = search->found[index];
    const ScannedFile &scanned = memberOf(tick.set, copy.member);
    const bool isNew = !copy.seen.exists;
    copy.seen = senses.look(scanned.path);
    const auto isKnown = [&copy](const Copy &other) {
        return other.seen.isSameEntryAs(copy.seen);
    };
    const auto end = search->found.cbegin() + index;
    return mayStay(copy.seen, scanned)
        && !(isNew && std::any_of(search->found.cbegin(), end, isKnown));
}

const ScannedFile &DeletionPlan::memberOf(int set, int member) const
{
    return findings.exactGroups.at(set).at(member);
}

// What lies in the trash goes when it is emptied.
bool DeletionPlan::mayStay(const FileState &state, const ScannedFile &scanned) const
{
    return isAsScanned(state, scanned) && !senses.isInTrash(scanned.path);
}

bool DeletionPlan::isAsScanned(const FileState &state, const ScannedFile &scanned)
{
    return state.exists && state.isRegular && state.size == scanned.size
        && state.modified == scanned.modified;
}

// Who writes to a file can set its time of modification back, and some programs do.
bool DeletionPlan::isProven(const FileState &state, const ScannedFile &scanned) const
{
    return findings.areContentsProven && (scanned.changed == 0 || scanned.changed == state.changed);
}

bool DeletionPlan::haveSameContent(const FileState &stateOfA,
                                   const ScannedFile &a,
                                   const FileState &stateOfB,
                                   const ScannedFile &b) const
{
    // Each name of a file that goes changes the file.
    if ((isProven(stateOfA, a) && isProven(stateOfB, b)) || stateOfA.file == stateOfB.file) {
        return true;
    }
    ++comparisons;
    return senses.haveSameBytes(a.path, b.path);
}
