// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QFile>

#include <atomic>

/**
 * A regular file that is read for a bounded time: past it every read fails, whether a disk is slow
 * or whoever reads finds no end.
 *
 * Anything else than a regular file is refused without being opened.
 */
class TimedFile final : public QFile
{
    Q_OBJECT
    Q_DISABLE_COPY(TimedFile)

public:
    /** Where given, the flag ends the time as soon as it is set, by any thread. */
    explicit TimedFile(qint64 milliseconds, const std::atomic<bool> *isEnded = nullptr);

    /** For reading. The time runs from here. */
    bool openFile(const QString &path);
    /** True once a read has failed because the time was over. */
    bool isLate() const { return late; }

protected:
    qint64 readData(char *data, qint64 maxBytes) override;

private:
    qint64 maxMilliseconds;
    const std::atomic<bool> *isTimeEnded;
    QElapsedTimer timer;
    bool late = false;
};
