// SPDX-License-Identifier: MIT
#include "engine/ContentClasses.h"

#include "engine/ContentHash.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

namespace
{
// So many can be read side by side without closing one: far below the descriptors of a process.
constexpr std::size_t maxOpenFiles = 64;
// The first read is small, so that an early difference costs little.
constexpr qint64 headBytes = qint64(4) * 1024;
constexpr qint64 blockBytes = qint64(128) * 1024;
constexpr qint64 windowBytes = qint64(32) * 1024 * 1024;
constexpr qint64 maxBytesOfHeads = qint64(64) * 1024 * 1024;
// Each hash covers so many times the bytes before it: a file is opened for few of them.
constexpr qint64 growth = 16;
constexpr qint64 maxBytesOfShortHash = qint64(16) * 1024 * 1024;

std::size_t toSize(qint64 bytes)
{
    return static_cast<std::size_t>(bytes);
}

// The runs of elements that agree, of a list in which those that agree stand together.
template<typename List, typename Agree, typename Visit>
bool forEachRun(const List &list, const Agree &agree, const Visit &visit)
{
    for (auto begin = list.begin(); begin != list.end();) {
        const auto end = std::find_if_not(begin, list.end(), [&](const auto &other) {
            return agree(*begin, other);
        });
        if (!visit(List(begin, end))) {
            return false;
        }
        begin = end;
    }
    return true;
}
} // namespace

// The beginnings of many files. They are kept where there is room for those of all files of their
// size, so that short files are done with after one look.
struct ContentClasses::Heads {
    explicit Heads(int fileCount)
        : maxKeptBytes(maxBytesOfHeads / fileCount)
        , starts(toSize(fileCount), nullptr)
    {
    }

    bool areKept(qint64 bytes) const { return bytes <= maxKeptBytes; }

    void keep(int index, const char *data, qint64 bytes)
    {
        if (chunks.empty() || used + bytes > chunkBytes) {
            chunks.emplace_back(new char[toSize(chunkBytes)]);
            used = 0;
        }
        char *const start = chunks.back().get() + used;
        std::memcpy(start, data, toSize(bytes));
        starts[toSize(index)] = start;
        used += bytes;
    }

    bool areEqual(int a, int b, qint64 bytes) const
    {
        return std::memcmp(starts[toSize(a)], starts[toSize(b)], toSize(bytes)) == 0;
    }

    static constexpr qint64 chunkBytes = qint64(1024) * 1024;
    qint64 maxKeptBytes;
    std::vector<const char *> starts;
    std::vector<std::unique_ptr<char[]>> chunks;
    qint64 used = 0;
};

ContentClasses::ContentClasses(QStringList filePaths, GoOn mayGoOn, qint64 maxBytes)
    : paths(std::move(filePaths))
    , goOn(std::move(mayGoOn))
    , limit(maxBytes)
    , sorted(toSize(paths.size()))
{
    int index = 0;
    for (File &file : sorted) {
        file.first = index++;
    }
}

ContentClasses::~ContentClasses() = default;

bool ContentClasses::sort()
{
    if (sorted.size() > maxOpenFiles) {
        return sortMany();
    }
    Part all(sorted.size());
    std::iota(all.begin(), all.end(), 0);
    return sortFew(all);
}

qint64 ContentClasses::lengthOf(int index) const
{
    const qint64 size = sorted[toSize(index)].size;
    return limit < 0 ? size : std::min(size, limit);
}

// False also for a file that has bytes behind its announced end: it is like no other.
bool ContentClasses::open(int index, RegularFile *file)
{
    File &known = at(index);
    known.isReadable = file->open(paths.at(index));
    if (!known.isReadable) {
        known.error = file->errorString();
        return false;
    }
    known.size = file->size();
    known.modified = file->modified();
    if (known.size > 0) {
        return limit <= known.size;
    }
    char byte = 0;
    const qint64 surplus = file->read(&byte, 1);
    if (surplus < 0) {
        fail(index, *file);
    }
    return surplus == 0 && limit <= 0;
}

// What was learned from it before is worth nothing once it has changed.
bool ContentClasses::openAgain(int index, RegularFile *file)
{
    const File before = at(index);
    return open(index, file) && at(index).size == before.size
        && at(index).modified == before.modified;
}

char *ContentClasses::blocksFor(std::size_t bytes)
{
    if (bytes > capacityOfBlocks) {
        blocks.reset(new char[bytes]);
        capacityOfBlocks = bytes;
    }
    return blocks.get();
}

void ContentClasses::fail(int index, const RegularFile &file)
{
    at(index).isReadable = false;
    at(index).error = file.errorString();
}

void ContentClasses::join(const Part &part)
{
    const int first = *std::min_element(part.begin(), part.end());
    for (const int index : part) {
        at(index).first = first;
    }
}

