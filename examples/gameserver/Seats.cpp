#include "Seats.h"

#include <algorithm>
#include <iterator>

using TableProtocol::PLACES_AROUND;

namespace {

// More than PLACES_AROUND, so that no two players around a table have the same one.
constexpr const char *NICKNAMES[] = {"Bluebell", "Captain Kit", "Dorothea", "Eagle Eye", "Fjord",     "Gingersnap",
                                     "Hazel",    "Ivory",       "Juniper",  "Kestrel",   "Lucky Lou", "Moss",
                                     "Nightowl", "Otter",       "Pepper",   "Quill",     "Rosalind"};
constexpr quint32 PICTURES = 8; // stock pictures from 1 on

constexpr quint32 CHIPS_OF_A_TOURNAMENT = 1500;
constexpr quint32 STAKE_OF_A_TOURNAMENT = 30;
// Stacks of ring games, in higher stakes.
constexpr quint32 SMALLEST_STACK = 20;
constexpr quint32 STACK_OF_USERS = 50;
constexpr quint32 STACK_RANGE = 80;

bool IsTournament(const LobbyProtocol::STable &table)
{
    return table.eType == GlobalDefines::TT_TOURNAMENT || table.eType == GlobalDefines::TT_SITANDGO;
}

} // namespace

CSeats::CSeats(const LobbyProtocol::STable &table)
    : m_table(table)
{
    for (quint16 place = 1; place <= table.usPlayers; ++place)
        SeatPlayer(place);
}

bool CSeats::HasUsers() const
{
    return std::any_of(m_seats.begin(), m_seats.end(), [](const SSeated &seated) { return seated.bUser; });
}

quint16 CSeats::Take(const QString &nickname)
{
    const auto namesake = std::find_if(m_seats.begin(), m_seats.end(), [&](const SSeated &seated) {
        return !seated.bUser && seated.seat.strNickname.compare(nickname, Qt::CaseInsensitive) == 0;
    });
    const quint16 place = namesake == m_seats.end() ? FindFreePlace() : namesake.key();
    if (place == 0)
        return 0;
    const quint32 stack = IsTournament(m_table) ? CHIPS_OF_A_TOURNAMENT : STACK_OF_USERS * m_table.mvHigh;
    m_seats.insert(place, {{place, nickname, 0, stack}, true});
    return place;
}

bool CSeats::MovePlayer(bool comes, quint32 draw)
{
    if (comes) {
        const quint16 place = FindFreePlace();
        if (place != 0)
            SeatPlayer(place);
        return place != 0;
    }
    const QVector<quint16> players = FindPlayers();
    if (!players.isEmpty())
        m_seats.remove(players.at(int(draw % quint32(players.size()))));
    return !players.isEmpty();
}

bool CSeats::PlayHand(quint32 draw)
{
    const QVector<quint16> players = FindPlayers();
    if (players.size() < 2)
        return false;
    const int winner = int(draw % quint32(players.size()));
    TableProtocol::SSeat &wins = m_seats[players.at(winner)].seat;
    TableProtocol::SSeat &loses = m_seats[players.at((winner + 1) % int(players.size()))].seat;
    // Whole stakes, and never the last one of a stack.
    const quint32 stake = IsTournament(m_table) ? STAKE_OF_A_TOURNAMENT : m_table.mvHigh;
    const quint32 pot = std::min(stake * (1 + draw / 16 % 4), loses.uiStack - std::min(stake, loses.uiStack));
    wins.uiStack += pot;
    loses.uiStack -= pot;
    return true;
}

TableProtocol::SSeats CSeats::See(quint16 place) const
{
    const int first = (place - 1) / PLACES_AROUND * PLACES_AROUND + 1;
    TableProtocol::SSeats around{m_table.uiID, {}};
    const auto end = m_seats.upperBound(quint16(first + PLACES_AROUND - 1));
    for (auto seated = m_seats.lowerBound(quint16(first)); seated != end; ++seated)
        around.seats.append(seated->seat);
    return around;
}

quint16 CSeats::FindFreePlace() const
{
    quint16 place = 1;
    for (auto seated = m_seats.begin(); seated != m_seats.end() && seated.key() == place; ++seated)
        ++place;
    return place <= m_table.usPlaces ? place : 0;
}

// The same place gets the same player each time.
void CSeats::SeatPlayer(quint16 place)
{
    const quint32 number = m_table.uiID + place;
    const QString nickname = QString::fromLatin1(NICKNAMES[number % std::size(NICKNAMES)]);
    const bool isTaken = std::any_of(m_seats.begin(), m_seats.end(), [&](const SSeated &seated) {
        return seated.bUser && seated.seat.strNickname.compare(nickname, Qt::CaseInsensitive) == 0;
    });
    const quint32 stakes = SMALLEST_STACK + number * 37 % STACK_RANGE;
    const quint32 stack = IsTournament(m_table) ? CHIPS_OF_A_TOURNAMENT : stakes * m_table.mvHigh;
    m_seats.insert(place, {{place, isTaken ? nickname + QStringLiteral(" II") : nickname,
                            quint16(number % (PICTURES + 1)), stack},
                           false});
}

QVector<quint16> CSeats::FindPlayers() const
{
    QVector<quint16> places;
    for (auto seated = m_seats.begin(); seated != m_seats.end(); ++seated) {
        if (!seated->bUser)
            places.append(seated.key());
    }
    return places;
}
