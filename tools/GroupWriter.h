// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ScanArguments.h"
#include "tools/ScanReport.h"

class ScanOutput;

/** Prints what a scan has found, in the form that the arguments ask for. */
namespace GroupWriter
{
/**
 * The groups in the order that the arguments ask for. A group that is as large or as long as another
 * stays behind it when it was found later.
 */
QVector<ReportedGroup> sorted(QVector<ReportedGroup> groups, ScanArguments::Order order);

/** One group, a path a line, or up to a NUL, as the file system has it. */
void writeText(const QStringList &group, const ScanArguments &arguments, ScanOutput *output);
/** A table as of RFC 4180 with the columns group, size and path; groups have numbers from 1. */
void writeCsv(const QVector<ReportedGroup> &groups, ScanOutput *output);
} // namespace GroupWriter
