#pragma once

#include "Accounts.h"
#include "Seats.h"

#include <protocol/LobbyProtocol.h>
#include <protocol/TableProtocol.h>

#include <QHash>
#include <QNetworkAccessManager>
#include <QObject>
#include <QTcpServer>
#include <QTimer>

#include <random>

class CClientLink;

/// Serves the list of tables to clients on this machine, simulates players who enter and leave and a jackpot that
/// grows, manages logins and seats, passes on what users say, and sends the time.
class CGameServer : public QObject
{
    Q_OBJECT

public:
    /// Constructs the server. The same \a seed gives the same players and jackpot. For \a halfSentLimit see
    /// CClientLink.
    CGameServer(const QVector<LobbyProtocol::STable> &tables, const CAccounts &accounts, quint32 seed,
                int halfSentLimit);

    /// Lets players enter or leave each table in each second, instead of one table in ten.
    void MovePlayersEverywhere() { m_uiTablesForAMove = 1; }
    /// Sets the web server from which users get their web sessions, as "host:port"; without it they get none. \a key
    /// is the secret that the web server expects.
    void SetWebServer(const QString &address, const QString &key);

    /// Listens on 127.0.0.1; with \a port 0 on any free port. Returns false, with the reason in GetError(), on
    /// failure.
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
    quint16 TakeSeat(LobbyProtocol::STable &table, const QString &nickname);
    void GiveSeat(CClientLink *client, quint32 tableID);
    void TakeSeatBack(quint32 tableID, quint16 place);
    void SendSeats(quint32 tableID) const;
    void PassOn(CClientLink *client, TableProtocol::SLine line) const;
    void GrowJackpot();
    QByteArray JackpotPacket() const;
    void SendToSubscribers(const QByteArray &packets) const;
    bool MovePlayers(LobbyProtocol::STable &table);
    void PlayHands();

    QVector<LobbyProtocol::STable> m_tables;
    QHash<quint32, CSeats> m_seats; // by table, if a user has a seat there
    CAccounts m_accounts;
    std::mt19937 m_random;
    quint32 m_uiTablesForAMove = 10; // in each second, players enter or leave one table in this many
    quint32 m_uiJackpot;             // in cents
    int m_iHalfSentLimit;
    QNetworkAccessManager m_network;
    QString m_strWebServer;
    QString m_strWebKey;
    QTcpServer m_server;
    QTimer m_tick;
    QTimer m_timePackets;
    QVector<CClientLink *> m_clients; // children of this object, until they end
};
