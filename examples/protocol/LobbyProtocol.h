#pragma once

#include <plugin/GlobalDefines.h>
#include <protocol/Payload.h>

#include <QByteArray>
#include <QString>
#include <QVector>

/// What the lobby and the game server say to each other, in records of packets of the group "LOBB".
///
/// The client asks with GET_LIST. The server answers with a STable for each table and a SListEnd, and from then on
/// sends SPlayerCounts whenever counts have changed. A user who is logged in may ask for a seat with SSeatRequest,
/// and gets a SSeatAnswer. The records are those below, in the form of Payload.h.
namespace LobbyProtocol {

inline constexpr char GROUP[] = "LOBB";
inline constexpr char GET_LIST[] = "GLST"; // no fields: the tag is the whole payload

/// A server has no more tables than this, and a client need not keep more.
inline constexpr int MAX_TABLES = 10000;
/// In UTF-16 code units. Encoding cuts a longer name, and a payload with one doesn't decode.
inline constexpr int MAX_NAME_LENGTH = 64;

struct STable
{
    static constexpr char TAG[] = "TBLE";

    quint32 uiID = 0; ///< Unique and lasting: the same table has it in the next list too.
    QString strName;
    GlobalDefines::TableType eType = GlobalDefines::TT_NORMAL;
    GlobalDefines::GameType eGame = GlobalDefines::GT_HOLDEM;
    GlobalDefines::LimitType eLimit = GlobalDefines::LT_NO_LIMIT;
    GlobalDefines::MoneyType eMoney = GlobalDefines::MONEYTYPE_DOLLAR;
    GlobalDefines::MoneyValue mvLow = 0;  ///< Lower stake, or the buy-in.
    GlobalDefines::MoneyValue mvHigh = 0; ///< Higher stake, or the fee.
    quint16 usPlaces = 0;                 ///< Seats, or the most players that may enter.
    quint16 usPlayers = 0;
    quint32 uiStart = 0; ///< Seconds since 1970 UTC, 0 if the table has no start time.

    auto Fields()
    {
        return Payload::List(uiID, Payload::SText{strName, MAX_NAME_LENGTH}, eType, eGame, eLimit, eMoney, mvLow,
                             mvHigh, usPlaces, usPlayers, uiStart);
    }
};

struct SPlayerCount
{
    quint32 uiTableID = 0;
    quint16 usPlayers = 0;

    auto Fields() { return Payload::List(uiTableID, usPlayers); }
};

struct SPlayerCounts
{
    static constexpr char TAG[] = "PCNT";

    QVector<SPlayerCount> counts; ///< One at least.

    auto Fields() { return Payload::List(counts); }
};

struct SListEnd
{
    static constexpr char TAG[] = "LEND";

    quint32 uiCount = 0; ///< How many tables the list has.

    auto Fields() { return Payload::List(uiCount); }
};

struct SSeatRequest
{
    static constexpr char TAG[] = "SEAT";

    quint32 uiTableID = 0;

    auto Fields() { return Payload::List(uiTableID); }
};

/// What became of a request for a seat.
enum ESeatResult : char {
    SR_UNKNOWN = '-', ///< Like any other letter: there is no seat, and the client doesn't know why.
    SR_TAKEN = 'T',
    SR_CLOSED = 'C',
    SR_FULL = 'F',
    SR_NOT_LOGGED_IN = 'L',
};

struct SSeatAnswer
{
    static constexpr char TAG[] = "SANS";

    quint32 uiTableID = 0;
    ESeatResult eResult = SR_UNKNOWN;
    quint16 usPlace = 0; ///< The seat, if there is one.

    auto Fields() { return Payload::List(uiTableID, eResult, usPlace); }
};

/// In as many records as the counts need.
inline QVector<QByteArray> EncodePlayerCounts(const QVector<SPlayerCount> &counts)
{
    constexpr int COUNTS_IN_A_RECORD = 1000; // 6000 bytes
    QVector<QByteArray> payloads;
    for (int i = 0; i < counts.size(); i += COUNTS_IN_A_RECORD)
        payloads.append(Payload::Encode(SPlayerCounts{counts.mid(i, COUNTS_IN_A_RECORD)}));
    return payloads;
}

} // namespace LobbyProtocol
