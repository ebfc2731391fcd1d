#pragma once

#include <plugin/ConnectionState.h>
#include <protocol/PacketStream.h>

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

/// The TCP link to the game server. It cuts the stream into packets and, once opened, comes back by itself whenever
/// it is lost, with growing pauses. A server that sends what is no packet loses the link like one that is gone.
class CServerLink : public QObject
{
    Q_OBJECT

public:
    CServerLink(const QString &server, quint16 port);
    ~CServerLink() override;

    /// How long a packet may take from its first to its last byte, 10 s unless told otherwise.
    void SetPacketLimit(int milliseconds) { m_packetTimer.setInterval(milliseconds); }

    void Open();
    /// Gives up the link for good, until Open().
    void Close();

    EConnectionState::type GetState() const { return m_eState; }
    /// "host:port".
    QString GetAddress() const;

    /// Sends one packet; false if the link doesn't stand or \a packet isn't as long as its size field says.
    bool Send(const QByteArray &packet);

Q_SIGNALS:
    void signal_StateChanged(EConnectionState::type state);
    void signal_PacketReceived(CPacketLayerWrapper packet);
    /// For people to read: why the link was given up.
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
    QTimer m_packetTimer; // runs while the front of a packet waits for its rest
    QTimer m_retryTimer;
    int m_iRetryMs; // the next pause before a new attempt
    CPacketStream m_stream;
    EConnectionState::type m_eState = EConnectionState::Disconnected;
};
