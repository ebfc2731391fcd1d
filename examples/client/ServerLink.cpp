#include "ServerLink.h"

#include <QElapsedTimer>
#include <QSslCipher>
#include <QSslConfiguration>
#include <QtEndian>

#include <algorithm>

namespace {

constexpr int FIRST_RETRY_MS = 250;
constexpr int LAST_RETRY_MS = 4000;
constexpr int TURN_MS = 8;
constexpr int PACKET_LIMIT_MS = 10000;

bool IsOnePacket(const QByteArray &bytes)
{
    return bytes.size() >= CPacketLayerWrapper::HEADER_SIZE &&
           qFromLittleEndian<quint16>(bytes.constData() + ucPacketSizePos) == bytes.size();
}

} // namespace

CServerLink::CServerLink(const QString &server, quint16 port)
    : m_strServer(server)
    , m_usPort(port)
    , m_iRetryMs(FIRST_RETRY_MS)
{
    m_packetTimer.setSingleShot(true);
    m_packetTimer.setInterval(PACKET_LIMIT_MS);
    connect(&m_packetTimer, &QTimer::timeout, this, [this] {
        GiveUp(m_eState == EConnectionState::Connected ? QStringLiteral("doesn't finish a packet")
                                                       : QStringLiteral("doesn't finish the handshake"));
    });
    m_retryTimer.setSingleShot(true);
    connect(&m_retryTimer, &QTimer::timeout, this, &CServerLink::Connect);
    connect(&m_socket, &QAbstractSocket::stateChanged, this, &CServerLink::OnSocketStateChanged);
    connect(&m_socket, &QSslSocket::encrypted, this, &CServerLink::OnReady);
    connect(&m_socket, QOverload<const QList<QSslError> &>::of(&QSslSocket::sslErrors), this,
            &CServerLink::OnSslErrors);
    connect(&m_socket, &QAbstractSocket::errorOccurred, this, &CServerLink::OnError);
    connect(&m_socket, &QIODevice::readyRead, this, &CServerLink::OnReadyRead);
}

CServerLink::~CServerLink()
{
    // The socket would report its end when the timers are destroyed already.
    m_socket.disconnect(this);
}

void CServerLink::Open()
{
    if (m_eState != EConnectionState::Disconnected)
        return;
    SetState(EConnectionState::Connecting);
    Connect();
}

void CServerLink::Retry()
{
    if (m_eState != EConnectionState::Connecting && m_eState != EConnectionState::Reconnecting)
        return;
    m_iRetryMs = FIRST_RETRY_MS;
    m_socket.abort(); // an attempt that may wait for a network that is no more
    m_retryTimer.stop();
    if (m_eState != EConnectionState::Disconnected) // a slot may have closed the link
        Connect();
}

void CServerLink::Close()
{
    SetState(EConnectionState::Disconnected);
    m_packetTimer.stop();
    m_retryTimer.stop();
    m_socket.flush(); // a logout, say, which waits to be encrypted
    m_socket.abort();
}

QString CServerLink::GetAddress() const
{
    return m_strServer + QLatin1Char(':') + QString::number(m_usPort);
}

bool CServerLink::Send(const QByteArray &packet)
{
    if (m_eState != EConnectionState::Connected || !IsOnePacket(packet))
        return false;
    return m_socket.write(packet) == packet.size();
}

void CServerLink::OnSocketStateChanged(QAbstractSocket::SocketState state)
{
    if (m_eState == EConnectionState::Disconnected)
        return;
    if (state == QAbstractSocket::ConnectedState) {
        if (m_bPlain)
            OnReady();
        else
            m_packetTimer.start();
    } else if (state == QAbstractSocket::UnconnectedState) {
        // The pause grows until a server has sent a packet, so that a server that only accepts connections isn't
        // called in a tight loop.
        m_packetTimer.stop();
        m_retryTimer.start(m_iRetryMs);
        m_iRetryMs = std::min(m_iRetryMs * 2, LAST_RETRY_MS);
        SetState(EConnectionState::Reconnecting);
    }
}

