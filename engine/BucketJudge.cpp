// SPDX-License-Identifier: MIT
#include "engine/BucketJudge.h"

#include "engine/FileComparison.h"
#include "engine/RegularFile.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{
constexpr qint64 maxHeadBytes = qint64(4) * 1024;
constexpr qint64 maxBytesInMemory = qint64(64) * 1024 * 1024;
// Heads whose addresses are a power of two apart would share a few lines of the processor's cache.
constexpr qint64 bytesBetweenHeads = 64;
} // namespace

BucketJudge::BucketJudge(const QStringList &bucket, KeyOf keyOf)
    : paths(bucket)
    , currentKey(std::move(keyOf))
    , files(static_cast<std::size_t>(bucket.size()))
{
}

bool BucketJudge::judge(int first, int second)
{
    File &a = fileAt(first);
    File &b = fileAt(second);
    if (!a.isKnown) {
        readHead(first);
    }
    if (!b.isKnown) {
        readHead(second);
    }
    // Sizes differ where two keys coincide. Then only the end of the first file counts, so such a
    // verdict says nothing about any other pair.
    if (!isTrusting || !a.isReadable || !b.isReadable || a.size != b.size) {
        return compareWhole(first, second);
    }
    if (a.likeness < 0) {
        a.likeness = first;
    }
    // A file with an equal before it in the bucket: that one has been compared with all files
    // behind it. So has the first equal of b, and a is not among its equals.
    if (b.likeness >= 0 || a.likeness != first) {
        return a.likeness == b.likeness;
    }
    if (!haveSameContent(first, second)) {
        return false;
    }
    b.likeness = first;
    return true;
}

qint64 BucketJudge::sizeOf(int index)
{
    File &file = fileAt(index);
    if (file.countedSize < 0) {
        hasRead = true;
        file.countedSize = RegularFile::sizeOf(paths.at(index));
    }
    return file.countedSize;
}

void BucketJudge::readHead(int index)
{
    File &known = fileAt(index);
    known.isKnown = true;
    hasRead = true;
    RegularFile file;
    if (!file.open(paths.at(index))) {
        return;
    }
    if (headBytes < 0) {
        const qint64 share = maxBytesInMemory / paths.size() - bytesBetweenHeads;
        headBytes = std::min({file.size(), maxHeadBytes, std::max(share, qint64(0))});
        headStride = headBytes == 0 ? 0 : headBytes + bytesBetweenHeads;
        heads.reset(new char[static_cast<std::size_t>(headStride) * files.size()]);
    }
    known.size = file.size();
    const qint64 bytes = std::min(known.size, headBytes);
    known.isReadable = file.read(headOf(index), bytes) == bytes;
    if (known.isReadable) {
        const auto startBytes = std::min(static_cast<std::size_t>(bytes), sizeof known.start);
        std::memcpy(known.start.data(), headOf(index), startBytes);
    }
}

char *BucketJudge::headOf(int index) const
{
    return heads.get() + index * headStride;
}

bool BucketJudge::haveSameContent(int first, int second)
{
    const qint64 size = fileAt(first).size;
    const qint64 bytes = std::min(size, headBytes);
    if (std::memcmp(headOf(first), headOf(second), static_cast<std::size_t>(bytes)) != 0) {
        return false;
    }
    return bytes == size || compareWhole(first, second);
}

bool BucketJudge::compareWhole(int first, int second)
{
    hasRead = true;
    const auto verdict = FileComparison::compare(paths.at(first), paths.at(second));
    const File &a = fileAt(first);
    const File &b = fileAt(second);
    // A file that broke after its beginning had been read has made earlier verdicts worthless.
    if (verdict == FileComparison::Verdict::Failed && a.isReadable && b.isReadable) {
        isTrusting = false;
    }
    return verdict == FileComparison::Verdict::Equal && belongTogether(first, second);
}

// A file that has changed since it got its key, or whose size could not be told then, stands in the
// wrong bucket. The comparison takes an empty file for equal to any other, so the keys must speak.
bool BucketJudge::belongTogether(int first, int second) const
{
    const QString &a = paths.at(first);
    const QString &b = paths.at(second);
    return !currentKey || RegularFile::sizeOf(a) == RegularFile::sizeOf(b)
        || currentKey(a) == currentKey(b);
}
