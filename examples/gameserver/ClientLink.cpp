#include "ClientLink.h"

#include <protocol/LobbyProtocol.h>

#include <QHostAddress>

#include <algorithm>
#include <cstdio>

namespace {

// Larger than the longest list, so that only a client that doesn't read exceeds it.
constexpr qint64 MAX_UNSENT_BYTES = 4 << 20;
// The socket's buffer while the link pauses; further bytes wait at the client.
constexpr qint64 MAX_UNREAD_BYTES = 64 << 10;
constexpr int REFUSAL_PAUSE_MS = 500;
constexpr int MAX_WEB_REQUESTS = 8; // a client waits for two at most
constexpr int MAX_MACHINES = 8;     // and has one

} // namespace

CClientLink::CClientLink(QSslSocket *socket, int halfSentLimit, QObject *parent)
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
    const bool isToBeEncrypted = m_pSocket->mode() == QSslSocket::SslServerMode;
    connect(&m_halfSent, &QTimer::timeout, this, [this, isToBeEncrypted] {
        Drop(isToBeEncrypted && !IsEncrypted() ? QStringLiteral("didn't finish the handshake")
                                               : QStringLiteral("left a packet half-sent"));
    });
    if (isToBeEncrypted)
        m_halfSent.start();
    connect(m_pSocket, &QSslSocket::encryptedBytesWritten, this, [this] { Reach(EProgress::Handshake); });
    connect(m_pSocket, &QSslSocket::encrypted, this, [this] {
        Reach(EProgress::Encrypted);
        m_halfSent.stop();
    });
    connect(m_pSocket, &QIODevice::readyRead, this, &CClientLink::OnReadyRead);
    connect(m_pSocket, &QAbstractSocket::disconnected, this, [this] { End(m_pSocket->errorString()); });
    Log(QStringLiteral("connected"));
}

void CClientLink::Reach(EProgress progress)
{
    m_eProgress = std::max(m_eProgress, progress);
}

CClientLink::EProgress CClientLink::GetProgress() const
{
    return m_strNickname.isEmpty() && !m_bLoginPends ? m_eProgress : EProgress::User;
}

bool CClientLink::BeginWebRequest(const QString &machine)
{
    const bool isKnown = m_machines.contains(machine);
    if (machine.isEmpty() || m_iWebRequests >= MAX_WEB_REQUESTS || (!isKnown && m_machines.size() >= MAX_MACHINES))
        return false;
    m_machines.insert(machine);
    ++m_iWebRequests;
    return true;
}

void CClientLink::Send(const QByteArray &packets)
{
    if (m_bEnded)
        return;
    m_pSocket->write(packets);
    if (m_pSocket->bytesToWrite() + m_pSocket->encryptedBytesToWrite() > MAX_UNSENT_BYTES)
        Drop(QStringLiteral("doesn't read what is sent to it"));
}

void CClientLink::Accept(const AccountProtocol::SAccount &account, const QString &token, bool isNewToken)
{
    m_bLoginPends = false;
    SetUser(account.strNickname, token);
    QVector<QByteArray> records{Payload::Encode(account)};
    if (isNewToken && !token.isEmpty())
        records.prepend(Payload::Encode(AccountProtocol::SToken{token}));
    Send(Payload::ToPackets(AccountProtocol::GROUP, records));
    QTimer::singleShot(0, this, &CClientLink::OnReadyRead);
}

void CClientLink::Refuse(const AccountProtocol::SRefusal &refusal)
{
    m_bLoginPends = false;
    SetUser(QString());
    m_refusal = Payload::ToPackets(AccountProtocol::GROUP, {Payload::Encode(refusal)});
    m_refusalPause.start();
}

void CClientLink::SetUser(const QString &nickname, const QString &token)
{
    const QList<quint32> tables = m_places.keys();
    for (const quint32 table : tables)
        LeaveTable(table);
    m_strNickname = nickname;
    m_strToken = token;
    m_machines.clear();
    ++m_iLogins;
}

void CClientLink::OnRefusalDue()
{
    Send(m_refusal);
    OnReadyRead();
}

