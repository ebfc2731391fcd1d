#pragma once

#include <protocol/AccountProtocol.h>
#include <protocol/Payload.h>

/// The records that a table and the game server exchange in packets of the group "TABL". LobbyProtocol has those that
/// request a seat.
///
/// A logged-in user may say a line with SAY. The server sends it as SAID to all who have a seat at the table,
/// including the speaker. SLeave gives the seat back; the server doesn't answer it. The records are in the form of
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

struct SLeave
{
    static constexpr char TAG[] = "LEAV";

    quint32 uiTableID = 0;

    auto Fields() { return Payload::List(uiTableID); }
};

} // namespace TableProtocol
