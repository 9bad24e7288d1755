// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>

/**
 * A regular file, open for reading from its start to its end without a buffer of its own. One that was moved from can
 * only be destroyed or assigned to.
 *
 * Anything else than a regular file (a FIFO, a device, a folder) is refused without waiting for it.
 * A failed read is told apart from the end. Closed when it goes out of scope.
 */
class RegularFile final
{
public:
    RegularFile();
    RegularFile(RegularFile &&other) noexcept;
    RegularFile &operator=(RegularFile &&other) noexcept;
    ~RegularFile();

    RegularFile(const RegularFile &) = delete;
    RegularFile &operator=(const RegularFile &) = delete;

    bool open(const QString &path);
    /** Bytes that the file had when it was opened. */
    qint64 size() const;
    /** When it was modified last, as of its opening: nanoseconds since 1970 (UTC). */
    qint64 modified() const;
    /**
     * When anything of it was changed last, which nobody can set: likewise. Negative where that was
     * so short a time before its opening that a later change might not be told from it; 0 where the
     * system does not know.
     */
    qint64 changed() const;
    /** Bytes read, fewer than asked for only at the end; -1 when reading failed. */
    qint64 read(char *data, qint64 maxBytes);
    /** The same, and asks for no more once it has enough: one call reads all of a short file. */
    qint64 read(char *data, qint64 enoughBytes, qint64 maxBytes);
    /** Whether there is nothing left to read; reads the next byte. Also when that fails. */
    bool isAtEnd();
    /** Goes on at another place, that many bytes from the start. */
    bool skip(qint64 toOffset);
    /** Why open(), skip() or read() failed, as the system words it. */
    QString errorString() const;

    /** Bytes of the file or of the target of a link, without opening it; 0 where there is none. */
    static qint64 sizeOf(const QString &path);

private:
    struct Handle;

    std::unique_ptr<Handle> handle;
};
