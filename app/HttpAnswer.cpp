// SPDX-License-Identifier: MIT
#include "app/HttpAnswer.h"

#include <QList>

namespace
{
constexpr int firstFinalStatus = 200;

bool hasNoBody(int status)
{
    return status == 204 || status == 304;
}
} // namespace

HttpAnswer::State HttpAnswer::take(const QByteArray &bytes)
{
    waiting += bytes;
    bool goesOn = true;
    while (goesOn && state() == State::Incomplete) {
        goesOn = part == Part::PlainBody || part == Part::Chunk ? readContent() : readLine();
    }
    if (state() != State::Incomplete) {
        waiting.clear();
    } else if (headBytes + waiting.size() > maxHeadBytes) {
        refuse();
    }
    return state();
}

HttpAnswer::State HttpAnswer::end()
{
    if (part == Part::PlainBody && missingBytes < 0) {
        part = Part::Complete;
    }
    return state();
}

HttpAnswer::State HttpAnswer::state() const
{
    if (part == Part::Complete) {
        return State::Complete;
    }
    return part == Part::Refused ? State::Refused : State::Incomplete;
}

bool HttpAnswer::readLine()
{
    const int lineFeed = static_cast<int>(waiting.indexOf('\n'));
    if (lineFeed < 0) {
        return false;
    }
    headBytes += lineFeed + 1;
    QByteArray line = waiting.left(lineFeed);
    waiting.remove(0, lineFeed + 1);
    if (line.endsWith('\r')) {
        line.chop(1);
    }
    if (part == Part::StatusLine) {
        readStatusLine(line);
    } else if (part == Part::Header) {
        line.isEmpty() ? endHeader() : readField(line);
    } else if (part == Part::ChunkSize) {
        readChunkSize(line);
    } else if (part == Part::ChunkEnd) {
        line.isEmpty() ? void(part = Part::ChunkSize) : refuse();
    } else if (line.isEmpty()) {
        part = Part::Complete;
    }
    return true;
}

bool HttpAnswer::readContent()
{
    const qint64 bytes =
        missingBytes < 0 ? waiting.size() : qMin<qint64>(missingBytes, waiting.size());
    if (content.size() + bytes > maxBodyBytes) {
        refuse();
        return false;
    }
    content += waiting.left(static_cast<int>(bytes));
    waiting.remove(0, static_cast<int>(bytes));
    missingBytes -= missingBytes < 0 ? 0 : bytes;
    if (missingBytes == 0) {
        part = part == Part::Chunk ? Part::ChunkEnd : Part::Complete;
        return true;
    }
    return false;
}

void HttpAnswer::readStatusLine(const QByteArray &line)
{
    bool isNumber = false;
    statusCode = line.mid(line.indexOf(' ') + 1, 3).toInt(&isNumber);
    part = Part::Header;
    if (!line.startsWith("HTTP/1.") || !isNumber) {
        refuse();
    }
}

void HttpAnswer::readField(const QByteArray &line)
{
    const auto colon = line.indexOf(':');
    const QByteArray name = line.left(colon).trimmed().toLower();
    const QByteArray value = line.mid(colon + 1).trimmed();
    if (name == "transfer-encoding") {
        isChunked = value.toLower() == "chunked";
        if (!isChunked) {
            refuse();
        }
    } else if (name == "content-length") {
        bool isNumber = false;
        missingBytes = value.toLongLong(&isNumber);
        if (!isNumber || missingBytes < 0) {
            refuse();
        }
    }
}

void HttpAnswer::endHeader()
{
    if (statusCode < firstFinalStatus) {
        part = Part::StatusLine; // An interim answer; the one that counts follows.
    } else if (hasNoBody(statusCode) || (!isChunked && missingBytes == 0)) {
        part = Part::Complete;
    } else {
        part = isChunked ? Part::ChunkSize : Part::PlainBody;
    }
}

void HttpAnswer::readChunkSize(const QByteArray &line)
{
    bool isNumber = false;
    missingBytes = line.split(';').first().trimmed().toInt(&isNumber, 16);
    if (!isNumber || missingBytes < 0) {
        refuse();
    } else {
        part = missingBytes == 0 ? Part::Trailer : Part::Chunk;
    }
}

void HttpAnswer::refuse()
{
    part = Part::Refused;
    waiting.clear();
    content.clear();
}
