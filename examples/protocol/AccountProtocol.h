#pragma once

#include <plugin/GlobalDefines.h>
#include <plugin/WebLinks.h>
#include <protocol/Payload.h>

#include <QByteArray>
#include <QString>

/// The records that the client and the game server exchange about the user's account in packets of the group "ACCT",
/// the server's clock in packets of the group "TIME", and the jackpot in packets of the group "CASI".
///
/// The client logs in with SLogin or STokenLogin, the only record of its packet, and the server answers with SAccount
/// or SRefusal. Before an SAccount that answers a password it sends SToken, with which the client logs in from then
/// on, unless it can't keep one. The connection belongs to the user until LOGOUT, LOGOUT_EVERYWHERE or LEAVE, another
/// login, or its end. The first two take back the token of the login, or all of the user's, and end the connections
/// that use them. The server sends STime without a request: as the first packet of a connection, and at intervals. It
/// sends an SJackpot to each client that has requested the list of tables whenever the jackpot has grown. For a web
/// page that has to know its user, the client sends SWebRequest, and the server answers with SWebSession when the web
/// server has answered it, unless the login has ended by then. It answers GET_BALANCES with the balances of the
/// logged-in user, or not at all if there is none.
///
/// The records are in the form of Payload.h.
namespace AccountProtocol {

inline constexpr char GROUP[] = "ACCT";
inline constexpr char LOGOUT[] = "LGOT"; // no fields: the tag is the whole payload
inline constexpr char LOGOUT_EVERYWHERE[] = "LGOA";
inline constexpr char LEAVE[] = "LGLV";        // a logout that takes back nothing: the user's machine keeps its token
inline constexpr char GET_BALANCES[] = "BALQ"; // no fields either
inline constexpr char BALANCES[] = "BALS";     // one SAccount
inline constexpr char TIME_GROUP[] = "TIME";
inline constexpr char CASINO_GROUP[] = "CASI";

/// The longest nickname, in UTF-16 code units. Encoding cuts a longer one, and a payload with one doesn't decode.
inline constexpr int MAX_NICKNAME_LENGTH = 32;
/// The longest password, in UTF-16 code units.
inline constexpr int MAX_PASSWORD_LENGTH = 128;
/// The length of a token, in hexadecimal digits.
inline constexpr int TOKEN_LENGTH = 64;
/// The longest name of a machine, and the longest web session.
inline constexpr int MAX_WEB_TEXT_LENGTH = 64;

/// Logs in with the password itself: only over a connection that nobody else can read.
struct SLogin
{
    static constexpr char TAG[] = "LGIN";

    QString strNickname;
    QString strPassword;

    auto Fields()
    {
        return Payload::List(Payload::SText{strNickname, MAX_NICKNAME_LENGTH},
                             Payload::SText{strPassword, MAX_PASSWORD_LENGTH});
    }
};

/// Logs in with the token of an earlier login.
struct STokenLogin
{
    static constexpr char TAG[] = "LGTK";

    QString strNickname;
    QString strToken;

    auto Fields()
    {
        return Payload::List(Payload::SText{strNickname, MAX_NICKNAME_LENGTH},
                             Payload::SText{strToken, TOKEN_LENGTH});
    }
};

/// What stands for the user's password on one machine: random, of no use elsewhere, and for the server to take back.
struct SToken
{
    static constexpr char TAG[] = "LGTN";

    QString strToken;

    auto Fields() { return Payload::List(Payload::SText{strToken, TOKEN_LENGTH, TOKEN_LENGTH}); }
};

struct SAccount
{
    static constexpr char TAG[] = "LGOK";

    QString strNickname; ///< In the spelling of the account, which may differ in case from the login.
    GlobalDefines::MoneyType eCurrency = GlobalDefines::MONEYTYPE_UNKNOWN; ///< The currency of the real money.
    GlobalDefines::MoneyValue mvReal = 0;
    GlobalDefines::MoneyValue mvPlay = 0;

    auto Fields()
    {
        return Payload::List(Payload::SText{strNickname, MAX_NICKNAME_LENGTH}, eCurrency, mvReal, mvPlay);
    }
};

/// The reason for which a login is refused.
enum ERefusal : char {
    RF_UNKNOWN = '-', ///< Also any other letter: the client doesn't know the reason.
    RF_BAD_NICKNAME = 'B',
    RF_NO_ACCOUNT = 'N',
    RF_WRONG_PASSWORD = 'P',
    RF_TOO_MANY = 'M',    ///< Too many wrong passwords: the server doesn't look at this one. Later it will.
    RF_BUSY = 'O',        ///< The server has too much to do to look at a password. Soon it will.
    RF_TOKEN_ENDED = 'T', ///< The token is too old, or one of too many, or taken back, or of another password.
    RF_UNPROTECTED = 'U', ///< Others may be able to read the connection.
};

struct SRefusal
{
    static constexpr char TAG[] = "LGRF";

    QString strNickname; ///< In the spelling of the login.
    ERefusal eReason = RF_UNKNOWN;

    auto Fields() { return Payload::List(Payload::SText{strNickname, MAX_NICKNAME_LENGTH}, eReason); }
};

/// Requests a session on the web server in the name of the logged-in user.
struct SWebRequest
{
    static constexpr char TAG[] = "WEBR";

    quint8 ucLink = 0;  ///< The purpose, of WebLinks::id: SettingsSyncFetch or SettingsSyncSend.
    QString strMachine; ///< Tells the user's machines apart.

    auto Fields() { return Payload::List(ucLink, Payload::SText{strMachine, MAX_WEB_TEXT_LENGTH}); }
};

struct SWebSession
{
    static constexpr char TAG[] = "WEBS";

    quint8 ucLink = 0;  ///< The purpose, as in the request.
    QString strSession; ///< Empty if there is none, for whatever reason: nobody is logged in, or there were too many.

    auto Fields() { return Payload::List(ucLink, Payload::SText{strSession, MAX_WEB_TEXT_LENGTH}); }
};

/// The server's clock.
struct STime
{
    static constexpr char TAG[] = "SECS";

    quint32 uiSeconds = 0; ///< Since 1970 UTC.

    auto Fields() { return Payload::List(uiSeconds); }
};

/// The bad beat jackpot.
struct SJackpot
{
    static constexpr char TAG[] = "JPOT";

    GlobalDefines::MoneyType eCurrency = GlobalDefines::MONEYTYPE_UNKNOWN;
    GlobalDefines::MoneyValue mvAmount = 0;

    auto Fields() { return Payload::List(eCurrency, mvAmount); }
};

/// Returns whether a nickname is allowed: 1 to 32 printable characters, without a space at either end.
bool IsNickname(const QString &text);

} // namespace AccountProtocol
