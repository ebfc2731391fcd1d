#pragma once

#include "Accounts.h"

#include <protocol/LobbyProtocol.h>
#include <protocol/TableProtocol.h>

#include <QNetworkAccessManager>
#include <QObject>
#include <QTcpServer>
#include <QTimer>

#include <random>

class CClientLink;

/// Serves the list of tables to clients on this machine, lets the players come and go and the jackpot grow, knows
/// who may log in and who sits where, passes on what they say, and tells the time.
class CGameServer : public QObject
{
    Q_OBJECT

public:
    /// The same \a seed makes the same players come and go, and the jackpot grow alike. For \a halfSentLimit see
    /// CClientLink.
    CGameServer(const QVector<LobbyProtocol::STable> &tables, const CAccounts &accounts, quint32 seed,
                int halfSentLimit);

    /// Where users get their web sessions, as "host:port"; nowhere if this is not called. \a key is the secret that
    /// the web server wants to see.
    void SetWebServer(const QString &address, const QString &key);

    /// Listens on 127.0.0.1; \a port 0 takes any that is free. False with the reason in GetError().
    bool Listen(quint16 port) { return m_server.listen(QHostAddress::LocalHost, port); }
    quint16 GetPort() const { return m_server.serverPort(); }
    QString GetError() const { return m_server.errorString(); }

private:
    void OnNewConnection();
    void OnTick();
    void SendTime() const;
    void AddClient(QTcpSocket *socket);
    void SendList(CClientLink *client) const;
    void LogIn(CClientLink *client, const AccountProtocol::SLogin &login) const;
    void GiveBalances(CClientLink *client) const;
    void GiveWebSession(CClientLink *client, const AccountProtocol::SWebRequest &request);
    LobbyProtocol::STable *FindTable(quint32 tableID);
    void GiveSeat(CClientLink *client, quint32 tableID);
    void TakeSeatBack(quint32 tableID);
    void PassOn(CClientLink *client, TableProtocol::SLine line) const;
    void GrowJackpot();
    QByteArray JackpotPacket() const;
    void SendToSubscribers(const QByteArray &packets) const;
    bool MovePlayers(LobbyProtocol::STable &table);

    QVector<LobbyProtocol::STable> m_tables;
    CAccounts m_accounts;
    std::mt19937 m_random;
    quint32 m_uiJackpot; // cents
    int m_iHalfSentLimit;
    QNetworkAccessManager m_network;
    QString m_strWebServer;
    QString m_strWebKey;
    QTcpServer m_server;
    QTimer m_tick;
    QTimer m_timePackets;
    QVector<CClientLink *> m_clients; // children of this object, as long as they are of use
};
