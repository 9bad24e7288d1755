// SPDX-License-Identifier: MIT
#pragma once

#include "engine/FileKey.h"
#include "engine/Grouping.h"
#include "engine/ScanProfile.h"

#include <QString>
#include <QStringList>
#include <QVector>

/**
 * Groups files by a checksum of their content, which it takes from threads that read ahead; also keeps
 * groups of one file. Used once, on one thread.
 */
class ChecksumGrouping final
{
public:
    ChecksumGrouping(Grouping::Files scannedFiles,
                     const ScanProfile &scanProfile,
                     const Grouping::Events &groupingEvents,
                     Grouping::Result *groupingResult);

    void run();

private:
    struct ReadFile;

    void store(const QString &path, const FileKey::Checksum &checksum);
    void keepExactGroups(const QVector<ReadFile> &readFiles);

    Grouping::Files files;
    ScanProfile profile;
    const Grouping::Events &events;
    Grouping::Result *result;
};
