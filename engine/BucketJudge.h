// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <array>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

/**
 * Decides which files of one bucket have the same content, reading as little as it can.
 *
 * Of files that stay as they are, every verdict is that of FileComparison::compare(), its log lines
 * included. A file that has left the bucket since is equal to none of another size. The beginning of
 * each file is read once, and equality that has been proven byte by byte carries over from pair to
 * pair. Holds at most 64 MiB of contents. Lives as long as its bucket is worked on.
 */
class BucketJudge final
{
public:
    using KeyOf = std::function<QString(const QString &path)>;

    /**
     * The list must not change while the judge lives. The function tells the key by which files are
     * put into buckets; without it files of any sizes are taken to belong together.
     */
    explicit BucketJudge(const QStringList &bucket, KeyOf keyOf = KeyOf());

    BucketJudge(const BucketJudge &) = delete;
    BucketJudge &operator=(const BucketJudge &) = delete;

    /**
     * Whether the files at the two indexes are equal. Must be asked for every pair first < second
     * of the bucket, in ascending order of first, then of second: earlier verdicts decide later
     * ones.
     */
    bool areEqual(int first, int second)
    {
        return !differAtStart(fileAt(first), fileAt(second)) && judge(first, second);
    }
    /** Whether the file system has been asked since the last call; true at the first. */
    bool takeHasRead() { return std::exchange(hasRead, false); }
    /** Bytes of the file at the index, looked up once. */
    qint64 sizeOf(int index);

private:
    struct File {
        std::array<quint64, 2> start = {}; // the first bytes of its head, where most files differ
        qint64 size = 0; // when its head was read
        qint64 countedSize = -1;
        int likeness = -1; // the first file of the bucket that is proven equal to it
        bool isKnown = false;
        bool isReadable = false;
    };

    File &fileAt(int index) { return files[static_cast<std::size_t>(index)]; }
    // Settles most pairs, and is made for a bucket of thousands of files, which has millions of them.
    bool differAtStart(const File &a, const File &b) const
    {
        return (a.start[0] != b.start[0] || a.start[1] != b.start[1]) && a.size == b.size
            && a.isReadable && b.isReadable && isTrusting;
    }
    bool judge(int first, int second);
    void readHead(int index);
    char *headOf(int index) const;
    bool compareWhole(int first, int second);
    bool belongTogether(int first, int second) const;
    bool haveSameContent(int first, int second);

    const QStringList &paths;
    KeyOf currentKey;
    std::vector<File> files;
    qint64 headBytes = -1;
    qint64 headStride = 0;
    std::unique_ptr<char[]> heads;
    bool isTrusting = true;
    bool hasRead = true;
};
