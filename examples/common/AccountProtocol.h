#pragma once

#include <common/Payload.h>
#include <plugin/GlobalDefines.h>
#include <plugin/WebLinks.h>

#include <QByteArray>
#include <QString>

/// What the client and the game server say to each other about the user's account, in records of packets of the group
/// "ACCT", the server's clock in packets of the group "TIME", and the jackpot in packets of the group "CASI".
///
/// The client logs in with LOGIN, the only record of its packet, and the server answers ACCEPTED or REFUSED. From
/// then on the link is the user's, until LOGOUT, another LOGIN, or its end. The server sends TIME unasked: as the
/// first packet of a link, and every now and then. Whoever has asked for the list of tables gets a JACKPOT each time
/// that it has grown. For a web page that wants to know its user, the client asks with WEB_REQUEST, and the server
/// answers with WEB_SESSION once it has asked the web server.
///
/// The records are those below, in the form of Payload.h.
namespace AccountProtocol {

inline constexpr char GROUP[] = "ACCT";
inline constexpr char LOGIN[] = "LGIN";
inline constexpr char LOGOUT[] = "LGOT"; // no fields: the tag is the whole payload
inline constexpr char ACCEPTED[] = "LGOK";
inline constexpr char REFUSED[] = "LGRF";
inline constexpr char WEB_REQUEST[] = "WEBR";
inline constexpr char WEB_SESSION[] = "WEBS";

inline constexpr char TIME_GROUP[] = "TIME";
inline constexpr char TIME[] = "SECS";

inline constexpr char CASINO_GROUP[] = "CASI";
inline constexpr char JACKPOT[] = "JPOT";

/// In UTF-16 code units. Encoding cuts a longer nickname, and a payload with one doesn't decode.
inline constexpr int MAX_NICKNAME_LENGTH = 32;
/// Of HashPassword().
inline constexpr int HASH_LENGTH = 64;
/// Of a machine's name, and of a web session.
inline constexpr int MAX_WEB_TEXT_LENGTH = 64;

struct SLogin
{
    static constexpr auto GROUP = AccountProtocol::GROUP;
    static constexpr auto TAG = LOGIN;

    QString strNickname;
    QString strHash;

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Text(strNickname, MAX_NICKNAME_LENGTH);
        stream.Text(strHash, HASH_LENGTH);
    }
};

struct SAccount
{
    static constexpr auto GROUP = AccountProtocol::GROUP;
    static constexpr auto TAG = ACCEPTED;

    QString strNickname; ///< As the account spells it, which may differ in case from what was asked for.
    GlobalDefines::MoneyType eCurrency = GlobalDefines::MONEYTYPE_UNKNOWN; ///< Of the real money; one letter.
    GlobalDefines::MoneyValue mvReal = 0;
    GlobalDefines::MoneyValue mvPlay = 0;

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Text(strNickname, MAX_NICKNAME_LENGTH);
        stream.Letter(eCurrency, &Globals::GetMoneyType);
        stream.Number(mvReal);
        stream.Number(mvPlay);
    }
};

/// Why a login is refused; one letter.
enum ERefusal : char {
    RF_UNKNOWN = '-', ///< The server's reason is none of those that the client knows.
    RF_BAD_NICKNAME = 'B',
    RF_NO_ACCOUNT = 'N',
    RF_WRONG_PASSWORD = 'P',
};

ERefusal ToRefusal(char letter);

struct SRefusal
{
    static constexpr auto GROUP = AccountProtocol::GROUP;
    static constexpr auto TAG = REFUSED;

    QString strNickname; ///< As it was asked for.
    ERefusal eReason = RF_UNKNOWN;

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Text(strNickname, MAX_NICKNAME_LENGTH);
        stream.Letter(eReason, &ToRefusal);
    }
};

/// Asks for a session on the web server, in the name of the user whose link it is.
struct SWebRequest
{
    static constexpr auto GROUP = AccountProtocol::GROUP;
    static constexpr auto TAG = WEB_REQUEST;

    quint8 ucLink = 0;  ///< What for, of WebLinks::id: SettingsSyncFetch or SettingsSyncSend, or it doesn't decode.
    QString strMachine; ///< Tells the user's machines apart.

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(ucLink);
        stream.Text(strMachine, MAX_WEB_TEXT_LENGTH);
        stream.Require(ucLink == WebLinks::SettingsSyncFetch || ucLink == WebLinks::SettingsSyncSend);
    }
};

struct SWebSession
{
    static constexpr auto GROUP = AccountProtocol::GROUP;
    static constexpr auto TAG = WEB_SESSION;

    quint8 ucLink = 0;  ///< As it was asked for.
    QString strSession; ///< Empty if there is none: the web server is away or refuses, or nobody is logged in.

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(ucLink);
        stream.Text(strSession, MAX_WEB_TEXT_LENGTH);
    }
};

/// The server's clock.
struct STime
{
    static constexpr auto GROUP = TIME_GROUP;
    static constexpr auto TAG = TIME;

    quint32 uiSeconds = 0; ///< Since 1970 UTC.

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Number(uiSeconds);
    }
};

/// The bad beat jackpot.
struct SJackpot
{
    static constexpr auto GROUP = CASINO_GROUP;
    static constexpr auto TAG = JACKPOT;

    GlobalDefines::MoneyType eCurrency = GlobalDefines::MONEYTYPE_UNKNOWN; ///< One letter.
    GlobalDefines::MoneyValue mvAmount = 0;

    template <typename Stream>
    void Fields(Stream &stream)
    {
        stream.Letter(eCurrency, &Globals::GetMoneyType);
        stream.Number(mvAmount);
    }
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
