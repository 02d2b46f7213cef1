#pragma once

#include "platform/HttpClient.h"

#include <QObject>

class QNetworkAccessManager;

namespace scrivlet {

// Requests over QtNetwork. Replies come back on the thread that owns the client, the
// main thread in the app; the time-out covers the whole exchange, not just silence.
class QtHttpClient final : public QObject, public HttpClient {
public:
    explicit QtHttpClient(QObject *parent = nullptr);
    ~QtHttpClient() override;

    void send(const Request &request, Completion done) override;

private:
    QNetworkAccessManager *m_network;
};

} // namespace scrivlet
