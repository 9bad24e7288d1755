// SPDX-License-Identifier: MIT
#include "tests/support/HttpServer.h"

#include <QTcpSocket>

HttpServer::HttpServer(QObject *parent)
    : QObject(parent)
{
    if (!server.listen(QHostAddress::LocalHost)) {
        qFatal("HttpServer: cannot listen on the loopback address");
    }
    connect(&server, &QTcpServer::newConnection, this, &HttpServer::accept);
}

QUrl HttpServer::url(const QString &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(server.serverPort()).arg(path));
}

void HttpServer::setAnswer(const QByteArray &head, const QByteArray &body)
{
    setCutAnswer(head, body, 0);
}

void HttpServer::setCutAnswer(const QByteArray &head, const QByteArray &body, int missingBytes)
{
    silent = false;
    answer = head + "\r\nContent-Length: " + QByteArray::number(body.size() + missingBytes)
        + "\r\nConnection: close\r\n\r\n" + body;
}

void HttpServer::setSilent()
{
    silent = true;
}

void HttpServer::close()
{
    server.close();
}

void HttpServer::accept()
{
    while (QTcpSocket *const socket = server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::bytesWritten, this, [this](qint64 bytes) { sent += bytes; });
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            const QByteArray request = socket->readAll();
            received.append(request.left(request.indexOf('\r')));
            if (!silent) {
                socket->write(answer);
                socket->disconnectFromHost();
            }
        });
    }
}
