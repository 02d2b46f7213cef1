#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <utility>

namespace scrivlet {

// The calls the product makes to web services (conversion rates, notices, extension
// updates). Every request carries its own time-out, and its reply arrives later on the
// main thread, so no caller ever blocks the note it is typing in.
class HttpClient {
public:
    struct Request {
        QByteArray method = QByteArrayLiteral("GET");
        QUrl url;
        QList<std::pair<QByteArray, QByteArray>> headers;
        QByteArray body;
        // The whole exchange, from connecting to the last byte of the reply.
        std::chrono::milliseconds timeout{std::chrono::seconds(30)};
    };

    struct Reply {
        // The HTTP status; 0 when no reply came at all.
        int status = 0;
        QByteArray body;
        // Why no reply came ("Connection refused", "timed out after 15 s"); empty
        // whenever the server answered, whatever its status.
        QString error;

        bool succeeded() const { return error.isEmpty() && status >= 200 && status < 300; }
        // What went wrong, for logs and messages: the transport's error, or the status.
        QString failureText() const;
    };

    using Completion = std::function<void(const Reply &reply)>;

    virtual ~HttpClient() = default;

    // Starts `request`; `done` runs exactly once, on the main thread, after send has
    // returned. A client destroyed before the reply drops the completion unrun.
    virtual void send(const Request &request, Completion done) = 0;
};

inline QString HttpClient::Reply::failureText() const
{
    if (!error.isEmpty())
        return error;
    if (status == 0)
        return QStringLiteral("no reply");
    return QStringLiteral("HTTP %1").arg(status);
}

} // namespace scrivlet
