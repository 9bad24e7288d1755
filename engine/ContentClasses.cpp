// SPDX-License-Identifier: MIT
#include "engine/ContentClasses.h"

#include "engine/ContentHash.h"
#include "engine/KeptHeads.h"
#include "engine/SortInSteps.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

namespace
{
constexpr qint64 headBytes = FileHead::maxBytes;
constexpr qint64 blockBytes = qint64(128) * 1024;
constexpr qint64 windowBytes = qint64(32) * 1024 * 1024;
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
    const bool staysOpen = paths.size() <= maxOpenFiles;
    int next = 0;
    return sort([this, staysOpen, &next](FileHead *head) {
        *head = FileHead::read(paths.at(next++), headBytes, staysOpen);
        return goOn();
    });
}

bool ContentClasses::sort(const Heads &heads)
{
    return paths.size() <= maxOpenFiles ? sortFew(heads) : sortMany(heads);
}

qint64 ContentClasses::lengthOf(int index) const
{
    const qint64 size = sorted[toSize(index)].size;
    return limit < 0 ? size : std::min(size, limit);
}

// False for a file that is like no other.
bool ContentClasses::note(int index, const FileHead &head)
{
    File &file = at(index);
    file.isReadable = head.outcome != FileHead::Outcome::Failed;
    file.error = head.error;
    file.size = head.size;
    file.modified = head.modified;
    file.changed = head.changed;
    return head.outcome == FileHead::Outcome::Read && limit <= head.size;
}

// What was learned from it before is worth nothing once it has changed.
bool ContentClasses::openAgain(int index, RegularFile *file)
{
    if (!file->open(paths.at(index))) {
        fail(index, file->errorString());
        return false;
    }
    return file->size() == at(index).size && file->modified() == at(index).modified;
}

void ContentClasses::fail(int index, const QString &error)
{
    at(index).isReadable = false;
    at(index).error = error;
}

char *ContentClasses::blocksFor(std::size_t bytes)
{
    if (bytes > capacityOfBlocks) {
        blocks.reset(new char[bytes]);
        capacityOfBlocks = bytes;
    }
    return blocks.get();
}

void ContentClasses::join(const Part &part)
{
    const int first = *std::min_element(part.begin(), part.end());
    for (const int index : part) {
        at(index).first = first;
    }
}

bool ContentClasses::sortFew(const Heads &heads)
{
    OpenFiles files;
    for (int index = 0; index < paths.size(); ++index) {
        OpenFile file = {index, {}};
        if (!heads(&file.head)) {
            return false;
        }
        if (note(index, file.head)) {
            files.push_back(std::move(file));
        }
    }
    return sortOpen(std::move(files));
}

// Once more from the start: they seemed equal, or their hashes coincide.
bool ContentClasses::sortFew(const Part &part)
{
    OpenFiles files;
    for (const int index : part) {
        if (!goOn()) {
            return false;
        }
        OpenFile file = {index, FileHead::read(paths.at(index), headBytes, true)};
        if (note(index, file.head)) {
            files.push_back(std::move(file));
        }
    }
    return sortOpen(std::move(files));
}

bool ContentClasses::sortOpen(OpenFiles files)
{
    const auto areEqual = [this](const OpenFile &a, const OpenFile &b) {
        const qint64 length = lengthOf(a.index);
        return length == lengthOf(b.index)
            && std::memcmp(a.head.bytes.constData(),
                           b.head.bytes.constData(),
                           toSize(std::min(length, headBytes)))
            == 0;
    };
    std::vector<OpenFiles> parts = split(std::move(files), areEqual);
    return std::all_of(parts.begin(), parts.end(), [this](OpenFiles &part) {
        return compareOpen(std::move(part), headBytes);
    });
}

