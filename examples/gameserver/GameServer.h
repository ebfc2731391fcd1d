#pragma once

#include "Accounts.h"
#include "LinkServer.h"
#include "LoginGuard.h"
#include "Seats.h"

#include <network/ServerTrust.h>
#include <protocol/LobbyProtocol.h>
#include <protocol/TableProtocol.h>

#include <QHash>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <QTimer>

#include <optional>
#include <random>

class CClientLink;
class CTokens;

/// Serves the list of tables to clients on this machine, simulates players who enter and leave and a jackpot that
/// grows, manages logins and seats, passes on what users say, and sends the time. Nobody can log in over a connection
/// that isn't encrypted.
class CGameServer : public QObject
{
    Q_OBJECT

public:
    /// Constructs the server. \a tokens outlives it. The same \a seed gives the same players and jackpot. For
    /// \a halfSentLimit see CClientLink.
    CGameServer(const QVector<LobbyProtocol::STable> &tables, const CAccounts &accounts, CTokens &tokens,
                quint32 seed, int halfSentLimit);
    ~CGameServer() override;

    /// Lets players enter or leave each table in each second, instead of one table in ten.
    void MovePlayersEverywhere() { m_uiTablesForAMove = 1; }
    /// Encrypts the connections with this certificate and key.
    void SetTls(const QSslConfiguration &configuration) { m_server.SetConfiguration(configuration); }
    /// Sets the web server from which users get their web sessions, by the beginning of its addresses; without it
    /// they get none. \a key is the secret that the web server expects. Over https it goes only to a server that \a
    /// trust trusts or, if that is empty, the system.
    void SetWebServer(const QUrl &address, const QString &key, const CServerTrust &trust);

    /// Listens on 127.0.0.1; with \a port 0 on any free port. Returns false, with the reason in GetError(), on
    /// failure.
    bool Listen(quint16 port) { return m_server.Listen(port); }
    quint16 GetPort() const { return m_server.serverPort(); }
    QString GetError() const { return m_server.errorString(); }

private:
    void OnNewConnection();
    void OnTick();
    void SendTime() const;
    void AddClient(QSslSocket *socket);
    CClientLink *ChooseWhoMakesWay() const;
    void SendList(CClientLink *client) const;
    void LogIn(CClientLink *client, const AccountProtocol::SLogin &login);
    void EndLogin(const QPointer<CClientLink> &client, const QString &nickname, std::optional<bool> isRight);
    void LogInWithToken(CClientLink *client, const AccountProtocol::STokenLogin &login);
    void LogOut(CClientLink *client, bool everywhere);
    void EndWebSessions(const CClientLink *client);
    QNetworkReply *AskWebServer(const QString &path, const QString &nickname, const QString &machine);
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
    QUrl m_webServer;
    QString m_strWebKey;
    CServerTrust m_webTrust;
    CTokens &m_tokens;
    CLoginGuard m_guard;
    QThreadPool m_hashing; // of passwords
    CLinkServer m_server;
    QTimer m_tick;
    QTimer m_timePackets;
    QVector<CClientLink *> m_clients; // children of this object, until they end
};
