#pragma once

#include <plugin/GlobalDefines.h>

#include <QByteArray>
#include <QString>
#include <QVector>

/// What the lobby and the game server say to each other, in records of packets of the group "LOBB".
///
/// The client asks with GET_LIST. The server answers with a TABLE for each table and a LIST_END, and from then on
/// sends PLAYER_COUNTS whenever counts have changed. A payload is its tag and the fields in the order of the
/// structures below; numbers are little-endian, a text is a 16-bit count of bytes and UTF-8.
///
/// A decoder takes a payload with its tag. It answers false, and changes nothing, unless the fields fill the payload
/// exactly.
namespace LobbyProtocol {

inline constexpr char GROUP[] = "LOBB";
inline constexpr char GET_LIST[] = "GLST";      // no fields: the tag is the whole payload
inline constexpr char TABLE[] = "TBLE";         // one STable
inline constexpr char LIST_END[] = "LEND";      // how many tables the list has, 32 bits
inline constexpr char PLAYER_COUNTS[] = "PCNT"; // one or more SPlayerCount

/// A server has no more tables than this, and a client need not keep more.
inline constexpr int MAX_TABLES = 10000;
/// In UTF-16 code units. Encoding cuts a longer name.
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

QByteArray EncodeGetList();
QByteArray EncodeTable(const STable &table);
QByteArray EncodeListEnd(quint32 count);
/// As many records as the counts need.
QVector<QByteArray> EncodePlayerCounts(const QVector<SPlayerCount> &counts);

bool DecodeTable(const QByteArray &payload, STable &table);
bool DecodeListEnd(const QByteArray &payload, quint32 &count);
bool DecodePlayerCounts(const QByteArray &payload, QVector<SPlayerCount> &counts);

/// The payloads in as few packets as hold them, back to back as they go over the wire.
QByteArray ToPackets(const QVector<QByteArray> &payloads);

} // namespace LobbyProtocol
