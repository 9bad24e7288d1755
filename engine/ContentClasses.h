// SPDX-License-Identifier: MIT
#pragma once

#include "engine/FileHead.h"
#include "engine/GoOn.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class KeptHeads;

/**
 * Sorts files into classes of equal content.
 *
 * Bytes decide. In a bucket of more files than may be open at once a hash sorts out what cannot be
 * equal; files of one hash are still compared. No two files stand in one class unless all their bytes
 * were read and found equal; one that vanishes, fails or changes while it is looked at is alone.
 *
 * Cost: each byte is read at most twice, each file opened at most 6 times, and once more for every
 * 32 MiB of its length where more than 64 equal files are that long. Time grows as n log n with the
 * files, and with the bytes. Holds at most 105 MiB of contents and 64 open files. On one thread.
 */
class ContentClasses final
{
public:
    struct File {
        /** The first file of the same content, as an index into the list; its own if none is before. */
        int first = -1;
        qint64 size = 0; // bytes, when the content was read
        qint64 modified = 0; // nanoseconds since 1970 (UTC), when the content was read
        qint64 changed = 0; // see RegularFile; likewise
        bool isReadable = false;
        QString error; // why it cannot be read
    };

    /** Gives the heads of the files, in their order, each once; false ends the work. */
    using Heads = std::function<bool(FileHead *head)>;

    /** So many files or fewer are read side by side, from open heads. */
    static constexpr int maxOpenFiles = 64;

    /**
     * Files of other sizes are never equal; with a limit only the first bytes count, that many, and
     * shorter files are alone.
     */
    explicit ContentClasses(QStringList filePaths, GoOn mayGoOn, qint64 maxBytes = -1);
    ~ContentClasses();

    ContentClasses(const ContentClasses &) = delete;
    ContentClasses &operator=(const ContentClasses &) = delete;

    /** Reads the files. False when it was ended before. */
    bool sort();
    /** The same with heads that somebody else reads. */
    bool sort(const Heads &heads);
    /** One for each path, in their order. */
    const std::vector<File> &files() const { return sorted; }

private:
    struct OpenFile {
        int index;
        FileHead head;
        qint64 block = 0; // its number among those just read
    };
    using OpenFiles = std::vector<OpenFile>;
    using Part = std::vector<int>; // indexes, ascending

    File &at(int index) { return sorted[static_cast<std::size_t>(index)]; }
    qint64 lengthOf(int index) const;
    bool note(int index, const FileHead &head);
    bool openAgain(int index, RegularFile *file);
    void fail(int index, const QString &error);
    void join(const Part &part);
    char *blocksFor(std::size_t bytes);
    bool hasEnded(int index, qint64 place, RegularFile *file);

    bool sortFew(const Heads &heads);
    bool sortFew(const Part &part);
    bool sortOpen(OpenFiles files);
    bool compareOpen(OpenFiles part, qint64 done);
    bool readBlock(OpenFiles *part, qint64 bytes);
    template<typename AreEqual>
    static std::vector<OpenFiles> split(OpenFiles part, const AreEqual &areEqual);

    bool sortMany(const Heads &heads);
    bool keepHeads(const Heads &heads, KeptHeads *kept, Part *files);
    bool sortByHeads(const Part &part, const KeptHeads &kept);
    bool refine(const Part &part, qint64 done);
    bool refineByHash(const Part &part, qint64 from, qint64 to);
    bool hashBytes(int index, qint64 from, qint64 to, bool *isRead);
    bool compareByWindow(Part part);
    bool fillWindow(int index, qint64 from, qint64 bytes, bool *isRead);
    bool holdAgainstWindow(Part *part, Part *others, qint64 from);
    template<typename Visit>
    bool readBytes(int index, qint64 from, qint64 bytes, bool *isRead, const Visit &visit);

    QStringList paths;
    GoOn goOn;
    qint64 limit;
    std::vector<File> sorted;
    std::vector<quint64> hashes;
    std::unique_ptr<char[]> blocks;
    std::size_t capacityOfBlocks = 0;
    std::vector<char> window;
};
