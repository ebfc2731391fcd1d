#pragma once

#include <plugin/ConnectionState.h>
#include <protocol/PacketStream.h>

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

/// The TCP connection to the game server. It splits the stream into packets and, once opened, reconnects after each
/// loss, with growing pauses. It also closes the connection to a server that sends anything but packets, and
/// reconnects.
class CServerLink : public QObject
{
    Q_OBJECT

public:
    CServerLink(const QString &server, quint16 port);
    ~CServerLink() override;

    /// Sets how long a packet may take from its first to its last byte, 10 s by default.
    void SetPacketLimit(int milliseconds) { m_packetTimer.setInterval(milliseconds); }

    void Open();
    /// Tries to connect now, without the rest of a pause, unless there is a connection or the link is closed.
    void Retry();
    /// Closes the connection and doesn't reconnect until Open() is called.
    void Close();

    EConnectionState::type GetState() const { return m_eState; }
    /// Returns the server as "host:port".
    QString GetAddress() const;

    /// Sends one packet; returns false if there is no connection or \a packet isn't as long as its size field says.
    bool Send(const QByteArray &packet);

Q_SIGNALS:
    void signal_StateChanged(EConnectionState::type state);
    void signal_PacketReceived(CPacketLayerWrapper packet);
    /// Emitted when the connection is closed for a reason that people should read.
    void signal_Problem(const QString &text);

private:
    void OnSocketStateChanged(QAbstractSocket::SocketState state);
    void OnReadyRead();
    void Connect();
    void GiveUp(const QString &reason);
    void SetState(EConnectionState::type state);

    QString m_strServer;
    quint16 m_usPort;
    QTcpSocket m_socket;
    QTimer m_packetTimer; // runs while part of a packet has arrived
    QTimer m_retryTimer;
    int m_iRetryMs; // the next pause before a new attempt
    CPacketStream m_stream;
    EConnectionState::type m_eState = EConnectionState::Disconnected;
};