// All files of the part stand at the same place and agree up to there.
bool ContentClasses::compareOpen(OpenFiles part, qint64 done)
{
    while (part.size() > 1 && done < lengthOf(part.front().index)) {
        const qint64 bytes = std::min(lengthOf(part.front().index) - done, blockBytes);
        if (!readBlock(&part, bytes)) {
            return false;
        }
        done += bytes;
        const char *const first = blocks.get();
        std::vector<OpenFiles> parts =
            split(std::move(part), [first, bytes](const OpenFile &a, const OpenFile &b) {
                return std::memcmp(first + a.block * bytes, first + b.block * bytes, toSize(bytes))
                    == 0;
            });
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
    Part equal;
    for (OpenFile &file : part) {
        if (part.size() > 1 && (done <= headBytes || hasEnded(file.index, done, &file.head.file))) {
            equal.push_back(file.index);
        }
    }
    if (equal.size() > 1) {
        join(equal);
    }
    return true;
}

// False for one that goes on behind its announced end.
bool ContentClasses::hasEnded(int index, qint64 place, RegularFile *file)
{
    return place < at(index).size || limit >= 0 || file->isAtEnd();
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
        file.block = static_cast<qint64>(complete.size());
        const qint64 done = file.head.file.read(buffer + file.block * bytes, bytes);
        if (done < 0) {
            fail(file.index, file.head.file.errorString());
        }
        if (done == bytes) {
            complete.push_back(std::move(file));
        }
    }
    *part = std::move(complete);
    return true;
}

// Into parts of files that are equal to each other.
template<typename AreEqual>
std::vector<ContentClasses::OpenFiles> ContentClasses::split(OpenFiles part,
                                                             const AreEqual &areEqual)
{
    std::vector<OpenFiles> parts;
    for (OpenFile &file : part) {
        const auto same = std::find_if(parts.begin(), parts.end(), [&](const OpenFiles &other) {
            return areEqual(other.front(), file);
        });
        if (same != parts.end()) {
            same->push_back(std::move(file));
        } else {
            parts.emplace_back();
            parts.back().push_back(std::move(file));
        }
    }
    return parts;
}

bool ContentClasses::sortMany(const Heads &heads)
{
    KeptHeads kept(static_cast<int>(paths.size()));
    Part files;
    if (!keepHeads(heads, &kept, &files)) {
        return false;
    }
    const auto rank = [this](int index) {
        return std::make_pair(lengthOf(index), hashes[toSize(index)]);
    };
    return sortInSteps(&files, rank, goOn)
        && forEachRun(
               files,
               [&](int a, int b) { return rank(a) == rank(b); },
               [&](const Part &part) { return sortByHeads(part, kept); });
}

// Leaves out what cannot be read, or is like no other file anyway.
bool ContentClasses::keepHeads(const Heads &heads, KeptHeads *kept, Part *files)
{
    hashes.resize(sorted.size());
    for (int index = 0; index < paths.size(); ++index) {
        FileHead head;
        if (!heads(&head)) {
            return false;
        }
        if (!note(index, head)) {
            continue;
        }
        const qint64 bytes = std::min(lengthOf(index), headBytes);
        hashes[toSize(index)] = ContentHash::of(head.bytes.constData(), bytes);
        if (kept->areKept(bytes)) {
            kept->keep(index, head.bytes.constData(), bytes);
        }
        files->push_back(index);
    }
    return true;
}

// The hashes of their heads agree.
bool ContentClasses::sortByHeads(const Part &part, const KeptHeads &kept)
{
    if (part.size() < 2) {
        return true;
    }
    if (!goOn()) {
        return false;
    }
    const qint64 bytes = std::min(lengthOf(part.front()), headBytes);
    if (!kept.areKept(bytes)) {
        return refine(part, bytes);
    }
    // Hashes may coincide; what does not equal the first is compared anew.
    Part equal;
    Part others;
    for (const int index : part) {
        (kept.areEqual(part.front(), index, bytes) ? equal : others).push_back(index);
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
    if (part.size() <= toSize(maxOpenFiles)) {
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
    return sortInSteps(&files, hashOf, goOn)
        && forEachRun(
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
            fail(index, file.errorString());
        }
        if (done != wanted || !visit(block, wanted)) {
            return true;
        }
        if (!goOn()) {
            return false;
        }
        rest -= wanted;
    }
    *isRead = hasEnded(index, from + bytes, &file);
    return true;
}
