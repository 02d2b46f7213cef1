#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <utility>

class QTcpServer;
class QTcpSocket;

namespace scrivlet::test {

// A real HTTP/1.1 server on 127.0.0.1 for tests of network calls: it listens on a port
// the system picks, answers each request with a scripted reply, and records what it was
// sent. Every connection is closed after one reply. It lives on the test's thread, so a
// test drives it by running the event loop (QTest::qWaitFor).
class LocalHttpServer final : public QObject {
public:
    struct Reply {
        int status = 200;
        QByteArray body;
        QList<std::pair<QByteArray, QByteArray>> headers;
        // How long the server waits before it answers.
        std::chrono::milliseconds delay{0};
        // Drop the connection instead of answering, after `delay`.
        bool closeWithoutReply = false;

        static Reply json(QByteArray body, int status = 200);
        static Reply closing();
    };

    struct Request {
        QByteArray method;
        QByteArray path; // without the query
        QByteArray query;
        QHash<QByteArray, QByteArray> headers; // names in lower case
        QByteArray body;
    };

    LocalHttpServer();
    ~LocalHttpServer() override;

    // Starts listening on 127.0.0.1; false if no port could be had.
    bool start();
    void stop();
    quint16 port() const;
    // "http://127.0.0.1:PORT", to which a path is appended.
    QUrl url() const;

    // The reply that every request for `method` and `path` gets from now on. Requests
    // nothing is scripted for get 404.
    void setReply(const QByteArray &method, const QByteArray &path, Reply reply);
    // A reply for the next such request only; queued replies go before the standing one.
    void queueReply(const QByteArray &method, const QByteArray &path, Reply reply);

    const QList<Request> &requests() const { return m_requests; }
    int requestCount(const QByteArray &path) const;

private:
    void accept();
    void readFrom(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const Reply &reply);
    Reply replyFor(const Request &request);

    QTcpServer *m_server;
    QHash<QTcpSocket *, QByteArray> m_buffers;
    QHash<QByteArray, Reply> m_standing;
    QHash<QByteArray, QList<Reply>> m_queued;
    QList<Request> m_requests;
};

} // namespace scrivlet::test
