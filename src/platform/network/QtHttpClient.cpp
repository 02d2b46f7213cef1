#include "platform/network/QtHttpClient.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QTimer>

#include <memory>

namespace scrivlet {

QtHttpClient::QtHttpClient(QObject *parent) : QObject(parent), m_network(new QNetworkAccessManager(this)) {}

QtHttpClient::~QtHttpClient()
{
    // Replies still under way die with the manager; their completions must not run
    // against callers that are being torn down too.
    const auto replies = m_network->findChildren<QNetworkReply *>();
    for (QNetworkReply *reply : replies)
        reply->disconnect(this);
}

void QtHttpClient::send(const Request &request, Completion done)
{
    QNetworkRequest networkRequest(request.url);
    for (const auto &[name, value] : request.headers)
        networkRequest.setRawHeader(name, value);
    networkRequest.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);

    QNetworkReply *reply = m_network->sendCustomRequest(networkRequest, request.method, request.body);

    auto timedOut = std::make_shared<bool>(false);
    auto *timer = new QTimer(reply);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, reply, [reply, timedOut] {
        *timedOut = true;
        reply->abort();
    });
    timer->start(request.timeout);

    const auto timeout = request.timeout;
    connect(reply, &QNetworkReply::finished, this, [reply, timedOut, timeout, done = std::move(done)] {
        reply->deleteLater();
        Reply result;
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        if (*timedOut) {
            result.error = QStringLiteral("timed out after %1 ms").arg(qint64(timeout.count()));
        } else if (status.isValid()) {
            // The server answered: its status says the rest, whatever Qt makes of it.
            result.status = status.toInt();
            result.body = reply->readAll();
        } else {
            result.error = reply->errorString();
        }
        done(result);
    });
}

} // namespace scrivlet
