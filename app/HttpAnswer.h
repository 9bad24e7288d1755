// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/**
 * Reads the answer to one GET request of HTTP/1.1 from bytes as they come: its status line, its
 * header and its body, plain or chunked. Holds no more than its two bounds allow, whatever comes.
 */
class HttpAnswer final
{
public:
    /** Of all that is no body: the status line, the header, what stands around the chunks. */
    static constexpr int maxHeadBytes = 64 * 1024;
    static constexpr int maxBodyBytes = 64 * 1024;

    enum class State {
        Incomplete,
        /** The body is whole. */
        Complete,
        /** No HTTP, or more than a bound allows; nothing is read any more. */
        Refused
    };

    /** Takes in what came next. What follows an answer that is complete or refused is dropped. */
    State take(const QByteArray &bytes);
    /** The connection has ended, which completes a body of unknown length. */
    State end();

    /** 0 until its line has come. */
    int status() const { return statusCode; }
    /** What has come of it so far; nothing when the answer is refused. */
    const QByteArray &body() const { return content; }

private:
    enum class Part {
        StatusLine,
        Header,
        PlainBody,
        ChunkSize,
        Chunk,
        ChunkEnd,
        Trailer,
        Complete,
        Refused
    };

    State state() const;
    /** Both return false when they need more bytes to go on. */
    bool readLine();
    bool readContent();
    void readStatusLine(const QByteArray &line);
    void readField(const QByteArray &line);
    void endHeader();
    void readChunkSize(const QByteArray &line);
    void refuse();

    Part part = Part::StatusLine;
    QByteArray waiting;
    QByteArray content;
    int headBytes = 0;
    int statusCode = 0;
    bool isChunked = false;
    qint64 missingBytes = -1; // of the body or of the chunk; below zero as many as come
};
