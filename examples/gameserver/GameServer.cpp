#include "GameServer.h"

#include "ClientLink.h"

#include <cstdio>

namespace {

constexpr int TICK_MS = 1000;
// Well below what a process may open: once accepting has failed for want of a descriptor, it stays off.
constexpr int MAX_CLIENTS = 500;
// One table in this many sees somebody come or go in a second.
constexpr quint32 TABLES_FOR_A_MOVE = 10;

} // namespace

CGameServer::CGameServer(const QVector<LobbyProtocol::STable> &tables, quint32 seed, int halfSentLimit)
    : m_tables(tables)
    , m_random(seed)
    , m_iHalfSentLimit(halfSentLimit)
{
    connect(&m_server, &QTcpServer::newConnection, this, &CGameServer::OnNewConnection);
    connect(&m_tick, &QTimer::timeout, this, &CGameServer::OnTick);
    m_tick.start(TICK_MS);
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
    connect(client, &CClientLink::signal_Ended, this, [this, client] { m_clients.removeOne(client); });
}

void CGameServer::SendList(CClientLink *client) const
{
    QVector<QByteArray> payloads;
    for (const LobbyProtocol::STable &table : m_tables)
        payloads.append(LobbyProtocol::EncodeTable(table));
    payloads.append(LobbyProtocol::EncodeListEnd(static_cast<quint32>(m_tables.size())));
    client->Send(LobbyProtocol::ToPackets(payloads));
}

void CGameServer::OnTick()
{
    QVector<LobbyProtocol::SPlayerCount> changes;
    for (LobbyProtocol::STable &table : m_tables) {
        if (MovePlayers(table))
            changes.append({table.uiID, table.usPlayers});
    }
    if (changes.isEmpty())
        return;

    const QByteArray packets = LobbyProtocol::ToPackets(LobbyProtocol::EncodePlayerCounts(changes));
    const QVector<CClientLink *> clients = m_clients; // sending may end one, which then leaves the member
    for (CClientLink *client : clients) {
        if (client->IsSubscribed())
            client->Send(packets);
    }
}

// Whether the number of players has changed.
bool CGameServer::MovePlayers(LobbyProtocol::STable &table)
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
