#include "GameServer.h"

#include "ClientLink.h"
#include "Passwords.h"
#include "Tokens.h"

#include <protocol/Payload.h>

#include <QDateTime>
#include <QNetworkReply>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>
#include <iterator>

using LobbyProtocol::SPlayerCount;
using LobbyProtocol::STable;

namespace {

constexpr int TICK_MS = 1000;
// Rows of settings and notes get the time that was sent last, and are ordered by it.
constexpr int TIME_PACKETS_MS = 1000;
constexpr int WEB_LIMIT_MS = 10000;
// Well below the number of descriptors of a process: once accepting has failed for lack of one, it stays off.
constexpr int MAX_CLIENTS = 500;
// That have sent no packet. Further ones make others of them make way.
constexpr int MAX_SILENT_CLIENTS = 100;
constexpr int HASHING_THREADS = 2; // of 64 MiB each
// In cents. At the limit somebody wins the jackpot, and it starts again.
constexpr quint32 JACKPOT_BEGIN = 1234567;
constexpr quint32 JACKPOT_LIMIT = 5000000;
constexpr quint32 JACKPOT_STEP = 250;

const QString END_SESSIONS = QStringLiteral("/sessions/end");

QByteArray TimePacket()
{
    const auto now = static_cast<quint32>(QDateTime::currentSecsSinceEpoch());
    return Payload::ToPackets(AccountProtocol::TIME_GROUP, {Payload::Encode(AccountProtocol::STime{now})});
}

QByteArray WebSessionPacket(quint8 link, const QByteArray &session)
{
    return Payload::ToPackets(AccountProtocol::GROUP,
                              {Payload::Encode(AccountProtocol::SWebSession{link, QString::fromUtf8(session)})});
}

// Returns the packets with the counts, empty if nothing has changed.
QByteArray CountPackets(const QVector<SPlayerCount> &changes)
{
    return changes.isEmpty() ? QByteArray()
                             : Payload::ToPackets(LobbyProtocol::GROUP, LobbyProtocol::EncodePlayerCounts(changes));
}

} // namespace

CGameServer::CGameServer(const QVector<STable> &tables, const CAccounts &accounts, CTokens &tokens, quint32 seed,
                         int halfSentLimit)
    : m_tables(tables)
    , m_accounts(accounts)
    , m_random(seed)
    , m_uiJackpot(JACKPOT_BEGIN)
    , m_iHalfSentLimit(halfSentLimit)
    , m_tokens(tokens)
{
    m_hashing.setMaxThreadCount(HASHING_THREADS);
    // Queued, or who connects faster than that they are accepted would keep the server from everything else.
    connect(&m_server, &QTcpServer::newConnection, this, &CGameServer::OnNewConnection, Qt::QueuedConnection);
    connect(&m_tick, &QTimer::timeout, this, &CGameServer::OnTick);
    m_tick.start(TICK_MS);
    connect(&m_timePackets, &QTimer::timeout, this, &CGameServer::SendTime);
    m_timePackets.start(TIME_PACKETS_MS);
}

CGameServer::~CGameServer()
{
    m_hashing.waitForDone(); // what it calls then is dropped with this object
}

void CGameServer::OnNewConnection()
{
    while (auto *socket = static_cast<QSslSocket *>(m_server.nextPendingConnection())) {
        if (CClientLink *client = ChooseWhoMakesWay())
            client->Drop(QStringLiteral("makes way for another"));
        if (m_clients.size() < MAX_CLIENTS) {
            AddClient(socket);
            continue;
        }
        std::fprintf(stderr, "refused a client: there are %d already\n", MAX_CLIENTS);
        socket->abort();
        socket->deleteLater();
    }
}

// Returns who makes way if there is a crowd: of two that are drawn, the one that has got less far. If it were always
// the one that has got least far, each newcomer would make way for the next one, and whoever stands or talks would
// stay; if it were the oldest, a flood would decide how much time a client has. Nobody who is logged in makes way.
CClientLink *CGameServer::ChooseWhoMakesWay() const
{
    using EProgress = CClientLink::EProgress;
    const auto before = [this](EProgress progress) {
        QVector<CClientLink *> clients;
        std::copy_if(m_clients.begin(), m_clients.end(), std::back_inserter(clients),
                     [progress](const CClientLink *client) { return client->GetProgress() < progress; });
        return clients;
    };
    QVector<CClientLink *> candidates = before(EProgress::Packet);
    if (candidates.size() < MAX_SILENT_CLIENTS) {
        if (m_clients.size() < MAX_CLIENTS)
            return nullptr;
        candidates = before(EProgress::User);
    }
    if (candidates.isEmpty())
        return nullptr;
    const auto choose = [&] { return candidates.at(QRandomGenerator::global()->bounded(int(candidates.size()))); };
    CClientLink *one = choose();
    CClientLink *other = choose();
    return one->GetProgress() < other->GetProgress() ? one : other;
}

