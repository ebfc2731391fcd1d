#include "TourServers.h"

#include <QTcpSocket>

namespace {

constexpr int START_LIMIT_MS = 10000;

} // namespace

CGameServerProcess::~CGameServerProcess()
{
    Kill();
}

QString CGameServerProcess::Start(const QString &program, const QString &tables, const QString &accounts,
                                  quint16 port)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(program, {QStringLiteral("--data"), tables, QStringLiteral("--accounts"), accounts,
                              QStringLiteral("--port"), QString::number(port)});
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(START_LIMIT_MS))
            return QString();
    }
    return QString::fromUtf8(m_process.readLine()).trimmed();
}

void CGameServerProcess::Kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

CBadServer::CBadServer(quint16 port, const QByteArray &bytes, bool hangUp)
{
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this, bytes, hangUp] {
        ++m_iLinks;
        QTcpSocket *socket = m_server.nextPendingConnection();
        socket->write(bytes);
        socket->flush();
        if (hangUp)
            socket->disconnectFromHost();
    });
    m_server.listen(QHostAddress::LocalHost, port);
}
