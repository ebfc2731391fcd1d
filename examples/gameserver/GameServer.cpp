#include "GameServer.h"

#include "ClientLink.h"

#include <QDateTime>

#include <algorithm>
#include <cstdio>

using LobbyProtocol::SPlayerCount;
using LobbyProtocol::STable;

namespace {

constexpr int TICK_MS = 1000;
constexpr int TIME_PACKETS_MS = 10000;
// Well below what a process may open: once accepting has failed for want of a descriptor, it stays off.
constexpr int MAX_CLIENTS = 500;
// One table in this many sees somebody come or go in a second.
constexpr quint32 TABLES_FOR_A_MOVE = 10;

QByteArray TimePacket()
{
    const auto now = static_cast<quint32>(QDateTime::currentSecsSinceEpoch());
    return AccountProtocol::ToPacket(AccountProtocol::EncodeTime(now));
}

// Takes a place, if the user may have one, and says what came of it.
QString TakeSeat(STable *table, const QString &nickname)
{
    if (!table)
        return QStringLiteral("This table has been closed.");
    if (nickname.isEmpty())
        return QStringLiteral("Only who is logged in gets a seat.");
    if (table->usPlayers == table->usPlaces)
        return QStringLiteral("%1 has no free seat.").arg(table->strName);
    ++table->usPlayers;
    return QStringLiteral("%1 has place %2 at %3.").arg(nickname).arg(table->usPlayers).arg(table->strName);
}

} // namespace

CGameServer::CGameServer(const QVector<STable> &tables, const CAccounts &accounts, quint32 seed, int halfSentLimit)
    : m_tables(tables)
    , m_accounts(accounts)
    , m_random(seed)
    , m_iHalfSentLimit(halfSentLimit)
{
    connect(&m_server, &QTcpServer::newConnection, this, &CGameServer::OnNewConnection);
    connect(&m_tick, &QTimer::timeout, this, &CGameServer::OnTick);
    m_tick.start(TICK_MS);
    connect(&m_timePackets, &QTimer::timeout, this, &CGameServer::SendTime);
    m_timePackets.start(TIME_PACKETS_MS);
}

void CGameServer::OnNewConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        if (m_clients.size() < MAX_CLIENTS) {
            AddClient(socket);
            continue;
        }
        std::fprintf(stderr, "refused a client: there are %d already\n", MAX_CLIENTS);
        socket->abort();
        socket->deleteLater();
    }
}

void CGameServer::AddClient(QTcpSocket *socket)
{
    auto *client = new CClientLink(socket, m_iHalfSentLimit, this);
    m_clients.append(client);
    connect(client, &CClientLink::signal_ListRequested, this, [this, client] { SendList(client); });
    connect(client, &CClientLink::signal_SeatRequested, this,
            [this, client](quint32 tableID) { GiveSeat(client, tableID); });
    connect(client, &CClientLink::signal_LoginRequested, this,
            [this, client](const AccountProtocol::SLogin &login) { LogIn(client, login); });
    connect(client, &CClientLink::signal_Ended, this, [this, client] { m_clients.removeOne(client); });
    client->Send(TimePacket());
}

void CGameServer::SendList(CClientLink *client) const
{
    QVector<QByteArray> payloads;
    for (const STable &table : m_tables)
        payloads.append(LobbyProtocol::EncodeTable(table));
    payloads.append(LobbyProtocol::EncodeListEnd(static_cast<quint32>(m_tables.size())));
    client->Send(LobbyProtocol::ToPackets(payloads));
}

void CGameServer::LogIn(CClientLink *client, const AccountProtocol::SLogin &login) const
{
    AccountProtocol::SAccount account;
    const QString reason = m_accounts.LogIn(login, account);
    if (reason.isEmpty())
        client->Accept(account);
    else
        client->Refuse({login.strNickname, reason});
}

void CGameServer::GiveSeat(CClientLink *client, quint32 tableID)
{
    const auto table = std::find_if(m_tables.begin(), m_tables.end(),
                                    [tableID](const STable &candidate) { return candidate.uiID == tableID; });
    STable *found = table == m_tables.end() ? nullptr : &*table;
    const QString answer = TakeSeat(found, client->GetNickname());
    client->Send(LobbyProtocol::ToPackets({LobbyProtocol::EncodeSeatAnswer({tableID, answer})}));
    if (found)
        SendToSubscribers({{tableID, found->usPlayers}});
}

void CGameServer::SendTime() const
{
    const QVector<CClientLink *> clients = m_clients; // sending may end one, which then leaves the member
    for (CClientLink *client : clients)
        client->Send(TimePacket());
}

void CGameServer::OnTick()
{
    QVector<SPlayerCount> changes;
    for (STable &table : m_tables) {
        if (MovePlayers(table))
            changes.append({table.uiID, table.usPlayers});
    }
    if (!changes.isEmpty())
        SendToSubscribers(changes);
}

void CGameServer::SendToSubscribers(const QVector<SPlayerCount> &changes) const
{
    const QByteArray packets = LobbyProtocol::ToPackets(LobbyProtocol::EncodePlayerCounts(changes));
    const QVector<CClientLink *> clients = m_clients;
    for (CClientLink *client : clients) {
        if (client->IsSubscribed())
            client->Send(packets);
    }
}

// Whether the number of players has changed.
bool CGameServer::MovePlayers(STable &table)
{
    // Not the distributions of the standard library, which differ from one to the next.
    const quint32 draw = static_cast<quint32>(m_random());
    if (draw % TABLES_FOR_A_MOVE != 0)
        return false;
    const bool comes = (draw / TABLES_FOR_A_MOVE) % 2 == 0;
    if (table.usPlayers == (comes ? table.usPlaces : 0))
        return false;
    table.usPlayers = static_cast<quint16>(table.usPlayers + (comes ? 1 : -1));
    return true;
}
