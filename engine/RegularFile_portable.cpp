// SPDX-License-Identifier: MIT
#include "engine/RegularFile.h"
#include "engine/ScanProgress.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

struct RegularFile::Handle {
    QFile file;
    qint64 bytes = 0;
    QString error;
};

RegularFile::RegularFile()
    : handle(std::make_unique<Handle>())
{
}

RegularFile::RegularFile(RegularFile &&other) noexcept = default;

RegularFile &RegularFile::operator=(RegularFile &&other) noexcept = default;

RegularFile::~RegularFile() = default;

bool RegularFile::open(const QString &path)
{
    const QFileInfo info(path);
    handle->file.close();
    // What exists and is no file is not even opened: a FIFO would wait for its writer.
    if (info.exists() && !info.isFile()) {
        handle->error = info.isDir() ? QStringLiteral("file to open is a directory")
                                     : QStringLiteral("not a regular file");
        return false;
    }
    handle->file.setFileName(path);
    if (!handle->file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        handle->error = handle->file.errorString();
        return false;
    }
    handle->bytes = handle->file.size();
    return true;
}

qint64 RegularFile::size() const
{
    return handle->bytes;
}

qint64 RegularFile::modified() const
{
    return QFileInfo(handle->file).lastModified().toMSecsSinceEpoch() * 1000000;
}

qint64 RegularFile::changed() const
{
    return 0;
}

qint64 RegularFile::read(char *data, qint64 maxBytes)
{
    return read(data, maxBytes, maxBytes);
}

qint64 RegularFile::read(char *data, qint64 enoughBytes, qint64 maxBytes)
{
    qint64 done = 0;
    while (done < enoughBytes) {
        const qint64 bytes = handle->file.read(data + done, maxBytes - done);
        if (bytes < 0) {
            handle->error = handle->file.errorString();
            return -1;
        }
        if (bytes == 0) {
            break;
        }
        done += bytes;
    }
    ScanProgress::instance()->bytesRead += done;
    return done;
}

bool RegularFile::isAtEnd()
{
    char byte = 0;
    return read(&byte, 1) <= 0;
}

bool RegularFile::skip(qint64 toOffset)
{
    if (handle->file.seek(toOffset)) {
        return true;
    }
    handle->error = handle->file.errorString();
    return false;
}

QString RegularFile::errorString() const
{
    return handle->error;
}

qint64 RegularFile::sizeOf(const QString &path)
{
    return QFileInfo(path).size();
}
