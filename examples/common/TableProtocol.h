#pragma once

#include <common/AccountProtocol.h>
#include <common/Payload.h>

/// What a table and the game server say to each other, in records of packets of the group "TABL". The seat itself is
/// the lobby's, see LobbyProtocol.
///
/// Whoever is logged in may say a line with SAY. It goes as SAID to all who have a seat at the table, and thus to a
/// speaker who has one. LEAVE gives the seat back; it isn't answered. The records
/// are those below, in the form of Payload.h.
namespace TableProtocol {

inline constexpr char GROUP[] = "TABL";
inline constexpr char SAY[] = "SAYS";  // one SLine; who says it is the server's to tell
inline constexpr char SAID[] = "SAID"; // one SLine
inline constexpr char LEAVE[] = "LEAV";

/// In UTF-16 code units. Encoding cuts a longer line, and a payload with one, or with an empty one, doesn't decode.
inline constexpr int MAX_LINE_LENGTH = 200;

struct SLine
{
    static constexpr auto GROUP = TableProtocol::GROUP;

    quint32 uiTableID = 0;
    QString strText;
    QString strNickname;     ///< Who says it.
    quint8 ucIsObserver = 0; ///< 1 if that one has no seat.

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(uiTableID);
        stream.Text(strText, MAX_LINE_LENGTH);
        stream.Require(!strText.isEmpty());
        stream.Text(strNickname, AccountProtocol::MAX_NICKNAME_LENGTH);
        stream.Number(ucIsObserver);
    }
};

struct SLeave
{
    static constexpr auto GROUP = TableProtocol::GROUP;
    static constexpr auto TAG = LEAVE;

    quint32 uiTableID = 0;

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(uiTableID);
    }
};

} // namespace TableProtocol
