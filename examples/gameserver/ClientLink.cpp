#include "ClientLink.h"

#include <common/LobbyProtocol.h>

#include <QHostAddress>

#include <cstdio>

namespace {

// More than the longest list takes, so that only who doesn't read lets it pile up.
constexpr qint64 MAX_UNSENT_BYTES = 4 << 20;

} // namespace

CClientLink::CClientLink(QTcpSocket *socket, int halfSentLimit, QObject *parent)
    : QObject(parent)
    , m_pSocket(socket)
    , m_strPeer(QStringLiteral("%1:%2").arg(socket->peerAddress().toString()).arg(socket->peerPort()))
{
    m_pSocket->setParent(this);
    m_halfSent.setSingleShot(true);
    m_halfSent.setInterval(halfSentLimit);
    connect(&m_halfSent, &QTimer::timeout, this, [this] { End(QStringLiteral("dropped: left a packet half-sent")); });
    connect(m_pSocket, &QTcpSocket::readyRead, this, &CClientLink::OnReadyRead);
    connect(m_pSocket, &QTcpSocket::disconnected, this, [this] { End(m_pSocket->errorString()); });
    Log(QStringLiteral("connected"));
}

void CClientLink::Send(const QByteArray &packets)
{
    if (m_bEnded)
        return;
    m_pSocket->write(packets);
    if (m_pSocket->bytesToWrite() > MAX_UNSENT_BYTES)
        End(QStringLiteral("dropped: doesn't read what is sent to it"));
}

void CClientLink::OnReadyRead()
{
    m_stream.Append(m_pSocket->readAll());
    CPacketLayerWrapper packet;
    while (!m_bEnded && m_stream.TakePacket(packet)) {
        m_halfSent.stop();
        const QString fault = HandlePacket(packet);
        if (!fault.isEmpty())
            End(QStringLiteral("dropped: ") + fault);
    }
    if (m_stream.IsBroken())
        End(QStringLiteral("dropped: a size that no packet has, or records that don't fill it"));
    else if (!m_bEnded && m_stream.HasPartialPacket() && !m_halfSent.isActive())
        m_halfSent.start();
}

// What is wrong with the packet, empty if nothing.
QString CClientLink::HandlePacket(CPacketLayerWrapper &packet)
{
    if (packet.GetGroup() != QLatin1String(LobbyProtocol::GROUP))
        return QStringLiteral("an unknown group");
    while (!m_bEnded && packet.GetNext()) {
        const QByteArray payload(packet.GetPayload(), packet.GetPayloadLength());
        if (!payload.startsWith(LobbyProtocol::GET_LIST))
            return QStringLiteral("an unknown tag");
        if (payload != LobbyProtocol::GET_LIST)
            return QStringLiteral("a list request with a body");
        m_bSubscribed = true;
        Q_EMIT signal_ListRequested();
    }
    return QString();
}

void CClientLink::End(const QString &reason)
{
    if (m_bEnded)
        return;
    m_bEnded = true;
    m_halfSent.stop();
    Log(reason);
    m_pSocket->abort();
    deleteLater();
    Q_EMIT signal_Ended();
}

void CClientLink::Log(const QString &text) const
{
    std::fprintf(stderr, "client %s: %s\n", qUtf8Printable(m_strPeer), qUtf8Printable(text));
}
