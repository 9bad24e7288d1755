// SPDX-License-Identifier: MIT
#pragma once

#include "ui/results/DeletionPlan.h"

#include <QMap>
#include <QString>

/** The files that a deletion has left where they are, and how a user is told of them. */
class LeftFiles final
{
public:
    /** One that may be taken could not be. A file that is missing is none that was left. */
    void add(const QString &path, DeletionPlan::Verdict verdict);
    /** How many files were left, and how many for which reason; empty if there are none. */
    QString summary() const;
    /** A line for each file: its path, then the reason; in the order in which they were added. */
    QString list() const { return lines; }

private:
    QMap<DeletionPlan::Verdict, int> counts;
    QString lines;
};
