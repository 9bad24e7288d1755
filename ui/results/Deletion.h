// SPDX-License-Identifier: MIT
#pragma once

#include "ui/results/LeftFiles.h"

#include <QString>
#include <QStringList>

#include <functional>

class DeletionPlan;
struct FileState;

/** Moves files to the trash, one by one, as far as a plan lets them go. */
namespace Deletion
{
/** See Trash::moveFile(). */
using Move = std::function<
    bool(const QString &path, const FileState *seen, const std::function<bool()> &mayStay)>;

/**
 * In the order of the paths. What is not moved is logged, and told where it is still there. A file
 * whose copy turns out to be gone with it is fetched back.
 */
LeftFiles run(DeletionPlan *plan,
              const QStringList &paths,
              const Move &move,
              const std::function<void()> &afterEachFile);
} // namespace Deletion
