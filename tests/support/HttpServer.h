// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

/** A web server on the loopback address that gives every request the answer it was told last. */
class HttpServer final : public QObject
{
    Q_OBJECT

public:
    explicit HttpServer(QObject *parent = nullptr);

    QUrl url(const QString &path) const;
    /** The head is everything before the empty line, e.g. "HTTP/1.1 200 OK". */
    void setAnswer(const QByteArray &head, const QByteArray &body);
    /** As setAnswer(), but the connection ends when that many bytes of the body are missing. */
    void setCutAnswer(const QByteArray &head, const QByteArray &body, int missingBytes);
    /** Accepts requests and never answers them. */
    void setSilent();
    /** The first line of each request, in the order in which they came. */
    QList<QByteArray> requests() const { return received; }
    /** Bytes handed to the system for sending, over all answers. */
    qint64 sentBytes() const { return sent; }
    void close();

private:
    void accept();

    QTcpServer server;
    QByteArray answer;
    QList<QByteArray> received;
    qint64 sent = 0;
    bool silent = false;
};
