#pragma once

#include <common/PacketStream.h>

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

/// The server's end of one client. It cuts what arrives into packets, checks all of it, and drops the client at the
/// first thing that no client would send. Beginning and end are one line each in the log.
class CClientLink : public QObject
{
    Q_OBJECT

public:
    /// Takes the socket over. A packet has to be whole \a halfSentLimit milliseconds after its first byte.
    CClientLink(QTcpSocket *socket, int halfSentLimit, QObject *parent);

    /// Whether the client has asked for the list, and thus wants to hear of changes.
    bool IsSubscribed() const { return m_bSubscribed; }
    void Send(const QByteArray &packets);

Q_SIGNALS:
    void signal_ListRequested();
    /// The link is of no use any more and deletes itself at the next turn of the event loop.
    void signal_Ended();

private:
    void OnReadyRead();
    QString HandlePacket(CPacketLayerWrapper &packet);
    void End(const QString &reason);
    void Log(const QString &text) const;

    QTcpSocket *m_pSocket; // owned
    QString m_strPeer;
    CPacketStream m_stream;
    QTimer m_halfSent;
    bool m_bSubscribed = false;
    bool m_bEnded = false;
};
