// SPDX-License-Identifier: MIT
#pragma once

#include <QNetworkAccessManager>

/**
 * The toolkit's manager with a reply of our own for GET of "http" and "https". The toolkit keeps
 * as much of a status line and a header as a server likes to send; this one holds at most
 * 256 KiB of an answer, and an answer of more than 64 KiB of head or of body has no body.
 *
 * The reply asks for a plain answer over a connection of its own, follows no redirection, knows no
 * passwords, cookies or cache, and checks certificates as the toolkit does. All other requests, and
 * those through a proxy, which nobody sets in this program, are the toolkit's; redirections are
 * followed by none.
 */
class BoundedNetworkManager final : public QNetworkAccessManager
{
    Q_OBJECT
    Q_DISABLE_COPY(BoundedNetworkManager)

public:
    explicit BoundedNetworkManager(QObject *parent);

protected:
    QNetworkReply *createRequest(Operation operation,
                                 const QNetworkRequest &request,
                                 QIODevice *outgoingData) override;
};
