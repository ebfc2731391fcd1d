#pragma once

#include <common/LobbyProtocol.h>

#include <QObject>
#include <QTcpServer>
#include <QTimer>

#include <random>

class CClientLink;

/// Serves the list of tables to clients on this machine, and lets the players come and go.
class CGameServer : public QObject
{
    Q_OBJECT

public:
    /// The same \a seed makes the same players come and go. For \a halfSentLimit see CClientLink.
    CGameServer(const QVector<LobbyProtocol::STable> &tables, quint32 seed, int halfSentLimit);

    /// Listens on 127.0.0.1; \a port 0 takes any that is free. False with the reason in GetError().
    bool Listen(quint16 port) { return m_server.listen(QHostAddress::LocalHost, port); }
    quint16 GetPort() const { return m_server.serverPort(); }
    QString GetError() const { return m_server.errorString(); }

private:
    void OnNewConnection();
    void OnTick();
    void AddClient(QTcpSocket *socket);
    void SendList(CClientLink *client) const;
    bool MovePlayers(LobbyProtocol::STable &table);

    QVector<LobbyProtocol::STable> m_tables;
    std::mt19937 m_random;
    int m_iHalfSentLimit;
    QTcpServer m_server;
    QTimer m_tick;
    QVector<CClientLink *> m_clients; // children of this object, as long as they are of use
};
