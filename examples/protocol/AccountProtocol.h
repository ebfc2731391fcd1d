#pragma once

#include <plugin/GlobalDefines.h>
#include <plugin/WebLinks.h>
#include <protocol/Payload.h>

#include <QByteArray>
#include <QString>

/// What the client and the game server say to each other about the user's account, in records of packets of the group
/// "ACCT", the server's clock in packets of the group "TIME", and the jackpot in packets of the group "CASI".
///
/// The client logs in with SLogin, the only record of its packet, and the server answers SAccount or SRefusal. From
/// then on the link is the user's, until LOGOUT, another SLogin, or its end. The server sends STime unasked: as the
/// first packet of a link, and every now and then. Whoever has asked for the list of tables gets a SJackpot each time
/// that it has grown. For a web page that wants to know its user, the client asks with SWebRequest, and the server
/// answers with SWebSession once it has asked the web server. GET_BALANCES is answered with the balances of the user
/// whose link it is, or not at all if that is nobody's.
///
/// The records are those below, in the form of Payload.h.
namespace AccountProtocol {

inline constexpr char GROUP[] = "ACCT";
inline constexpr char LOGOUT[] = "LGOT";       // no fields: the tag is the whole payload
inline constexpr char GET_BALANCES[] = "BALQ"; // no fields either
inline constexpr char BALANCES[] = "BALS";     // one SAccount
inline constexpr char TIME_GROUP[] = "TIME";
inline constexpr char CASINO_GROUP[] = "CASI";

/// In UTF-16 code units. Encoding cuts a longer nickname, and a payload with one doesn't decode.
inline constexpr int MAX_NICKNAME_LENGTH = 32;
/// Of HashPassword().
inline constexpr int HASH_LENGTH = 64;
/// Of a machine's name, and of a web session.
inline constexpr int MAX_WEB_TEXT_LENGTH = 64;

struct SLogin
{
    static constexpr char TAG[] = "LGIN";

    QString strNickname;
    QString strHash;

    auto Fields()
    {
        return Payload::List(Payload::SText{strNickname, MAX_NICKNAME_LENGTH}, Payload::SText{strHash, HASH_LENGTH});
    }
};

struct SAccount
{
    static constexpr char TAG[] = "LGOK";

    QString strNickname; ///< As the account spells it, which may differ in case from what was asked for.
    GlobalDefines::MoneyType eCurrency = GlobalDefines::MONEYTYPE_UNKNOWN; ///< Of the real money.
    GlobalDefines::MoneyValue mvReal = 0;
    GlobalDefines::MoneyValue mvPlay = 0;

    auto Fields()
    {
        return Payload::List(Payload::SText{strNickname, MAX_NICKNAME_LENGTH}, eCurrency, mvReal, mvPlay);
    }
};

/// Why a login is refused.
enum ERefusal : char {
    RF_UNKNOWN = '-', ///< Like any other letter: the client doesn't know the reason.
    RF_BAD_NICKNAME = 'B',
    RF_NO_ACCOUNT = 'N',
    RF_WRONG_PASSWORD = 'P',
};

struct SRefusal
{
    static constexpr char TAG[] = "LGRF";

    QString strNickname; ///< As it was asked for.
    ERefusal eReason = RF_UNKNOWN;

    auto Fields() { return Payload::List(Payload::SText{strNickname, MAX_NICKNAME_LENGTH}, eReason); }
};

/// Asks for a session on the web server, in the name of the user whose link it is.
struct SWebRequest
{
    static constexpr char TAG[] = "WEBR";

    quint8 ucLink = 0;  ///< What for, of WebLinks::id: SettingsSyncFetch or SettingsSyncSend.
    QString strMachine; ///< Tells the user's machines apart.

    auto Fields() { return Payload::List(ucLink, Payload::SText{strMachine, MAX_WEB_TEXT_LENGTH}); }
};

struct SWebSession
{
    static constexpr char TAG[] = "WEBS";

    quint8 ucLink = 0;  ///< As it was asked for.
    QString strSession; ///< Empty if there is none: the web server is away or refuses, or nobody is logged in.

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

/// Whether a user may be called so: 1 to 32 characters that print, with no space around them.
bool IsNickname(const QString &text);

/// SHA-256 of the password's UTF-8, in 64 lower-case hexadecimal digits: what goes over the link and what the server
/// keeps, so that neither shows a password that its user may have elsewhere too.
///
/// It protects nothing else. The link isn't encrypted, and whoever sees the hash there can log in with it as with the
/// password itself. Nor is it salted or slow to compute, so that a password that can be guessed is found from it. A
/// real server has an encrypted link and keeps a salted hash that is made for passwords.
QString HashPassword(const QString &password);

} // namespace AccountProtocol
