// SPDX-License-Identifier: MIT
#include "app/BoundedNetworkManager.h"

#include "app/HttpAnswer.h"

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QSslSocket>

#include <algorithm>

namespace
{
constexpr qint64 maxSocketBytes = qint64(16) * 1024;
constexpr int httpPort = 80;
constexpr int httpsPort = 443;

bool isEncrypted(const QUrl &url)
{
    return url.scheme() == QLatin1String("https");
}

bool needsProxy(const QUrl &url)
{
    const QList<QNetworkProxy> proxies =
        QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(url));
    return !proxies.isEmpty() && proxies.first().type() != QNetworkProxy::NoProxy;
}

QByteArray requestFor(const QUrl &url)
{
    QByteArray target = url.path(QUrl::FullyEncoded).toLatin1();
    if (target.isEmpty()) {
        target = "/";
    }
    if (url.hasQuery()) {
        target += '?' + url.query(QUrl::FullyEncoded).toLatin1();
    }
    const QByteArray host =
        url.adjusted(QUrl::RemoveUserInfo).authority(QUrl::FullyEncoded).toLatin1();
    return "GET " + target + " HTTP/1.1\r\nHost: " + host
        + "\r\nConnection: close\r\nUser-Agent: Mozilla/5.0\r\n\r\n";
}

/** Belongs to the manager and lives on its thread. */
class BoundedReply final : public QNetworkReply
{
    Q_OBJECT
    Q_DISABLE_COPY(BoundedReply)

public:
    BoundedReply(const QNetworkRequest &networkRequest, QObject *parent);

    void abort() override;
    qint64 bytesAvailable() const override;
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 maxBytes) override;

private:
    void connectToServer();
    void askForAnswer();
    void readSocket();
    void onDisconnected();
    void fail(NetworkError code, const QString &text);
    void finish();

    QSslSocket *socket;
    HttpAnswer answer;
    int takenBytes = 0;
};

BoundedReply::BoundedReply(const QNetworkRequest &networkRequest, QObject *parent)
    : QNetworkReply(parent)
    , socket(new QSslSocket(this))
{
    setRequest(networkRequest);
    setUrl(networkRequest.url());
    setOperation(QNetworkAccessManager::GetOperation);
    QIODevice::open(QIODevice::ReadOnly);
    socket->setReadBufferSize(maxSocketBytes);
    socket->setProxy(QNetworkProxy::NoProxy);
    connect(socket,
            isEncrypted(url()) ? &QSslSocket::encrypted : &QSslSocket::connected,
            this,
            &BoundedReply::askForAnswer);
    connect(socket, &QSslSocket::readyRead, this, &BoundedReply::readSocket);
    connect(socket, &QSslSocket::disconnected, this, &BoundedReply::onDisconnected);
    connect(socket, &QSslSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
        if (error != QAbstractSocket::RemoteHostClosedError) {
            fail(UnknownNetworkError, socket->errorString());
        }
    });
    // Later: what fails at once would be told before anybody listens.
    QMetaObject::invokeMethod(this, &BoundedReply::connectToServer, Qt::QueuedConnection);
}

void BoundedReply::connectToServer()
{
    if (isFinished()) {
        return;
    }
    if (isEncrypted(url())) {
        socket->connectToHostEncrypted(url().host(), static_cast<quint16>(url().port(httpsPort)));
    } else {
        socket->connectToHost(url().host(), static_cast<quint16>(url().port(httpPort)));
    }
}

void BoundedReply::askForAnswer()
{
    socket->write(requestFor(url()));
}

void BoundedReply::readSocket()
{
    while (!isFinished() && socket->bytesAvailable() > 0) {
        const HttpAnswer::State state = answer.take(socket->read(maxSocketBytes));
        if (state == HttpAnswer::State::Refused) {
            fail(ProtocolFailure, QStringLiteral("The answer is too large, or no answer"));
        } else if (state == HttpAnswer::State::Complete) {
            finish();
        }
    }
    if (!isFinished() && bytesAvailable() > 0) {
        emit readyRead();
    }
}

void BoundedReply::onDisconnected()
{
    if (isFinished()) {
        return;
    }
    if (answer.end() == HttpAnswer::State::Complete) {
        finish();
    } else {
        fail(RemoteHostClosedError, socket->errorString());
    }
}

void BoundedReply::abort()
{
    fail(OperationCanceledError, QStringLiteral("Operation canceled"));
}

qint64 BoundedReply::bytesAvailable() const
{
    return QNetworkReply::bytesAvailable() + answer.body().size() - takenBytes;
}

qint64 BoundedReply::readData(char *data, qint64 maxBytes)
{
    const auto bytes = static_cast<int>(qMin<qint64>(maxBytes, answer.body().size() - takenBytes));
    std::copy_n(answer.body().constData() + takenBytes, bytes, data);
    takenBytes += bytes;
    return bytes;
}

void BoundedReply::fail(NetworkError code, const QString &text)
{
    if (!isFinished()) {
        setError(code, text);
        emit errorOccurred(code);
        finish();
    }
}

void BoundedReply::finish()
{
    setAttribute(QNetworkRequest::HttpStatusCodeAttribute, answer.status());
    setFinished(true);
    socket->disconnect(this);
    socket->abort();
    emit finished();
}
} // namespace

BoundedNetworkManager::BoundedNetworkManager(QObject *parent)
    : QNetworkAccessManager(parent)
{
    // Qt 6 follows redirections of its own accord, Qt 5 does not.
    setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

QNetworkReply *BoundedNetworkManager::createRequest(Operation operation,
                                                    const QNetworkRequest &request,
                                                    QIODevice *outgoingData)
{
    const QString scheme = request.url().scheme();
    if (operation == GetOperation
        && (scheme == QLatin1String("http") || scheme == QLatin1String("https"))
        && !needsProxy(request.url())) {
        return new BoundedReply(request, this);
    }
    return QNetworkAccessManager::createRequest(operation, request, outgoingData);
}

#include "BoundedNetworkManager.moc"
