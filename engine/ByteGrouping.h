// SPDX-License-Identifier: MIT
#pragma once

#include "engine/ContentClasses.h"
#include "engine/FileHead.h"
#include "engine/Grouping.h"
#include "engine/ReadAhead.h"
#include "engine/ScanProfile.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

class BucketPairs;

/**
 * Groups files by size and chosen attributes, confirmed byte by byte.
 *
 * What it tells and finds is what a comparison of every pair of files under one key would give. It
 * takes the beginnings of files from threads that read ahead. Used once, on one thread.
 */
class ByteGrouping final
{
public:
    ByteGrouping(Grouping::Files scannedFiles,
                 const ScanProfile &scanProfile,
                 const Grouping::Events &groupingEvents,
                 Grouping::Result *groupingResult);

    void run();

private:
    struct Bucket;
    struct Placement;
    using Buckets = QHash<QString, Grouping::Chain>;

    bool sortIntoBuckets();
    void expectWork() const;
    void readHeadsAhead();
    bool confirm(const Bucket &bucket);
    void tellSkipped(const Bucket &bucket, const ContentClasses &classes) const;
    void countCompared(const Bucket &bucket) const;
    bool keepExactGroups(const Bucket &bucket, const ContentClasses &classes);
    bool addLonger(const Bucket &bucket, const ContentClasses &classes, BucketPairs *pairs);
    bool placeRow(Placement *placement, int first);
    void placePair(Placement *placement, int first, int second);

    Grouping::Files files;
    ScanProfile profile;
    const Grouping::Events &events;
    Grouping::Result *result;
    Buckets buckets;
    QVector<int> next; // file of the same bucket; negative for none
    std::unique_ptr<ReadAhead<FileHead>> heads;
};
