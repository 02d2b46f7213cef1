#include "support/VirtualDisplay.h"

#include <QDeadlineTimer>
#include <QStandardPaths>

namespace scrivlet {

VirtualDisplay::~VirtualDisplay()
{
    stop();
}

bool VirtualDisplay::start(const QString &screen)
{
    if (running())
        return true;
    const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
    if (xvfb.isEmpty()) {
        m_error = QStringLiteral("Xvfb is not installed");
        return false;
    }
    // Xvfb picks a free display itself and writes its number on the descriptor given.
    m_server.start(xvfb, {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                          QStringLiteral("0"), screen, QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                          QStringLiteral("-noreset")});
    if (!m_server.waitForStarted(5000)) {
        m_error = QStringLiteral("Xvfb did not start: ") + m_server.errorString();
        return false;
    }
    QByteArray number;
    const QDeadlineTimer deadline(10000);
    while (!number.contains('\n') && !deadline.hasExpired() && running()) {
        m_server.waitForReadyRead(100);
        number += m_server.readAllStandardOutput();
    }
    if (!number.contains('\n')) {
        m_error = QStringLiteral("Xvfb gave no display number: ") +
                  QString::fromLocal8Bit(m_server.readAllStandardError());
        stop();
        return false;
    }
    m_display = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    return true;
}

void VirtualDisplay::stop()
{
    if (m_server.state() == QProcess::NotRunning)
        return;
    m_server.terminate();
    if (!m_server.waitForFinished(5000)) {
        m_server.kill();
        m_server.waitForFinished(3000);
    }
}

} // namespace scrivlet
