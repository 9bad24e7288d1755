// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <memory>
#include <vector>

/**
 * Decides which files of one bucket have the same content, reading as little as it can.
 *
 * Every verdict is that of FileComparison::compare(), its log lines included. The beginning of each
 * file is read once, and equality that has been proven byte by byte carries over from pair to pair.
 * Holds at most 64 MiB of contents. Lives as long as its bucket is worked on.
 */
class BucketJudge final
{
public:
    /** The list must not change while the judge lives. */
    explicit BucketJudge(const QStringList &bucket);

    BucketJudge(const BucketJudge &) = delete;
    BucketJudge &operator=(const BucketJudge &) = delete;

    /**
     * Whether the files at the two indexes are equal. Must be asked for every pair first < second
     * of the bucket, in ascending order of first, then of second: earlier verdicts decide later
     * ones.
     */
    bool areEqual(int first, int second);
    /** Bytes of the file at the index, looked up once. */
    qint64 sizeOf(int index);

private:
    struct File {
        qint64 size = 0; // when its head was read
        qint64 countedSize = -1;
        int likeness = -1; // the first file of the bucket that is proven equal to it
        bool isKnown = false;
        bool isReadable = false;
    };

    void readHead(int index);
    const char *headOf(int index) const;
    bool compareWhole(int first, int second);
    bool haveSameContent(int first, int second);

    const QStringList &paths;
    std::vector<File> files;
    qint64 headBytes = -1;
    std::unique_ptr<char[]> heads;
    bool isTrusting = true;
};
