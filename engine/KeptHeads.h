// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

/**
 * The beginnings of many files, side by side in memory.
 *
 * They are kept where there is room for those of all files of their size, 64 MiB in all, so that short
 * files are done with after one look.
 */
class KeptHeads final
{
public:
    explicit KeptHeads(int fileCount)
        : maxKeptBytes(maxBytesOfHeads / fileCount)
        , starts(static_cast<std::size_t>(fileCount), nullptr)
    {
    }

    bool areKept(qint64 bytes) const { return bytes <= maxKeptBytes; }

    void keep(int index, const char *data, qint64 bytes)
    {
        if (chunks.empty() || used + bytes > chunkBytes) {
            chunks.emplace_back(new char[static_cast<std::size_t>(chunkBytes)]);
            used = 0;
        }
        char *const start = chunks.back().get() + used;
        std::memcpy(start, data, static_cast<std::size_t>(bytes));
        starts[static_cast<std::size_t>(index)] = start;
        used += bytes;
    }

    /** Of two that are kept, each of so many bytes. */
    bool areEqual(int a, int b, qint64 bytes) const
    {
        return std::memcmp(starts[static_cast<std::size_t>(a)],
                           starts[static_cast<std::size_t>(b)],
                           static_cast<std::size_t>(bytes))
            == 0;
    }

private:
    static constexpr qint64 maxBytesOfHeads = qint64(64) * 1024 * 1024;
    static constexpr qint64 chunkBytes = qint64(1024) * 1024;

    qint64 maxKeptBytes;
    std::vector<const char *> starts;
    std::vector<std::unique_ptr<char[]>> chunks;
    qint64 used = 0; // of the last chunk
};