bool ContentClasses::sortFew(const Part &part)
{
    OpenFiles files;
    for (const int index : part) {
        if (!goOn()) {
            return false;
        }
        OpenFile file = {index, {}};
        if (open(index, &file.file)) {
            files.push_back(std::move(file));
        }
    }
    const auto sizeOf = [this](const OpenFile &file) {
        return at(file.index).size;
    };
    std::stable_sort(files.begin(), files.end(), [&](const OpenFile &a, const OpenFile &b) {
        return limit < 0 && sizeOf(a) < sizeOf(b);
    });
    while (!files.empty()) {
        const auto end = std::find_if(files.begin(), files.end(), [&](const OpenFile &file) {
            return limit < 0 && sizeOf(file) != sizeOf(files.front());
        });
        OpenFiles sameSize(std::make_move_iterator(files.begin()), std::make_move_iterator(end));
        files.erase(files.begin(), end);
        if (!compareOpen(std::move(sameSize), 0)) {
            return false;
        }
    }
    return true;
}

// All files of the part stand at the same place and agree up to there.
bool ContentClasses::compareOpen(OpenFiles part, qint64 done)
{
    while (part.size() > 1 && done < lengthOf(part.front().index)) {
        const qint64 rest = lengthOf(part.front().index) - done;
        const qint64 bytes = std::min(rest, done == 0 ? headBytes : blockBytes);
        if (!readBlock(&part, bytes)) {
            return false;
        }
        done += bytes;
        std::vector<OpenFiles> parts = splitByBlock(std::move(part), bytes);
        part.clear();
        if (!parts.empty()) {
            part = std::move(parts.back());
            parts.pop_back();
        }
        for (OpenFiles &other : parts) {
            if (!compareOpen(std::move(other), done)) {
                return false;
            }
        }
    }
    if (part.size() > 1) {
        Part equal;
        for (const OpenFile &file : part) {
            equal.push_back(file.index);
        }
        join(equal);
    }
    return true;
}

// Files that fail or have become shorter leave the part.
bool ContentClasses::readBlock(OpenFiles *part, qint64 bytes)
{
    char *const buffer = blocksFor(toSize(bytes) * part->size());
    OpenFiles complete;
    for (OpenFile &file : *part) {
        if (!goOn()) {
            return false;
        }
        char *const block = buffer + toSize(bytes) * complete.size();
        const qint64 done = file.file.read(block, bytes);
        if (done < 0) {
            fail(file.index, file.file);
        }
        if (done == bytes) {
            complete.push_back(std::move(file));
        }
    }
    *part = std::move(complete);
    return true;
}

std::vector<ContentClasses::OpenFiles> ContentClasses::splitByBlock(OpenFiles part,
                                                                    qint64 bytes) const
{
    std::vector<OpenFiles> parts;
    std::vector<const char *> blockOfPart;
    const char *block = blocks.get();
    for (OpenFile &file : part) {
        const auto same = std::find_if(blockOfPart.begin(), blockOfPart.end(), [&](const char *b) {
            return std::memcmp(b, block, toSize(bytes)) == 0;
        });
        const auto number = same - blockOfPart.begin();
        if (same == blockOfPart.end()) {
            blockOfPart.push_back(block);
            parts.emplace_back();
        }
        parts[toSize(number)].push_back(std::move(file));
        block += bytes;
    }
    return parts;
}

bool ContentClasses::sortMany()
{
    Heads heads(paths.size());
    Part files;
    if (!readHeads(&heads, &files)) {
        return false;
    }
    const auto rank = [this](int index) {
        return std::make_pair(lengthOf(index), hashes[toSize(index)]);
    };
    std::stable_sort(files.begin(), files.end(), [&](int a, int b) { return rank(a) < rank(b); });
    return forEachRun(
        files,
        [&](int a, int b) { return rank(a) == rank(b); },
        [&](const Part &part) { return sortByHeads(part, heads); });
}

// Leaves out what cannot be read, or is like no other file anyway.
bool ContentClasses::readHeads(Heads *heads, Part *files)
{
    hashes.resize(sorted.size());
    char *const head = blocksFor(toSize(headBytes));
    for (int index = 0; index < paths.size(); ++index) {
        if (!goOn()) {
            return false;
        }
        RegularFile file;
        if (!open(index, &file)) {
            continue;
        }
        const qint64 bytes = std::min(lengthOf(index), headBytes);
        const qint64 done = file.read(head, bytes);
        if (done < 0) {
            fail(index, file);
        }
        if (done != bytes) {
            continue;
        }
        hashes[toSize(index)] = ContentHash::of(head, bytes);
        if (heads->areKept(bytes)) {
            heads->keep(index, head, bytes);
        }
        files->push_back(index);
    }
    return true;
}

