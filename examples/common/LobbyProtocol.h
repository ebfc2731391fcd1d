#pragma once

#include <common/Payload.h>
#include <plugin/GlobalDefines.h>

#include <QByteArray>
#include <QString>
#include <QVector>

/// What the lobby and the game server say to each other, in records of packets of the group "LOBB".
///
/// The client asks with GET_LIST. The server answers with a TABLE for each table and a LIST_END, and from then on
/// sends PLAYER_COUNTS whenever counts have changed. A user who is logged in may ask for a seat with SEAT_REQUEST,
/// and gets a SEAT_ANSWER. The records are those below, in the form of Payload.h.
namespace LobbyProtocol {

inline constexpr char GROUP[] = "LOBB";
inline constexpr char GET_LIST[] = "GLST"; // no fields: the tag is the whole payload
inline constexpr char TABLE[] = "TBLE";
inline constexpr char LIST_END[] = "LEND";
inline constexpr char PLAYER_COUNTS[] = "PCNT";
inline constexpr char SEAT_REQUEST[] = "SEAT";
inline constexpr char SEAT_ANSWER[] = "SANS";

/// A server has no more tables than this, and a client need not keep more.
inline constexpr int MAX_TABLES = 10000;
/// In UTF-16 code units. Encoding cuts a longer name, and a payload with one doesn't decode.
inline constexpr int MAX_NAME_LENGTH = 64;

inline constexpr int GAME_CODE_SIZE = 4;
QByteArray GetGameCode(GlobalDefines::GameType game);

/// Unknown letters and codes decode as what Globals::GetTableType() and its like make of them.
struct STable
{
    static constexpr auto GROUP = LobbyProtocol::GROUP;
    static constexpr auto TAG = TABLE;

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

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(uiID);
        stream.Text(strName, MAX_NAME_LENGTH);
        stream.Letter(eType, &Globals::GetTableType);
        QByteArray game = GetGameCode(eGame);
        stream.Bytes(game, GAME_CODE_SIZE);
        eGame = Globals::GetGameType(QString::fromLatin1(game));
        stream.Letter(eLimit, &Globals::GetLimitType);
        stream.Letter(eMoney, &Globals::GetMoneyType);
        stream.Number(mvLow);
        stream.Number(mvHigh);
        stream.Number(usPlaces);
        stream.Number(usPlayers);
        stream.Number(uiStart);
    }
};

struct SPlayerCount
{
    quint32 uiTableID = 0;
    quint16 usPlayers = 0;

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(uiTableID);
        stream.Number(usPlayers);
    }
};

struct SPlayerCounts
{
    static constexpr auto TAG = PLAYER_COUNTS;

    QVector<SPlayerCount> counts; ///< One at least.

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.List(counts);
    }
};

struct SListEnd
{
    static constexpr auto TAG = LIST_END;

    quint32 uiCount = 0; ///< How many tables the list has.

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(uiCount);
    }
};

struct SSeatRequest
{
    static constexpr auto GROUP = LobbyProtocol::GROUP;
    static constexpr auto TAG = SEAT_REQUEST;

    quint32 uiTableID = 0;

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(uiTableID);
    }
};

/// What became of a request for a seat; one letter.
enum ESeatResult : char {
    SR_UNKNOWN = '-', ///< There is no seat, for a reason that is none of those that the client knows.
    SR_TAKEN = 'T',
    SR_CLOSED = 'C',
    SR_FULL = 'F',
    SR_NOT_LOGGED_IN = 'L',
};

ESeatResult ToSeatResult(char letter);

struct SSeatAnswer
{
    static constexpr auto GROUP = LobbyProtocol::GROUP;
    static constexpr auto TAG = SEAT_ANSWER;

    quint32 uiTableID = 0;
    ESeatResult eResult = SR_UNKNOWN;
    quint16 usPlace = 0; ///< The seat, if there is one.

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(uiTableID);
        stream.Letter(eResult, &ToSeatResult);
        stream.Number(usPlace);
    }
};

/// In as many records as the counts need.
QVector<QByteArray> EncodePlayerCounts(const QVector<SPlayerCount> &counts);

} // namespace LobbyProtocol
