// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanFindings.h"
#include "ui/results/FileState.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/**
 * Decides which ticked files a deletion may take, so that of every content that was found one copy
 * stays unless the user has ticked a whole group.
 *
 * Knows nothing of the file system: it is told what stands at a path when it asks. Ask it for each
 * ticked file in the order of the deletion, right before that file is moved; what it answers holds
 * for that moment alone.
 */
class DeletionPlan final
{
    Q_DISABLE_COPY(DeletionPlan)

public:
    enum class Verdict {
        /** It may be taken, whatever stands there: nothing is known of the file, or all was ticked. */
        Take,
        /** It may be taken as long as it is still what was seen: a copy of it has just been seen, too. */
        TakeWhatWasSeen,
        /** There is nothing to take any more. */
        Missing,
        /** It stays: no other file of its content was found, or none is left that stays. */
        OnlyCopy,
        /** It stays: it is not the file that the scan has read. */
        Changed,
        /** It stays: what would be left is this very file, reached by another path. */
        SameFile
    };

    struct Decision {
        Verdict verdict = Verdict::OnlyCopy;
        // With TakeWhatWasSeen, of the file itself and of the copy that stays.
        FileState seen;
        QString copy;
        FileState copySeen;
    };

    /** How the plan sees the disk. */
    struct Senses {
        std::function<FileState(const QString &path)> look;
        /**
         * Asked only where the scan has not proven that the contents are the same, or where a file may
         * have been written to since without a trace in its size and its time of modification.
         */
        std::function<bool(const QString &a, const QString &b)> haveSameBytes;
        /** Of a path: it is no copy that stays. */
        std::function<bool(const QString &path)> isInTrash;
    };

    /**
     * The groups are those that are shown, the paths those of the ticked rows in the order of the
     * deletion. Rows of other groups than those of the findings are none of the scan's: nothing is
     * known of their files. Costs time in proportion to the rows and to the files of the findings.
     */
    DeletionPlan(const QList<QStringList> &shownGroups,
                 const QStringList &tickedPaths,
                 const ScanFindings &scanFindings,
                 Senses senses);

    /**
     * Looks at the file and at a copy of it; at more than that only once for each copy that turns
     * out to be none any more, or to be another path to the same file.
     */
    Decision decide(const QString &path);
    /**
     * Whether the copy that stays is there, now that the file has been taken. The two may have been
     * one file in a way that nothing showed before, or another deletion took the copy meanwhile.
     */
    bool isCopyLeft(const Decision &decision) const;

    /**
     * True when rows of the scan show the file and no other file that was found has its content any
     * more. Without regard to ticks; looks at the other files until it sees a copy.
     */
    bool isLastOfItsContent(const QString &path) const;

private:
    /** A ticked path. */
    struct Tick {
        int order = 0; // in the deletion
        int ticks = 0;
        int rows = 0;
        int set = -1; // in the findings, with the place of the file in it; -1 for none
        int member = -1;
        bool isAskedFor = true; // every row of its group is ticked
    };
    /** A file that may be the copy that stays. */
    struct Copy {
        int member = -1;
        const Tick *tick = nullptr; // null where it is not ticked
        FileState seen;
    };
    /** The search for copies that stay, of one set of the findings. */
    struct Search {
        bool isPrepared = false;
        QVector<int> unticked; // members in the order of the set
        QVector<int> ticked; // members, the last one of the deletion first
        int nextUnticked = 0;
        int nextTicked = 0;
        QVector<Copy> found; // in the order in which they are preferred
    };

    void findWholeGroups(const QList<QStringList> &shownGroups);
    void findSets();
    Search &searchIn(int set);
    Decision decideByCopies(const Tick &tick, const FileState &file);
    bool findCopy(Search *search, const Tick &tick);
    bool isCopyThere(Search *search, int index, const Tick &tick) const;
    const ScannedFile &memberOf(int set, int member) const;
    bool mayStay(const FileState &state, const ScannedFile &scanned) const;
    static bool isAsScanned(const FileState &state, const ScannedFile &scanned);
    bool isProven(const FileState &state, const ScannedFile &scanned) const;
    bool haveSameContent(const FileState &stateOfA,
                         const ScannedFile &a,
                         const FileState &stateOfB,
                         const ScannedFile &b) const;

    const ScanFindings findings;
    const Senses senses;
    const bool areRowsOfScan;
    QHash<QString, Tick> tickOf;
    QHash<int, Search> searches; // by set
    mutable int comparisons = 0;
};