// The hashes of their heads agree.
bool ContentClasses::sortByHeads(const Part &part, const Heads &heads)
{
    if (part.size() < 2) {
        return true;
    }
    const qint64 bytes = std::min(lengthOf(part.front()), headBytes);
    if (!heads.areKept(bytes)) {
        return refine(part, bytes);
    }
    // Hashes may coincide; what does not equal the first is compared anew.
    Part equal;
    Part others;
    for (const int index : part) {
        (heads.areEqual(part.front(), index, bytes) ? equal : others).push_back(index);
    }
    if (bytes < lengthOf(part.front())) {
        return refine(equal, bytes) && refine(others, 0);
    }
    join(equal);
    return refine(others, 0);
}

// Files that have the same length, and seem to agree in so many bytes from the start.
bool ContentClasses::refine(const Part &part, qint64 done)
{
    if (part.size() < 2) {
        return true;
    }
    if (part.size() <= maxOpenFiles) {
        return sortFew(part);
    }
    const qint64 length = lengthOf(part.front());
    if (done >= length) {
        return compareByWindow(part);
    }
    const qint64 next = std::max(done, headBytes) * growth;
    return refineByHash(part, done, next > maxBytesOfShortHash ? length : std::min(next, length));
}

bool ContentClasses::refineByHash(const Part &part, qint64 from, qint64 to)
{
    Part files;
    for (const int index : part) {
        bool isRead = false;
        if (!hashBytes(index, from, to, &isRead)) {
            return false;
        }
        if (isRead) {
            files.push_back(index);
        }
    }
    const auto hashOf = [this](int index) {
        return hashes[toSize(index)];
    };
    std::stable_sort(files.begin(), files.end(), [&](int a, int b) {
        return hashOf(a) < hashOf(b);
    });
    return forEachRun(
        files,
        [&](int a, int b) { return hashOf(a) == hashOf(b); },
        [&](const Part &agreeing) { return refine(agreeing, to); });
}

// False when the work was ended. A file that has failed or changed counts as not read.
bool ContentClasses::hashBytes(int index, qint64 from, qint64 to, bool *isRead)
{
    ContentHash hash;
    const bool goesOn = readBytes(index, from, to - from, isRead, [&](const char *data, qint64 n) {
        hash.add(data, n);
        return true;
    });
    hashes[toSize(index)] = hash.result();
    return goesOn;
}

// Files of one length whose hashes agree over all of it. So many cannot be open at once, and each is
// held against a piece of the first one that is in memory.
bool ContentClasses::compareByWindow(Part part)
{
    const qint64 length = lengthOf(part.front());
    Part others;
    for (qint64 from = 0; from < length && part.size() > 1;) {
        bool isRead = false;
        if (!fillWindow(part.front(), from, std::min(length - from, windowBytes), &isRead)) {
            return false;
        }
        if (!isRead) {
            // The next one is equal to it up to here, and takes its place.
            part.erase(part.begin());
            continue;
        }
        if (!holdAgainstWindow(&part, &others, from)) {
            return false;
        }
        from += static_cast<qint64>(window.size());
    }
    if (part.size() > 1) {
        join(part);
    }
    return refine(others, 0);
}

bool ContentClasses::fillWindow(int index, qint64 from, qint64 bytes, bool *isRead)
{
    window.clear();
    window.reserve(toSize(bytes));
    return readBytes(index, from, bytes, isRead, [this](const char *data, qint64 count) {
        window.insert(window.end(), data, data + count);
        return true;
    });
}

// Leaves the equal ones in the part. A file that fails or has changed goes nowhere.
bool ContentClasses::holdAgainstWindow(Part *part, Part *others, qint64 from)
{
    Part equal = {part->front()};
    for (auto index = part->cbegin() + 1; index != part->cend(); ++index) {
        bool isRead = false;
        bool isEqual = true;
        const char *expected = window.data();
        const auto compare = [&](const char *data, qint64 count) {
            isEqual = std::memcmp(expected, data, toSize(count)) == 0;
            expected += count;
            return isEqual;
        };
        if (!readBytes(*index, from, static_cast<qint64>(window.size()), &isRead, compare)) {
            return false;
        }
        if (!isEqual) {
            others->push_back(*index);
        } else if (isRead) {
            equal.push_back(*index);
        }
    }
    *part = std::move(equal);
    return true;
}

// Hands the bytes over in blocks until the visitor has had enough. False when the work was ended.
template<typename Visit>
bool ContentClasses::readBytes(int index,
                               qint64 from,
                               qint64 bytes,
                               bool *isRead,
                               const Visit &visit)
{
    *isRead = false;
    if (!goOn()) {
        return false;
    }
    RegularFile file;
    if (!openAgain(index, &file) || !file.skip(from)) {
        return true;
    }
    char *const block = blocksFor(toSize(std::min(bytes, blockBytes)));
    for (qint64 rest = bytes; rest > 0;) {
        const qint64 wanted = std::min(rest, blockBytes);
        const qint64 done = file.read(block, wanted);
        if (done < 0) {
            fail(index, file);
        }
        if (done != wanted || !visit(block, wanted)) {
            return true;
        }
        if (!goOn()) {
            return false;
        }
        rest -= wanted;
    }
    *isRead = true;
    return true;
}
