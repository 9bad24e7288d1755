// SPDX-License-Identifier: MIT
#include "ui/results/Deletion.h"

#include "ui/results/DeletionPlan.h"
#include "ui/results/FileState.h"

#include <QDebug>

namespace
{
using Verdict = DeletionPlan::Verdict;

// What has been looked at is what is moved: it may be another file by then.
bool take(const QString &path,
          const DeletionPlan &plan,
          const Deletion::Move &move,
          DeletionPlan::Decision *decision)
{
    if (decision->verdict == Verdict::Take) {
        return move(path, nullptr, nullptr);
    }
    if (decision->verdict != Verdict::TakeWhatWasSeen) {
        return false;
    }
    return move(path, &decision->seen, [&] {
        const bool isLeft = plan.isCopyLeft(*decision);
        if (!isLeft) {
            decision->verdict = Verdict::OnlyCopy;
        }
        return isLeft;
    });
}
} // namespace

LeftFiles Deletion::run(DeletionPlan *plan,
                        const QStringList &paths,
                        const Move &move,
                        const std::function<void()> &afterEachFile)
{
    LeftFiles left;
    for (const QString &path : paths) {
        DeletionPlan::Decision decision = plan->decide(path);
        if (!take(path, *plan, move, &decision)) {
            qDebug().noquote() << QStringLiteral("Cannot remove file:") << path;
            left.add(path, FileState::of(path).exists ? decision.verdict : Verdict::Missing);
        }
        afterEachFile();
    }
    return left;
}
