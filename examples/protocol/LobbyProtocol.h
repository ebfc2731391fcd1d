#pragma once

#include <plugin/GlobalDefines.h>
#include <protocol/Payload.h>

#include <QByteArray>
#include <QString>
#include <QVector>

#include <tuple>

/// The records that the lobby and the game server exchange in packets of the group "LOBB".
///
/// The client sends GET_LIST. The server answers with an STable for each table and an SListEnd, and from then on
/// sends SPlayerCounts whenever counts have changed. A logged-in user may request a seat with SSeatRequest, which the
/// server answers with SSeatAnswer. The records are in the form of Payload.h.
namespace LobbyProtocol {

inline constexpr char GROUP[] = "LOBB";
inline constexpr char GET_LIST[] = "GLST"; // no fields: the tag is the whole payload

/// The largest number of tables that a server has and a client has to store.
inline constexpr int MAX_TABLES = 10000;
/// The longest name, in UTF-16 code units. Encoding cuts a longer one, and a payload with one doesn't decode.
inline constexpr int MAX_NAME_LENGTH = 64;

struct STable
{
    static constexpr char TAG[] = "TBLE";

    quint32 uiID = 0; ///< Unique and permanent: the same table has the same id in the next list.
    QString strName;
    GlobalDefines::TableType eType = GlobalDefines::TT_NORMAL;
    GlobalDefines::GameType eGame = GlobalDefines::GT_HOLDEM;
    GlobalDefines::LimitType eLimit = GlobalDefines::LT_NO_LIMIT;
    GlobalDefines::MoneyType eMoney = GlobalDefines::MONEYTYPE_DOLLAR;
    GlobalDefines::MoneyValue mvLow = 0;  ///< Lower stake, or the buy-in.
    GlobalDefines::MoneyValue mvHigh = 0; ///< Higher stake, or the fee.
    quint16 usPlaces = 0;                 ///< Seats, or the largest number of players.
    quint16 usPlayers = 0;
    quint32 uiStart = 0; ///< Seconds since 1970 UTC, 0 if the table has no start time.

    auto Fields()
    {
        return Payload::List(uiID, Payload::SText{strName, MAX_NAME_LENGTH}, eType, eGame, eLimit, eMoney, mvLow,
                             mvHigh, usPlaces, usPlayers, uiStart);
    }

    friend bool operator==(const STable &left, const STable &right)
    {
        const auto values = [](const STable &table) {
            return std::tie(table.uiID, table.strName, table.eType, table.eGame, table.eLimit, table.eMoney,
                            table.mvLow, table.mvHigh, table.usPlaces, table.usPlayers, table.uiStart);
        };
        return values(left) == values(right);
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

    QVector<SPlayerCount> counts; ///< At least one.

    auto Fields() { return Payload::List(counts); }
};

struct SListEnd
{
    static constexpr char TAG[] = "LEND";

    quint32 uiCount = 0; ///< The number of tables in the list.

    auto Fields() { return Payload::List(uiCount); }
};

struct SSeatRequest
{
    static constexpr char TAG[] = "SEAT";

    quint32 uiTableID = 0;

    auto Fields() { return Payload::List(uiTableID); }
};

/// The result of a seat request.
enum ESeatResult : char {
    SR_UNKNOWN = '-', ///< Also any other letter: there is no seat, and the client doesn't know why.
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
    quint16 usPlace = 0; ///< The place, if the user has one.

    auto Fields() { return Payload::List(uiTableID, eResult, usPlace); }
};

/// Encodes the counts in as many records as they need.
inline QVector<QByteArray> EncodePlayerCounts(const QVector<SPlayerCount> &counts)
{
    constexpr int COUNTS_IN_A_RECORD = 1000; // 6000 bytes
    QVector<QByteArray> payloads;
    for (int i = 0; i < counts.size(); i += COUNTS_IN_A_RECORD)
        payloads.append(Payload::Encode(SPlayerCounts{counts.mid(i, COUNTS_IN_A_RECORD)}));
    return payloads;
}

} // namespace LobbyProtocol