void CServerLink::OnReady()
{
    m_packetTimer.stop();
    SetImpostor(false);
    const bool isReady = m_bPlain || m_socket.isEncrypted();
    if (isReady && m_eState != EConnectionState::Disconnected) // a slot may have closed the link, or begun anew
        SetState(EConnectionState::Connected);
}

void CServerLink::OnSslErrors(const QList<QSslError> &errors)
{
    if (!m_trust.IsEmpty() && m_trust.Excuses(errors, m_socket.peerCertificate(), m_strServer)) {
        m_socket.ignoreSslErrors();
        return;
    }
    QStringList faults;
    for (const QSslError &error : errors)
        faults.append(error.errorString());
    m_strFaults = faults.join(QLatin1String(", "));
}

// The connection ends after this. A server that stays an impostor is told of once.
void CServerLink::OnError(QAbstractSocket::SocketError error)
{
    switch (error) {
    case QAbstractSocket::SslHandshakeFailedError:
    case QAbstractSocket::SslInvalidUserDataError:
        if (!m_bImpostor)
            Q_EMIT signal_Problem(
                QStringLiteral("%1 isn't the server that it should be, and is told nothing: %2")
                    .arg(GetAddress(), m_strFaults.isEmpty() ? m_socket.errorString() : m_strFaults));
        SetImpostor(true);
        break;
    case QAbstractSocket::ConnectionRefusedError:
    case QAbstractSocket::HostNotFoundError:
    case QAbstractSocket::NetworkError:
    case QAbstractSocket::SocketTimeoutError:
        SetImpostor(false); // nobody is there
        break;
    default: // such as the end of a connection that has just failed
        break;
    }
}

QString CServerLink::GetEncryption() const
{
    const QSslCipher cipher = m_socket.sessionCipher();
    return IsEncrypted() ? cipher.protocolString() + QLatin1String(", ") + cipher.name() : QString();
}

void CServerLink::OnReadyRead()
{
    if (m_eState != EConnectionState::Connected) // since the turn in which it was put off
        return;
    m_stream.Append(m_socket.readAll());
    CPacketLayerWrapper packet;
    QElapsedTimer turn;
    turn.start();
    // A slot that receives a packet may close the link.
    while (m_eState == EConnectionState::Connected && m_stream.TakePacket(packet)) {
        m_iRetryMs = FIRST_RETRY_MS;
        m_packetTimer.stop();
        Q_EMIT signal_PacketReceived(packet);
        if (turn.hasExpired(TURN_MS)) { // let the event loop handle the user's input
            QTimer::singleShot(0, this, &CServerLink::OnReadyRead);
            return;
        }
    }
    if (m_stream.IsBroken())
        GiveUp(QStringLiteral("sends what is no packet"));
    else if (m_stream.HasPartialPacket() && !m_packetTimer.isActive())
        m_packetTimer.start();
}

void CServerLink::GiveUp(const QString &reason)
{
    Q_EMIT signal_Problem(QStringLiteral("%1 %2; the link is closed").arg(GetAddress(), reason));
    m_socket.abort();
}

void CServerLink::Connect()
{
    m_stream.Reset();
    m_strFaults.clear();
    if (m_bPlain) {
        m_socket.connectToHost(m_strServer, m_usPort);
    } else {
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setProtocol(QSsl::TlsV1_2OrLater);
        m_trust.Protect(&configuration, m_strServer);
        m_socket.setSslConfiguration(configuration);
        m_socket.connectToHostEncrypted(m_strServer, m_usPort);
    }
    // If the proxy's type doesn't support such connections, the socket refuses without a change of its state.
    if (m_socket.state() == QAbstractSocket::UnconnectedState && !m_retryTimer.isActive()) {
        Q_EMIT signal_Problem(GetAddress() + QLatin1String(": ") + m_socket.errorString());
        OnSocketStateChanged(QAbstractSocket::UnconnectedState);
    }
}

void CServerLink::SetState(EConnectionState::type state)
{
    if (m_eState == state)
        return;
    m_eState = state;
    Q_EMIT signal_StateChanged(state);
}

void CServerLink::SetImpostor(bool isImpostor)
{
    if (m_bImpostor == isImpostor)
        return;
    m_bImpostor = isImpostor;
    Q_EMIT signal_ImpostorChanged(isImpostor);
}
