#pragma once

#include <protocol/AccountProtocol.h>
#include <protocol/Payload.h>

/// The records that a table and the game server exchange in packets of the group "TABL". LobbyProtocol has those that
/// request a seat.
///
/// A logged-in user may say a line with SAY. The server sends it as SAID to all who have a seat at the table,
/// including the speaker. SLeave gives the seat back; the server doesn't answer it. The server sends SSeats to all
/// who have a seat there, first when they are given it and again after each change. The records are in the form of
/// Payload.h.
namespace TableProtocol {

inline constexpr char GROUP[] = "TABL";
inline constexpr char SAY[] = "SAYS";  // one SLine; the server sets the speaker
inline constexpr char SAID[] = "SAID"; // one SLine

/// The longest line, in UTF-16 code units. Encoding cuts a longer one, and a payload with one, or with an empty line,
/// doesn't decode.
inline constexpr int MAX_LINE_LENGTH = 200;

struct SLine
{
    quint32 uiTableID = 0;
    QString strText;
    QString strNickname;     ///< The speaker.
    quint8 ucIsObserver = 0; ///< 1 if the speaker has no seat.

    auto Fields()
    {
        return Payload::List(uiTableID, Payload::SText{strText, MAX_LINE_LENGTH, 1},
                             Payload::SText{strNickname, AccountProtocol::MAX_NICKNAME_LENGTH}, ucIsObserver);
    }
};

/// The most places that are around one table. A tournament with more has several: places 1 to 10 are at the first
/// one.
inline constexpr quint16 PLACES_AROUND = 10;

struct SSeat
{
    quint16 usPlace = 0;   ///< From 1 on.
    QString strNickname;   ///< Who sits there.
    quint16 usPicture = 0; ///< The number of a stock picture, 0 for none.
    quint32 uiStack = 0;   ///< In the table's money, as Globals::MoneyToString() takes it.

    auto Fields()
    {
        return Payload::List(usPlace, Payload::SText{strNickname, AccountProtocol::MAX_NICKNAME_LENGTH, 1}, usPicture,
                             uiStack);
    }
};

/// Who sits around the table at which the receiver does.
struct SSeats
{
    static constexpr char TAG[] = "SITS";

    quint32 uiTableID = 0;
    QVector<SSeat> seats; ///< At least one, in the order of the places.

    auto Fields() { return Payload::List(uiTableID, seats); }
};

struct SLeave
{
    static constexpr char TAG[] = "LEAV";

    quint32 uiTableID = 0;

    auto Fields() { return Payload::List(uiTableID); }
};

} // namespace TableProtocol
