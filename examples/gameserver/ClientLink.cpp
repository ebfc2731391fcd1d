#include "ClientLink.h"

#include <common/LobbyProtocol.h>

#include <QHostAddress>

#include <cstdio>

namespace {

// More than the longest list takes, so that only who doesn't read lets it pile up.
constexpr qint64 MAX_UNSENT_BYTES = 4 << 20;
// What may wait in the socket while the link pauses; more waits at the client.
constexpr qint64 MAX_UNREAD_BYTES = 64 << 10;
constexpr int REFUSAL_PAUSE_MS = 500;

} // namespace

CClientLink::CClientLink(QTcpSocket *socket, int halfSentLimit, QObject *parent)
    : QObject(parent)
    , m_pSocket(socket)
    , m_strPeer(QStringLiteral("%1:%2").arg(socket->peerAddress().toString()).arg(socket->peerPort()))
{
    m_pSocket->setParent(this);
    m_pSocket->setReadBufferSize(MAX_UNREAD_BYTES);
    m_refusalPause.setSingleShot(true);
    m_refusalPause.setInterval(REFUSAL_PAUSE_MS);
    connect(&m_refusalPause, &QTimer::timeout, this, &CClientLink::OnRefusalDue);
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

void CClientLink::Accept(const AccountProtocol::SAccount &account)
{
    SetUser(account.strNickname);
    Send(AccountProtocol::ToPacket(AccountProtocol::EncodeAccepted(account)));
}

void CClientLink::Refuse(const AccountProtocol::SRefusal &refusal)
{
    SetUser(QString());
    m_refusal = AccountProtocol::ToPacket(AccountProtocol::EncodeRefused(refusal));
    m_refusalPause.start();
}

void CClientLink::SetUser(const QString &nickname)
{
    m_strNickname = nickname;
    ++m_iLogins;
}

void CClientLink::OnRefusalDue()
{
    Send(m_refusal);
    OnReadyRead();
}

void CClientLink::OnReadyRead()
{
    if (m_bEnded || m_refusalPause.isActive())
        return;
    m_stream.Append(m_pSocket->readAll());
    CPacketLayerWrapper packet;
    while (!m_bEnded && !m_refusalPause.isActive() && m_stream.TakePacket(packet)) {
        m_halfSent.stop();
        const QString fault = HandlePacket(packet);
        if (!fault.isEmpty())
            End(QStringLiteral("dropped: ") + fault);
    }
    if (m_stream.IsBroken())
        End(QStringLiteral("dropped: a size that no packet has, or records that don't fill it"));
    else if (!m_bEnded && !m_refusalPause.isActive() && m_stream.HasPartialPacket() && !m_halfSent.isActive())
        m_halfSent.start();
}

// What is wrong with the packet, empty if nothing.
QString CClientLink::HandlePacket(CPacketLayerWrapper &packet)
{
    const bool lobby = packet.GetGroup() == QLatin1String(LobbyProtocol::GROUP);
    if (!lobby && packet.GetGroup() != QLatin1String(AccountProtocol::GROUP))
        return QStringLiteral("an unknown group");
    QString fault;
    for (int i = 0; !m_bEnded && fault.isEmpty() && packet.GetNext(); ++i) {
        const QByteArray payload(packet.GetPayload(), packet.GetPayloadLength());
        // The pause behind a refused login begins with the next packet.
        if (i > 0 && !lobby)
            fault = QStringLiteral("more than one record on the account");
        else
            fault = lobby ? HandleLobbyRecord(payload) : HandleAccountRecord(payload);
    }
    return fault;
}

QString CClientLink::HandleLobbyRecord(const QByteArray &payload)
{
    if (payload == LobbyProtocol::GET_LIST) {
        m_bSubscribed = true;
        Q_EMIT signal_ListRequested();
        return QString();
    }
    if (payload.startsWith(LobbyProtocol::GET_LIST))
        return QStringLiteral("a list request with a body");
    if (!payload.startsWith(LobbyProtocol::SEAT_REQUEST))
        return QStringLiteral("an unknown tag");
    quint32 table = 0;
    if (!LobbyProtocol::DecodeSeatRequest(payload, table))
        return QStringLiteral("a malformed seat request");
    Q_EMIT signal_SeatRequested(table);
    return QString();
}

QString CClientLink::HandleAccountRecord(const QByteArray &payload)
{
    AccountProtocol::SLogin login;
    AccountProtocol::SWebRequest request;
    if (AccountProtocol::DecodeLogin(payload, login))
        Q_EMIT signal_LoginRequested(login);
    else if (payload == AccountProtocol::LOGOUT)
        SetUser(QString());
    else if (AccountProtocol::DecodeWebRequest(payload, request))
        Q_EMIT signal_WebSessionRequested(request);
    else
        return QStringLiteral("an unknown or malformed record on the account");
    return QString();
}

void CClientLink::End(const QString &reason)
{
    if (m_bEnded)
        return;
    m_bEnded = true;
    m_halfSent.stop();
    m_refusalPause.stop();
    Log(reason);
    m_pSocket->abort();
    deleteLater();
    Q_EMIT signal_Ended();
}

void CClientLink::Log(const QString &text) const
{
    std::fprintf(stderr, "client %s: %s\n", qUtf8Printable(m_strPeer), qUtf8Printable(text));
}
