// SPDX-License-Identifier: MIT
#include "ui/results/LeftFiles.h"

#include "ui/results/PathText.h"

#include <numeric>

namespace
{
QString reasonOf(DeletionPlan::Verdict verdict)
{
    switch (verdict) {
    case DeletionPlan::Verdict::OnlyCopy:
        return QStringLiteral("the only copy left");
    case DeletionPlan::Verdict::Changed:
        return QStringLiteral("changed since the scan");
    case DeletionPlan::Verdict::SameFile:
        return QStringLiteral("the same file under another name");
    case DeletionPlan::Verdict::Take:
    case DeletionPlan::Verdict::TakeWhatWasSeen:
        return QStringLiteral("could not be moved to the trash");
    case DeletionPlan::Verdict::Missing:
        break;
    }
    return {};
}
} // namespace

void LeftFiles::add(const QString &path, DeletionPlan::Verdict verdict)
{
    const QString reason = reasonOf(verdict);
    if (reason.isEmpty()) {
        return;
    }
    ++counts[verdict == DeletionPlan::Verdict::Take ? DeletionPlan::Verdict::TakeWhatWasSeen
                                                    : verdict];
    lines += PathText::shown(path) % QStringLiteral(": ") % reason % QLatin1Char('\n');
}

QString LeftFiles::summary() const
{
    const int all = std::accumulate(counts.begin(), counts.end(), 0);
    if (all == 0) {
        return {};
    }
    QString text = all == 1 ? QStringLiteral("1 file was left where it is.")
                            : QStringLiteral("%1 files were left where they are.").arg(all);
    for (auto count = counts.begin(); count != counts.end(); ++count) {
        text += QStringLiteral("\n%1: %2").arg(reasonOf(count.key())).arg(*count);
    }
    return text;
}
