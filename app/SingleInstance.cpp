#include "SingleInstance.h"

#include "notes/CoreDataStack.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QThread>

#include <algorithm>
#include <unistd.h>

namespace scrivlet {

namespace {

Q_LOGGING_CATEGORY(lcInstance, "scrivlet.instance")

const QByteArray kShowRequest = QByteArrayLiteral("show\n");
const QByteArray kShownAnswer = QByteArrayLiteral("shown\n");
constexpr int kAnswerTimeoutMs = 1000;

QString canonicalFolder(const QString &dataDirectory)
{
    const QFileInfo info(dataDirectory);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? info.absoluteFilePath() : canonical;
}

} // namespace

SingleInstance::SingleInstance(const QString &dataDirectory)
    : m_directory(dataDirectory), m_lock((QDir().mkpath(dataDirectory), lockFilePath(dataDirectory)))
{
    // Age alone never makes the lock stale: a running instance may hold it for weeks.
    // A lock whose process is gone is stale at once.
    m_lock.setStaleLockTime(0);
}

SingleInstance::~SingleInstance()
{
    stopListening();
}

QString SingleInstance::serverName(const QString &dataDirectory)
{
    const QByteArray key = QByteArray::number(::getuid()) + '\n' + canonicalFolder(dataDirectory).toUtf8();
    return QStringLiteral("scrivlet-")
        + QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex().left(24));
}

QString SingleInstance::lockFilePath(const QString &dataDirectory)
{
    return CoreDataStack::folderLockPath(dataDirectory);
}

SingleInstance::Claim SingleInstance::claim(std::chrono::milliseconds wait)
{
    const QDeadlineTimer deadline(wait);
    while (true) {
        if (m_lock.tryLock(0)) {
            listen();
            return Claim::Primary;
        }
        if (m_lock.error() != QLockFile::LockFailedError) {
            qCWarning(lcInstance).noquote() << "instance - can't lock" << m_lock.fileName();
            return Claim::Busy;
        }
        if (askRunningToShow(deadline))
            return Claim::ShownRunning;
        if (deadline.hasExpired()) {
            qCWarning(lcInstance).noquote() << "instance - another Scrivlet holds" << m_lock.fileName()
                                            << "and doesn't answer";
            return Claim::Busy;
        }
        // The holder may be quitting (it no longer answers) or still starting (it
        // doesn't answer yet): either way it's worth another look shortly.
        if (m_lock.tryLock(100)) {
            listen();
            return Claim::Primary;
        }
        if (m_lock.error() != QLockFile::LockFailedError) {
            qCWarning(lcInstance).noquote() << "instance - can't lock" << m_lock.fileName();
            return Claim::Busy;
        }
    }
}

bool SingleInstance::askRunningToShow(const QDeadlineTimer &claimDeadline)
{
    QLocalSocket socket;
    socket.connectToServer(serverName(m_directory));
    if (!socket.waitForConnected(kAnswerTimeoutMs))
        return false;
    socket.write(kShowRequest);
    if (!socket.waitForBytesWritten(kAnswerTimeoutMs))
        return false;
    // An instance that took the request is alive, maybe still loading its notes: its
    // answer is worth the whole wait.
    QByteArray answer;
    const QDeadlineTimer deadline(std::max<qint64>(kAnswerTimeoutMs, claimDeadline.remainingTime()));
    while (!answer.endsWith('\n') && socket.waitForReadyRead(int(deadline.remainingTime())))
        answer += socket.readAll();
    return answer == kShownAnswer;
}

void SingleInstance::listen()
{
    const QString name = serverName(m_directory);
    // The lock is ours, so a socket left under this name belongs to a crashed instance.
    QLocalServer::removeServer(name);
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(name)) {
        // Later starts then wait for the lock and report the folder busy; this
        // instance runs on regardless.
        qCWarning(lcInstance).noquote() << "instance - can't listen for later starts:" << m_server->errorString();
        m_server.reset();
        return;
    }
    QObject::connect(m_server.get(), &QLocalServer::newConnection, m_server.get(), [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection()) {
            QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
                if (!socket->canReadLine())
                    return;
                if (socket->readLine() != kShowRequest) {
                    socket->disconnectFromServer();
                    return;
                }
                qCInfo(lcInstance) << "instance - a second start asked for the window";
                if (m_show)
                    m_show();
                socket->write(kShownAnswer);
                socket->flush();
                socket->disconnectFromServer();
            });
        }
    });
}

void SingleInstance::stopListening()
{
    if (!m_server)
        return;
    m_server->close();
    m_server.reset();
}

} // namespace scrivlet
