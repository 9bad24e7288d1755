// SPDX-License-Identifier: MIT
#include "engine/FileComparison.h"

#include "engine/RegularFile.h"

#include <QThread>

#include <algorithm>
#include <cstring>
#include <memory>

namespace
{
using FileComparison::Verdict;

// The first block is small, so that an early difference costs little.
constexpr qint64 firstBlockBytes = qint64(4) * 1024;
constexpr qint64 maxBlockBytes = qint64(128) * 1024;

struct Side {
    QString path;
    RegularFile file;

    Verdict fail() const
    {
        FileComparison::complain(path, file.errorString());
        return Verdict::Failed;
    }
};

// What the last step of the shorter file decides, before anything is read.
bool canBeEqual(qint64 bytesOfA, qint64 bytesOfB)
{
    return bytesOfA == bytesOfB
        || (bytesOfA < bytesOfB && bytesOfA % FileComparison::stepBytes == 0);
}

Verdict compareBlock(Side &a, Side &b, char *dataA, char *dataB, qint64 bytes)
{
    const qint64 bytesOfA = a.file.read(dataA, bytes);
    if (bytesOfA < 0) {
        return a.fail();
    }
    const qint64 bytesOfB = b.file.read(dataB, bytes);
    if (bytesOfB < 0) {
        return b.fail();
    }
    // A file that has been cut short since it was opened is never taken for equal.
    if (bytesOfA != bytes || bytesOfB != bytes
        || QThread::currentThread()->isInterruptionRequested()) {
        return Verdict::Failed;
    }
    const bool equal = std::memcmp(dataA, dataB, static_cast<std::size_t>(bytes)) == 0;
    return equal ? Verdict::Equal : Verdict::Different;
}
} // namespace

Verdict FileComparison::compare(const QString &a, const QString &b)
{
    Side sideA = {a, {}};
    if (!sideA.file.open(a)) {
        return sideA.fail();
    }
    Side sideB = {b, {}};
    if (!sideB.file.open(b)) {
        return sideB.fail();
    }
    const qint64 bytes = sideA.file.size();
    if (!canBeEqual(bytes, sideB.file.size())) {
        return Verdict::Different;
    }
    const qint64 bufferBytes = std::min(bytes, maxBlockBytes);
    const std::unique_ptr<char[]> buffer(new char[2 * static_cast<std::size_t>(bufferBytes)]);
    Verdict verdict = Verdict::Equal;
    qint64 blockBytes = std::min(bytes, firstBlockBytes);
    for (qint64 done = 0; done < bytes && verdict == Verdict::Equal; done += blockBytes) {
        blockBytes = done == 0 ? blockBytes : std::min(bytes - done, bufferBytes);
        verdict = compareBlock(sideA, sideB, buffer.get(), buffer.get() + bufferBytes, blockBytes);
    }
    return verdict;
}

void FileComparison::complain(const QString &path, const QString &reason)
{
    const QString text = QStringLiteral("File %1 cannot opened! %2").arg(path, reason);
    qCritical("%s", qUtf8Printable(text));
}
