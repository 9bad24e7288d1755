// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ScanProfile.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

/** Runs whole scans on the calling thread. */
namespace Scan
{
enum Mode { ByteByByte, Md5, Sha1, Crc };

ScanProfile profile(Mode mode);
/** Rows for the data of a test: each mode as the number in the column "mode". */
void addModes();
/** Groups in the engine's order. Ends the process when the scan does not say that it has ended. */
QList<QStringList> run(const QStringList &folders, const ScanProfile &profile);
/** Without order. */
QSet<QSet<QString>> asSets(const QList<QStringList> &groups);
} // namespace Scan