void CGameServer::AddClient(QSslSocket *socket)
{
    auto *client = new CClientLink(socket, m_iHalfSentLimit, this);
    m_clients.append(client);
    connect(client, &CClientLink::signal_ListRequested, this, [this, client] { SendList(client); });
    connect(client, &CClientLink::signal_SeatRequested, this,
            [this, client](quint32 tableID) { GiveSeat(client, tableID); });
    connect(client, &CClientLink::signal_SeatLeft, this, &CGameServer::TakeSeatBack);
    connect(client, &CClientLink::signal_LineSaid, this,
            [this, client](const TableProtocol::SLine &line) { PassOn(client, line); });
    connect(client, &CClientLink::signal_LoginRequested, this,
            [this, client](const AccountProtocol::SLogin &login) { LogIn(client, login); });
    connect(client, &CClientLink::signal_TokenLoginRequested, this,
            [this, client](const AccountProtocol::STokenLogin &login) { LogInWithToken(client, login); });
    connect(client, &CClientLink::signal_LogoutRequested, this,
            [this, client](bool everywhere) { LogOut(client, everywhere); });
    connect(client, &CClientLink::signal_BalancesRequested, this, [this, client] { GiveBalances(client); });
    connect(client, &CClientLink::signal_WebSessionRequested, this,
            [this, client](const AccountProtocol::SWebRequest &request) { GiveWebSession(client, request); });
    connect(client, &CClientLink::signal_Ended, this, [this, client] { m_clients.removeOne(client); });
    client->Send(TimePacket());
}

void CGameServer::SendList(CClientLink *client) const
{
    QVector<QByteArray> payloads;
    for (const STable &table : m_tables)
        payloads.append(Payload::Encode(table));
    payloads.append(Payload::Encode(LobbyProtocol::SListEnd{static_cast<quint32>(m_tables.size())}));
    client->Send(Payload::ToPackets(LobbyProtocol::GROUP, payloads) + JackpotPacket());
}

// The password is looked at on another thread, since that takes long on purpose.
void CGameServer::LogIn(CClientLink *client, const AccountProtocol::SLogin &login)
{
    const QString &nickname = login.strNickname;
    AccountProtocol::SAccount account;
    auto refusal = m_accounts.Find(nickname, account);
    if (!client->IsEncrypted())
        refusal = AccountProtocol::RF_UNPROTECTED;
    else if (!refusal)
        refusal = m_guard.Begin(nickname);
    if (refusal) {
        client->Refuse({nickname, *refusal});
        return;
    }
    m_hashing.start([this, link = QPointer<CClientLink>(client), nickname, password = login.strPassword,
                     hash = m_accounts.GetHash(nickname)] {
        const std::optional<bool> isRight = Passwords::Matches(password, hash);
        QMetaObject::invokeMethod(
            this, [this, link, nickname, isRight] { EndLogin(link, nickname, isRight); }, Qt::QueuedConnection);
    });
}

// The client may be gone by now.
void CGameServer::EndLogin(const QPointer<CClientLink> &client, const QString &nickname, std::optional<bool> isRight)
{
    m_guard.End(nickname, isRight);
    if (!client || client->HasEnded())
        return;
    if (!isRight || !*isRight) {
        client->Refuse({nickname, isRight ? AccountProtocol::RF_WRONG_PASSWORD : AccountProtocol::RF_BUSY});
        return;
    }
    const AccountProtocol::SAccount account = m_accounts.GetAccount(nickname);
    QString token;
    if (!m_tokens.Add(account.strNickname, m_accounts.GetHash(nickname), &token)) {
        std::fprintf(stderr, "%s got no token: the file of tokens can't be written\n",
                     qUtf8Printable(account.strNickname));
        token.clear(); // so the user gives the password again after each loss of the connection
    }
    client->Accept(account, token, true);
}

void CGameServer::LogInWithToken(CClientLink *client, const AccountProtocol::STokenLogin &login)
{
    AccountProtocol::SAccount account;
    auto refusal = m_accounts.Find(login.strNickname, account);
    if (!client->IsEncrypted()) {
        refusal = AccountProtocol::RF_UNPROTECTED;
    } else if (!refusal) {
        const std::optional<bool> isGood =
            m_tokens.Use(login.strNickname, m_accounts.GetHash(login.strNickname), login.strToken);
        if (!isGood)
            refusal = AccountProtocol::RF_UNKNOWN;
        else if (!*isGood)
            refusal = AccountProtocol::RF_TOKEN_ENDED;
    }
    if (refusal)
        client->Refuse({login.strNickname, *refusal});
    else
        client->Accept(account, login.strToken, false);
}