void CClientLink::OnReadyRead()
{
    if (m_bEnded || IsPaused())
        return;
    m_stream.Append(m_pSocket->readAll());
    CPacketLayerWrapper packet;
    while (!m_bEnded && !IsPaused() && m_stream.TakePacket(packet)) {
        Reach(EProgress::Packet);
        m_halfSent.stop();
        const QString fault = HandlePacket(packet);
        if (!fault.isEmpty())
            Drop(fault);
    }
    if (m_stream.IsBroken())
        Drop(QStringLiteral("a size that no packet has, or records that don't fill it"));
    else if (!m_bEnded && !IsPaused() && m_stream.HasPartialPacket() && !m_halfSent.isActive())
        m_halfSent.start();
}

// Returns what is wrong with the packet, empty if nothing.
QString CClientLink::HandlePacket(CPacketLayerWrapper &packet)
{
    const bool lobby = packet.GetGroup() == QLatin1String(LobbyProtocol::GROUP);
    const bool table = packet.GetGroup() == QLatin1String(TableProtocol::GROUP);
    if (!lobby && !table && packet.GetGroup() != QLatin1String(AccountProtocol::GROUP))
        return QStringLiteral("an unknown group");
    QString fault;
    for (int i = 0; !m_bEnded && fault.isEmpty() && packet.GetNext(); ++i) {
        const QByteArray payload(packet.GetPayload(), packet.GetPayloadLength());
        // The pause after a refused login begins with the next packet.
        if (i > 0 && !lobby && !table)
            fault = QStringLiteral("more than one record on the account");
        else if (table)
            fault = HandleTableRecord(payload);
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
    if (!payload.startsWith(LobbyProtocol::SSeatRequest::TAG))
        return QStringLiteral("an unknown tag");
    LobbyProtocol::SSeatRequest seat;
    if (!Payload::Decode(payload, seat))
        return QStringLiteral("a malformed seat request");
    Q_EMIT signal_SeatRequested(seat.uiTableID);
    return QString();
}

QString CClientLink::HandleAccountRecord(const QByteArray &payload)
{
    AccountProtocol::SLogin login;
    AccountProtocol::STokenLogin tokenLogin;
    AccountProtocol::SWebRequest request;
    if (Payload::Decode(payload, login)) {
        m_bLoginPends = true;
        Q_EMIT signal_LoginRequested(login);
    } else if (Payload::Decode(payload, tokenLogin)) {
        m_bLoginPends = true;
        Q_EMIT signal_TokenLoginRequested(tokenLogin);
    } else if (payload == AccountProtocol::LOGOUT || payload == AccountProtocol::LOGOUT_EVERYWHERE) {
        Q_EMIT signal_LogoutRequested(payload == AccountProtocol::LOGOUT_EVERYWHERE);
        SetUser(QString());
    } else if (payload == AccountProtocol::LEAVE) {
        SetUser(QString());
    } else if (payload == AccountProtocol::GET_BALANCES) {
        Q_EMIT signal_BalancesRequested();
    } else if (Payload::Decode(payload, request) &&
               (request.ucLink == WebLinks::SettingsSyncFetch || request.ucLink == WebLinks::SettingsSyncSend)) {
        Q_EMIT signal_WebSessionRequested(request);
    } else {
        return QStringLiteral("an unknown or malformed record on the account");
    }
    return QString();
}

QString CClientLink::HandleTableRecord(const QByteArray &payload)
{
    TableProtocol::SLine line;
    TableProtocol::SLeave leave;
    if (Payload::Decode(payload, line, TableProtocol::SAY))
        Q_EMIT signal_LineSaid(line);
    else if (Payload::Decode(payload, leave))
        LeaveTable(leave.uiTableID);
    else
        return QStringLiteral("an unknown or malformed record of a table");
    return QString();
}

void CClientLink::SetPlace(quint32 tableID, quint16 place)
{
    if (place != 0)
        m_places.insert(tableID, place);
}

void CClientLink::LeaveTable(quint32 tableID)
{
    if (const quint16 place = m_places.take(tableID))
        Q_EMIT signal_SeatLeft(tableID, place);
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
    SetUser(QString()); // gives the seats back, which the others receive
}

void CClientLink::Log(const QString &text) const
{
    std::fprintf(stderr, "client %s: %s\n", qUtf8Printable(m_strPeer), qUtf8Printable(text));
}
