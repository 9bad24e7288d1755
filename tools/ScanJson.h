// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ScanReport.h"

#include <QByteArray>
#include <QJsonValue>

class ScanOutput;
struct ScanArguments;

/** The JSON document of twinsift-scan; docs/twinsift-scan.schema.json describes it. */
namespace ScanJson
{
/**
 * A path as a text; where it is no valid UTF-8 an object whose only member "percentEncoded" has its
 * bytes, with all but unreserved characters and slashes written as a percent sign and two digits.
 */
QJsonValue path(const QByteArray &bytes);

/** In pieces: each group and each skipped path stands in a line. No time is in it. */
void write(const QVector<ReportedGroup> &groups,
           const ScanReport &report,
           const ScanArguments &arguments,
           ScanOutput *output);
} // namespace ScanJson