// Who else uses a token that is taken back, be it a thief, doesn't stay logged in by it.
void CGameServer::LogOut(CClientLink *client, bool everywhere)
{
    const QString nickname = client->GetNickname();
    const QString token = client->GetToken();
    if (nickname.isEmpty())
        return;
    if (everywhere)
        m_tokens.RemoveAll(nickname);
    else if (!token.isEmpty())
        m_tokens.Remove(token);
    if (everywhere && !m_webServer.isEmpty())
        AskWebServer(END_SESSIONS, nickname, QString()); // on whatever machine
    else
        EndWebSessions(client);
    const QVector<CClientLink *> clients = m_clients; // dropping one removes it from the member
    for (CClientLink *other : clients) {
        const bool isSameUser = other->GetNickname().toLower() == nickname.toLower();
        if (other != client && isSameUser && (everywhere || (!token.isEmpty() && other->GetToken() == token))) {
            if (!everywhere)
                EndWebSessions(other);
            other->Drop(QStringLiteral("its login has been taken back"));
        }
    }
}

void CGameServer::GiveBalances(CClientLink *client) const
{
    if (client->GetNickname().isEmpty())
        return;
    const AccountProtocol::SAccount account = m_accounts.GetAccount(client->GetNickname());
    client->Send(Payload::ToPackets(AccountProtocol::GROUP, {Payload::Encode(account, AccountProtocol::BALANCES)}));
}

void CGameServer::SetWebServer(const QUrl &address, const QString &key, const CServerTrust &trust)
{
    m_webServer = address;
    m_strWebKey = key;
    m_webTrust = trust;
    m_network.setTransferTimeout(WEB_LIMIT_MS);
}

void CGameServer::GiveWebSession(CClientLink *client, const AccountProtocol::SWebRequest &request)
{
    const quint8 link = request.ucLink;
    if (client->GetNickname().isEmpty() || m_webServer.isEmpty()) {
        client->Send(WebSessionPacket(link, QByteArray()));
        return;
    }
    if (!client->BeginWebRequest(request.strMachine)) {
        client->Send(WebSessionPacket(link, QByteArray()));
        return;
    }
    QNetworkReply *reply = AskWebServer(QStringLiteral("/sessions"), client->GetNickname(), request.strMachine);
    // Only if the same user is logged in, and while the link exists.
    connect(reply, &QNetworkReply::finished, client, [client, reply, link, login = client->GetLoginCount()] {
        client->EndWebRequest();
        if (client->GetLoginCount() == login)
            client->Send(WebSessionPacket(link, reply->error() ? QByteArray() : reply->readAll()));
    });
}

void CGameServer::EndWebSessions(const CClientLink *client)
{
    for (const QString &machine : client->GetMachines())
        AskWebServer(END_SESSIONS, client->GetNickname(), machine);
}

