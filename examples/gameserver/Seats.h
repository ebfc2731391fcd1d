#pragma once

#include <protocol/LobbyProtocol.h>
#include <protocol/TableProtocol.h>

#include <QMap>

/// The seats of a table or tournament in which users of this server take part. Simulated players have the other ones
/// that are taken; they come and leave, and win from each other. What users have doesn't change, since nothing is
/// really played.
class CSeats
{
public:
    /// Seats as many simulated players as the table counts.
    explicit CSeats(const LobbyProtocol::STable &table);

    /// Returns how many seats are taken.
    quint16 Count() const { return static_cast<quint16>(m_seats.size()); }
    bool HasUsers() const;

    /// Seats a user, and returns the place; 0 if there is none. A simulated player with the same nickname makes way.
    quint16 Take(const QString &nickname);
    void Leave(quint16 place) { m_seats.remove(place); }

    /// Lets a simulated player take a free seat or leave, if there is one to do so. Returns whether one did.
    bool MovePlayer(bool comes, quint32 draw);
    /// Lets one simulated player win something from another one. Returns whether there were two.
    bool PlayHand(quint32 draw);

    /// Returns who sits around the table at which \a place is.
    TableProtocol::SSeats See(quint16 place) const;

private:
    struct SSeated
    {
        TableProtocol::SSeat seat;
        bool bUser = false;
    };

    quint16 FindFreePlace() const;
    void SeatPlayer(quint16 place);
    QVector<quint16> FindPlayers() const;

    LobbyProtocol::STable m_table;
    QMap<quint16, SSeated> m_seats; // by place
};
