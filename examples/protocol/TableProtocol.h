#pragma once

#include <protocol/AccountProtocol.h>
#include <protocol/Payload.h>

/// What a table and the game server say to each other, in records of packets of the group "TABL". The seat itself is
/// the lobby's, see LobbyProtocol.
///
/// Whoever is logged in may say a line with SAY. It goes as SAID to all who have a seat at the table, and thus to a
/// speaker who has one. SLeave gives the seat back; it isn't answered. The records are those below, in the form of
/// Payload.h.
namespace TableProtocol {

inline constexpr char GROUP[] = "TABL";
inline constexpr char SAY[] = "SAYS";  // one SLine; who says it is the server's to tell
inline constexpr char SAID[] = "SAID"; // one SLine

/// In UTF-16 code units. Encoding cuts a longer line, and a payload with one, or with an empty one, doesn't decode.
inline constexpr int MAX_LINE_LENGTH = 200;

struct SLine
{
    quint32 uiTableID = 0;
    QString strText;
    QString strNickname;     ///< Who says it.
    quint8 ucIsObserver = 0; ///< 1 if that one has no seat.

    auto Fields()
    {
        return Payload::List(uiTableID, Payload::SText{strText, MAX_LINE_LENGTH, 1},
                             Payload::SText{strNickname, AccountProtocol::MAX_NICKNAME_LENGTH}, ucIsObserver);
    }
};

struct SLeave
{
    static constexpr char TAG[] = "LEAV";

    quint32 uiTableID = 0;

    auto Fields() { return Payload::List(uiTableID); }
};

} // namespace TableProtocol
