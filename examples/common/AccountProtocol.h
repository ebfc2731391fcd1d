#pragma once

#include <plugin/GlobalDefines.h>

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
/// The fields of a payload stand in the order of the structures below, in the form of Payload.h. A decoder takes a
/// payload with its tag. It answers false, and changes nothing, unless the fields fill the payload exactly.
namespace AccountProtocol {

inline constexpr char GROUP[] = "ACCT";
inline constexpr char LOGIN[] = "LGIN";       // one SLogin
inline constexpr char LOGOUT[] = "LGOT";      // no fields
inline constexpr char ACCEPTED[] = "LGOK";    // one SAccount
inline constexpr char REFUSED[] = "LGRF";     // one SRefusal
inline constexpr char WEB_REQUEST[] = "WEBR"; // one SWebRequest
inline constexpr char WEB_SESSION[] = "WEBS"; // one SWebSession

inline constexpr char TIME_GROUP[] = "TIME";
inline constexpr char TIME[] = "SECS"; // seconds since 1970 UTC, 32 bits

inline constexpr char CASINO_GROUP[] = "CASI";
inline constexpr char JACKPOT[] = "JPOT"; // one SJackpot

/// In UTF-16 code units. Encoding cuts a longer nickname, and a payload with one doesn't decode.
inline constexpr int MAX_NICKNAME_LENGTH = 32;
/// Of HashPassword().
inline constexpr int HASH_LENGTH = 64;
/// Of a machine's name, and of a web session.
inline constexpr int MAX_WEB_TEXT_LENGTH = 64;

struct SLogin
{
    QString strNickname;
    QString strHash;
};

struct SAccount
{
    QString strNickname; ///< As the account spells it, which may differ in case from what was asked for.
    GlobalDefines::MoneyType eCurrency = GlobalDefines::MONEYTYPE_UNKNOWN; ///< Of the real money; one letter.
    GlobalDefines::MoneyValue mvReal = 0;
    GlobalDefines::MoneyValue mvPlay = 0;
};

/// Why a login is refused; one letter.
enum ERefusal : char {
    RF_UNKNOWN = '-', ///< The server's reason is none of those that the client knows.
    RF_BAD_NICKNAME = 'B',
    RF_NO_ACCOUNT = 'N',
    RF_WRONG_PASSWORD = 'P',
};

struct SRefusal
{
    QString strNickname; ///< As it was asked for.
    ERefusal eReason = RF_UNKNOWN;
};

/// Asks for a session on the web server, in the name of the user whose link it is.
struct SWebRequest
{
    quint8 ucLink = 0;  ///< What for, of WebLinks::id: SettingsSyncFetch or SettingsSyncSend, or it doesn't decode.
    QString strMachine; ///< Tells the user's machines apart.
};

struct SWebSession
{
    quint8 ucLink = 0;  ///< As it was asked for.
    QString strSession; ///< Empty if there is none: the web server is away or refuses, or nobody is logged in.
};

/// The bad beat jackpot.
struct SJackpot
{
    GlobalDefines::MoneyType eCurrency = GlobalDefines::MONEYTYPE_UNKNOWN; ///< One letter.
    GlobalDefines::MoneyValue mvAmount = 0;
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

QByteArray EncodeLogin(const SLogin &login);
QByteArray EncodeLogout();
QByteArray EncodeAccepted(const SAccount &account);
QByteArray EncodeRefused(const SRefusal &refusal);
QByteArray EncodeWebRequest(const SWebRequest &request);
QByteArray EncodeWebSession(const SWebSession &session);
QByteArray EncodeTime(quint32 seconds);
QByteArray EncodeJackpot(const SJackpot &jackpot);

bool DecodeLogin(const QByteArray &payload, SLogin &login);
bool DecodeAccepted(const QByteArray &payload, SAccount &account);
bool DecodeRefused(const QByteArray &payload, SRefusal &refusal);
bool DecodeWebRequest(const QByteArray &payload, SWebRequest &request);
bool DecodeWebSession(const QByteArray &payload, SWebSession &session);
bool DecodeTime(const QByteArray &payload, quint32 &seconds);
bool DecodeJackpot(const QByteArray &payload, SJackpot &jackpot);

/// A packet of the payload's group with this one record.
QByteArray ToPacket(const QByteArray &payload);

} // namespace AccountProtocol
