#include "support/LocalHttpServer.h"

#include <QHostAddress>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace scrivlet::test {

namespace {

QByteArray routeKey(const QByteArray &method, const QByteArray &path)
{
    return method.toUpper() + ' ' + path;
}

QByteArray reasonPhrase(int status)
{
    static const QHash<int, QByteArray> phrases = {
        {200, "OK"},
        {201, "Created"},
        {204, "No Content"},
        {207, "Multi-Status"},
        {301, "Moved"},
        {304, "Not Modified"},
        {400, "Bad Request"},
        {401, "Unauthorized"},
        {403, "Forbidden"},
        {404, "Not Found"},
        {405, "Method Not Allowed"},
        {409, "Conflict"},
        {411, "Length Required"},
        {412, "Precondition Failed"},
        {429, "Too Many Requests"},
        {500, "Internal Server Error"},
        {502, "Bad Gateway"},
        {503, "Service Unavailable"},
    };
    return phrases.value(status, QByteArrayLiteral("Status"));
}

} // namespace

LocalHttpServer::Reply LocalHttpServer::Reply::json(QByteArray body, int status)
{
    Reply reply;
    reply.status = status;
    reply.body = std::move(body);
    reply.headers = {{QByteArrayLiteral("Content-Type"), QByteArrayLiteral("application/json")}};
    return reply;
}

LocalHttpServer::Reply LocalHttpServer::Reply::closing()
{
    Reply reply;
    reply.closeWithoutReply = true;
    return reply;
}

LocalHttpServer::LocalHttpServer() : m_server(new QTcpServer(this))
{
    connect(m_server, &QTcpServer::newConnection, this, &LocalHttpServer::accept);
}

LocalHttpServer::~LocalHttpServer()
{
    stop();
}

bool LocalHttpServer::start()
{
    return m_server->listen(QHostAddress::LocalHost, 0);
}

void LocalHttpServer::stop()
{
    m_server->close();
    const auto sockets = m_buffers.keys();
    m_buffers.clear();
    for (QTcpSocket *socket : sockets) {
        socket->disconnect(this);
        socket->abort();
        socket->deleteLater();
    }
}

quint16 LocalHttpServer::port() const
{
    return m_server->serverPort();
}

QUrl LocalHttpServer::url() const
{
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(QStringLiteral("127.0.0.1"));
    url.setPort(port());
    return url;
}

void LocalHttpServer::setReply(const QByteArray &method, const QByteArray &path, Reply reply)
{
    m_standing.insert(routeKey(method, path), std::move(reply));
}

void LocalHttpServer::queueReply(const QByteArray &method, const QByteArray &path, Reply reply)
{
    m_queued[routeKey(method, path)].append(std::move(reply));
}

int LocalHttpServer::requestCount(const QByteArray &path) const
{
    int count = 0;
    for (const Request &request : m_requests)
        count += request.path == path ? 1 : 0;
    return count;
}

void LocalHttpServer::accept()
{
    while (QTcpSocket *socket = m_server->nextPendingConnection()) {
        m_buffers.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readFrom(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_buffers.remove(socket);
            socket->deleteLater();
        });
    }
}

void LocalHttpServer::readFrom(QTcpSocket *socket)
{
    auto buffer = m_buffers.find(socket);
    if (buffer == m_buffers.end())
        return;
    buffer->append(socket->readAll());

    const qsizetype headerEnd = buffer->indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return;
    const QList<QByteArray> lines = buffer->left(headerEnd).split('\n');
    const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
    Request request;
    request.method = requestLine.value(0);
    const QByteArray target = requestLine.value(1);
    const qsizetype question = target.indexOf('?');
    request.path = question < 0 ? target : target.left(question);
    request.query = question < 0 ? QByteArray() : target.mid(question + 1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines.at(i).indexOf(':');
        if (colon > 0)
            request.headers.insert(lines.at(i).left(colon).trimmed().toLower(), lines.at(i).mid(colon + 1).trimmed());
    }
    if (request.headers.value("transfer-encoding").toLower().contains("chunked")) {
        // Bodies of unknown length are not something the tests' clients send.
        Reply refusal;
        refusal.status = 411;
        m_buffers.remove(socket);
        m_requests.append(request);
        answer(socket, refusal);
        return;
    }
    const qsizetype length = request.headers.value("content-length", "0").toLongLong();
    if (buffer->size() < headerEnd + 4 + length)
        return;
    request.body = buffer->mid(headerEnd + 4, length);
    m_buffers.remove(socket);
    m_requests.append(request);
    answer(socket, replyFor(request));
}

LocalHttpServer::Reply LocalHttpServer::replyFor(const Request &request)
{
    const QByteArray key = routeKey(request.method, request.path);
    if (auto queued = m_queued.find(key); queued != m_queued.end() && !queued->isEmpty())
        return queued->takeFirst();
    if (auto standing = m_standing.constFind(key); standing != m_standing.constEnd())
        return *standing;
    Reply notFound;
    notFound.status = 404;
    notFound.body = QByteArrayLiteral("no reply scripted for ") + key;
    return notFound;
}

void LocalHttpServer::answer(QTcpSocket *socket, const Reply &reply)
{
    const QPointer<QTcpSocket> target = socket;
    auto send = [target, reply] {
        if (!target || target->state() != QAbstractSocket::ConnectedState)
            return;
        if (reply.closeWithoutReply) {
            target->abort();
            return;
        }
        QByteArray out = "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + reasonPhrase(reply.status) + "\r\n";
        for (const auto &[name, value] : reply.headers)
            out += name + ": " + value + "\r\n";
        out += "Content-Length: " + QByteArray::number(reply.body.size()) + "\r\nConnection: close\r\n\r\n";
        out += reply.body;
        target->write(out);
        target->disconnectFromHost();
    };
    if (reply.delay.count() > 0)
        QTimer::singleShot(reply.delay, socket, send);
    else
        send();
}

} // namespace scrivlet::test
