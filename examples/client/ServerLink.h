#pragma once

#include <network/ServerTrust.h>
#include <plugin/ConnectionState.h>
#include <protocol/PacketStream.h>

#include <QObject>
#include <QSslSocket>
#include <QTimer>

/// The connection to the game server, over TLS. It splits the stream into packets and, once opened, reconnects after
/// each loss, with growing pauses. It also closes the connection to a server that sends anything but packets, and
/// reconnects.
///
/// Nothing is sent to a server that hasn't proved who it is: until then the link counts as connecting.
class CServerLink : public QObject
{
    Q_OBJECT

public:
    CServerLink(const QString &server, quint16 port);
    ~CServerLink() override;

    /// Sets whom the server has to be vouched for by; by default the authorities that the system trusts. Called
    /// before Open().
    void SetTrust(const CServerTrust &trust) { m_trust = trust; }
    /// Has the connection not encrypted, for a look at its bytes. Called before Open().
    void SetPlain() { m_bPlain = true; }

    /// Sets how long a packet may take from its first to its last byte, 10 s by default.
    void SetPacketLimit(int milliseconds) { m_packetTimer.setInterval(milliseconds); }

    void Open();
    /// Tries to connect now, without the rest of a pause, unless there is a connection or the link is closed.
    void Retry();
    /// Closes the connection and doesn't reconnect until Open() is called.
    void Close();

    EConnectionState::type GetState() const { return m_eState; }
    /// Returns whether there is a connection that nobody else can read.
    bool IsEncrypted() const { return m_eState == EConnectionState::Connected && m_socket.isEncrypted(); }
    /// Returns the protocol and cipher of such a connection, for people.
    QString GetEncryption() const;
    /// Returns whether the last server that showed a certificate, or should have, couldn't prove who it is.
    bool IsImpostor() const { return m_bImpostor; }
    /// Returns the server as "host:port".
    QString GetAddress() const;

    /// Sends one packet; returns false if there is no connection or \a packet isn't as long as its size field says.
    bool Send(const QByteArray &packet);

Q_SIGNALS:
    void signal_StateChanged(EConnectionState::type state);
    void signal_ImpostorChanged(bool isImpostor);
    void signal_PacketReceived(CPacketLayerWrapper packet);
    /// Emitted when the connection is closed for a reason that people should read.
    void signal_Problem(const QString &text);

private:
    void OnSocketStateChanged(QAbstractSocket::SocketState state);
    void OnReady();
    void OnSslErrors(const QList<QSslError> &errors);
    void OnError(QAbstractSocket::SocketError error);
    void OnReadyRead();
    void Connect();
    void GiveUp(const QString &reason);
    void SetState(EConnectionState::type state);
    void SetImpostor(bool isImpostor);

    QString m_strServer;
    quint16 m_usPort;
    CServerTrust m_trust;
    QSslSocket m_socket;
    QTimer m_packetTimer; // runs during the handshake, and while part of a packet has arrived
    QTimer m_retryTimer;
    int m_iRetryMs; // the next pause before a new attempt
    CPacketStream m_stream;
    EConnectionState::type m_eState = EConnectionState::Disconnected;
    QString m_strFaults; // of the server's certificate
    bool m_bPlain = false;
    bool m_bImpostor = false;
};
