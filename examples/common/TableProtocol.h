#pragma once

#include <QByteArray>
#include <QString>

/// What a table and the game server say to each other, in records of packets of the group "TABL". The seat itself is
/// the lobby's, see LobbyProtocol.
///
/// Whoever is logged in may say a line with SAY. It goes as SAID to all who have a seat at the table, and thus to a
/// speaker who has one. LEAVE gives the seat back; it isn't answered. Fields, and what a decoder answers, are as in
/// LobbyProtocol.
namespace TableProtocol {

inline constexpr char GROUP[] = "TABL";
inline constexpr char SAY[] = "SAYS";   // one SLine; who says it is the server's to tell
inline constexpr char SAID[] = "SAID";  // one SLine
inline constexpr char LEAVE[] = "LEAV"; // id of a table, 32 bits

/// In UTF-16 code units. Encoding cuts a longer line, and a payload with one, or with an empty one, doesn't decode.
inline constexpr int MAX_LINE_LENGTH = 200;

struct SLine
{
    quint32 uiTableID = 0;
    QString strText;
    QString strNickname;     ///< Who says it.
    quint8 ucIsObserver = 0; ///< 1 if that one has no seat.
};

/// \a tag is SAY or SAID.
QByteArray EncodeLine(const char *tag, const SLine &line);
QByteArray EncodeLeave(quint32 tableID);

bool DecodeLine(const char *tag, const QByteArray &payload, SLine &line);
bool DecodeLeave(const QByteArray &payload, quint32 &tableID);

} // namespace TableProtocol
