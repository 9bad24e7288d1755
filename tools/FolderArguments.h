// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

struct WalkOptions;

/** The folders that twinsift-scan is told to scan. */
namespace FolderArguments
{
/**
 * Reads names that end in NUL each or, where there is no NUL, in line feeds; "-" is standard input.
 * Empty names are left out. False, with the reason, when it cannot be read.
 */
bool readList(const QString &fileName, QStringList *names, QString *error);

/**
 * The folders absolute and clean, in their order. One that the walk of another one reaches is left
 * out, so that each file is listed once. False, with the reason, when one is no folder or there is
 * none.
 */
bool reduce(const QStringList &names,
            const WalkOptions &options,
            QStringList *folders,
            QString *error);
} // namespace FolderArguments