// The reply deletes itself when it has finished, and the log tells if it has failed.
QNetworkReply *CGameServer::AskWebServer(const QString &path, const QString &nickname, const QString &machine)
{
    QNetworkRequest request(QUrl(m_webServer.toString() + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/x-www-form-urlencoded"));
    QSslConfiguration configuration = request.sslConfiguration();
    m_webTrust.Protect(&configuration, m_webServer.host());
    request.setSslConfiguration(configuration);
    QNetworkReply *reply = m_network.post(request, "key=" + QUrl::toPercentEncoding(m_strWebKey) +
                                                       "&nickname=" + QUrl::toPercentEncoding(nickname) +
                                                       "&machine=" + QUrl::toPercentEncoding(machine));
    connect(reply, &QNetworkReply::finished, reply, [reply] {
        if (reply->error())
            std::fprintf(stderr, "%s: %s\n", qUtf8Printable(reply->url().path()),
                         qUtf8Printable(reply->errorString()));
        reply->deleteLater();
    });
    return reply;
}

STable *CGameServer::FindTable(quint32 tableID)
{
    const auto table = std::find_if(m_tables.begin(), m_tables.end(),
                                    [tableID](const STable &candidate) { return candidate.uiID == tableID; });
    return table == m_tables.end() ? nullptr : &*table;
}

// Returns the place that the user has then; 0 if all are taken.
quint16 CGameServer::TakeSeat(STable &table, const QString &nickname)
{
    auto seats = m_seats.find(table.uiID);
    if (seats == m_seats.end())
        seats = m_seats.insert(table.uiID, CSeats(table));
    const quint16 place = seats->Take(nickname);
    table.usPlayers = seats->Count();
    if (!seats->HasUsers())
        m_seats.erase(seats);
    return place;
}

// A user who has a seat there keeps it.
void CGameServer::GiveSeat(CClientLink *client, quint32 tableID)
{
    STable *table = FindTable(tableID);
    quint16 place = client->GetPlace(tableID);
    auto result = LobbyProtocol::SR_TAKEN;
    if (place == 0 && !table) {
        result = LobbyProtocol::SR_CLOSED;
    } else if (place == 0 && client->GetNickname().isEmpty()) {
        result = LobbyProtocol::SR_NOT_LOGGED_IN;
    } else if (place == 0) {
        place = TakeSeat(*table, client->GetNickname());
        client->SetPlace(tableID, place);
        if (place == 0)
            result = LobbyProtocol::SR_FULL;
    }
    client->Send(Payload::ToPackets(LobbyProtocol::GROUP,
                                    {Payload::Encode(LobbyProtocol::SSeatAnswer{tableID, result, place})}));
    SendSeats(tableID);
    if (table)
        SendToSubscribers(CountPackets({{tableID, table->usPlayers}}));
}

void CGameServer::TakeSeatBack(quint32 tableID, quint16 place)
{
    STable *table = FindTable(tableID);
    const auto seats = m_seats.find(tableID);
    seats->Leave(place);
    table->usPlayers = seats->Count();
    if (!seats->HasUsers())
        m_seats.erase(seats);
    SendSeats(tableID);
    SendToSubscribers(CountPackets({{tableID, table->usPlayers}}));
}

// Tells those who have a seat there who else does.
void CGameServer::SendSeats(quint32 tableID) const
{
    const QVector<CClientLink *> clients = m_clients; // sending may end one, which then leaves the table, too
    for (CClientLink *client : clients) {
        const auto seats = m_seats.constFind(tableID);
        const quint16 place = client->GetPlace(tableID);
        if (place != 0)
            client->Send(Payload::ToPackets(TableProtocol::GROUP, {Payload::Encode(seats->See(place))}));
    }
}

// A line isn't passed on if nobody is logged in on the link.
void CGameServer::PassOn(CClientLink *client, TableProtocol::SLine line) const
{
    line.strNickname = client->GetNickname();
    line.ucIsObserver = client->GetPlace(line.uiTableID) == 0;
    if (line.strNickname.isEmpty())
        return;
    const QByteArray packets = Payload::ToPackets(TableProtocol::GROUP, {Payload::Encode(line, TableProtocol::SAID)});
    const QVector<CClientLink *> clients = m_clients; // sending may end one, which is then removed from the member
    for (CClientLink *listener : clients) {
        if (listener->GetPlace(line.uiTableID) != 0)
            listener->Send(packets);
    }
}

void CGameServer::SendTime() const
{
    const QVector<CClientLink *> clients = m_clients; // sending may end one, which is then removed from the member
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
    GrowJackpot();
    SendToSubscribers(CountPackets(changes) + JackpotPacket());
    PlayHands();
    m_tokens.WriteRemovals();
}

void CGameServer::GrowJackpot()
{
    m_uiJackpot += 1 + static_cast<quint32>(m_random()) % JACKPOT_STEP;
    if (m_uiJackpot >= JACKPOT_LIMIT)
        m_uiJackpot = JACKPOT_BEGIN;
}

QByteArray CGameServer::JackpotPacket() const
{
    return Payload::ToPackets(
        AccountProtocol::CASINO_GROUP,
        {Payload::Encode(AccountProtocol::SJackpot{GlobalDefines::MONEYTYPE_DOLLAR, m_uiJackpot})});
}

void CGameServer::SendToSubscribers(const QByteArray &packets) const
{
    const QVector<CClientLink *> clients = m_clients;
    for (CClientLink *client : clients) {
        if (client->IsSubscribed())
            client->Send(packets);
    }
}

// Lets a simulated player enter or leave; returns whether the number of players has changed.
bool CGameServer::MovePlayers(STable &table)
{
    // The distributions of the standard library aren't used because they differ between implementations.
    const quint32 draw = static_cast<quint32>(m_random());
    if (draw % m_uiTablesForAMove != 0)
        return false;
    const bool wantsToCome = (draw / m_uiTablesForAMove) % 2 == 0;
    const bool comes = table.usPlayers == 0 || (wantsToCome && table.usPlayers < table.usPlaces);
    const auto seats = m_seats.find(table.uiID);
    if (seats != m_seats.end() && !seats->MovePlayer(comes, draw))
        return false;
    table.usPlayers = static_cast<quint16>(table.usPlayers + (comes ? 1 : -1));
    return true;
}

// Sends the seats of each table with users after a hand.
void CGameServer::PlayHands()
{
    const QList<quint32> tables = m_seats.keys();
    for (const quint32 table : tables) {
        const auto seats = m_seats.find(table);
        if (seats != m_seats.end() && seats->PlayHand(static_cast<quint32>(m_random())))
            SendSeats(table);
    }
}
