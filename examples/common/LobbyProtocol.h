#pragma once

#include <plugin/GlobalDefines.h>

#include <QByteArray>
#include <QString>
#include <QVector>

/// What the lobby and the game server say to each other, in records of packets of the group "LOBB".
///
/// The client asks with GET_LIST. The server answers with a TABLE for each table and a LIST_END, and from then on
/// sends PLAYER_COUNTS whenever counts have changed. A user who is logged in may ask for a seat with SEAT_REQUEST,
/// and gets a SEAT_ANSWER. The fields of a payload stand in the order of the structures below, in the form of
/// Payload.h.
///
/// A decoder takes a payload with its tag. It answers false, and changes nothing, unless the fields fill the payload
/// exactly.
namespace LobbyProtocol {

inline constexpr char GROUP[] = "LOBB";
inline constexpr char GET_LIST[] = "GLST";      // no fields: the tag is the whole payload
inline constexpr char TABLE[] = "TBLE";         // one STable
inline constexpr char LIST_END[] = "LEND";      // how many tables the list has, 32 bits
inline constexpr char PLAYER_COUNTS[] = "PCNT"; // one or more SPlayerCount
inline constexpr char SEAT_REQUEST[] = "SEAT";  // id of a table, 32 bits
inline constexpr char SEAT_ANSWER[] = "SANS";   // one SSeatAnswer

/// A server has no more tables than this, and a client need not keep more.
inline constexpr int MAX_TABLES = 10000;
/// In UTF-16 code units. Encoding cuts a longer name, and a payload with one doesn't decode.
inline constexpr int MAX_NAME_LENGTH = 64;

/// Unknown letters and codes decode as what Globals::GetTableType() and its like make of them.
struct STable
{
    quint32 uiID = 0; ///< Unique and lasting: the same table has it in the next list too.
    QString strName;
    GlobalDefines::TableType eType = GlobalDefines::TT_NORMAL;         ///< One letter.
    GlobalDefines::GameType eGame = GlobalDefines::GT_HOLDEM;          ///< Four letters.
    GlobalDefines::LimitType eLimit = GlobalDefines::LT_NO_LIMIT;      ///< One letter.
    GlobalDefines::MoneyType eMoney = GlobalDefines::MONEYTYPE_DOLLAR; ///< One letter.
    GlobalDefines::MoneyValue mvLow = 0;                               ///< Lower stake, or the buy-in.
    GlobalDefines::MoneyValue mvHigh = 0;                              ///< Higher stake, or the fee.
    quint16 usPlaces = 0;                                              ///< Seats, or the most players that may enter.
    quint16 usPlayers = 0;
    quint32 uiStart = 0; ///< Seconds since 1970 UTC, 0 if the table has no start time.
};

struct SPlayerCount
{
    quint32 uiTableID = 0;
    quint16 usPlayers = 0;
};

/// What became of a request for a seat; one letter.
enum ESeatResult : char {
    SR_UNKNOWN = '-', ///< There is no seat, for a reason that is none of those that the client knows.
    SR_TAKEN = 'T',
    SR_CLOSED = 'C',
    SR_FULL = 'F',
    SR_NOT_LOGGED_IN = 'L',
};

struct SSeatAnswer
{
    quint32 uiTableID = 0;
    ESeatResult eResult = SR_UNKNOWN;
    quint16 usPlace = 0; ///< The seat, if there is one.
};

QByteArray EncodeGetList();
QByteArray EncodeTable(const STable &table);
QByteArray EncodeListEnd(quint32 count);
QByteArray EncodeSeatRequest(quint32 tableID);
QByteArray EncodeSeatAnswer(const SSeatAnswer &answer);
/// As many records as the counts need.
QVector<QByteArray> EncodePlayerCounts(const QVector<SPlayerCount> &counts);

bool DecodeTable(const QByteArray &payload, STable &table);
bool DecodeListEnd(const QByteArray &payload, quint32 &count);
bool DecodeSeatRequest(const QByteArray &payload, quint32 &tableID);
bool DecodeSeatAnswer(const QByteArray &payload, SSeatAnswer &answer);
bool DecodePlayerCounts(const QByteArray &payload, QVector<SPlayerCount> &counts);

/// See Payload::ToPackets().
QByteArray ToPackets(const QVector<QByteArray> &payloads);

} // namespace LobbyProtocol
