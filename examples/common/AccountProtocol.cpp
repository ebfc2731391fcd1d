#include "AccountProtocol.h"

#include "Payload.h"

#include <plugin/WebLinks.h>

#include <QCryptographicHash>

#include <algorithm>

namespace AccountProtocol {

namespace {

constexpr auto LOGIN_FIELDS = [](auto &payload, SLogin &login) {
    payload.Text(login.strNickname, MAX_NICKNAME_LENGTH);
    payload.Text(login.strHash, HASH_LENGTH);
};

constexpr auto ACCOUNT_FIELDS = [](auto &payload, SAccount &account) {
    payload.Text(account.strNickname, MAX_NICKNAME_LENGTH);
    payload.Letter(account.eCurrency, &Globals::GetMoneyType);
    payload.Number(account.mvReal);
    payload.Number(account.mvPlay);
};

ERefusal ToRefusal(char letter)
{
    switch (letter) {
    case RF_BAD_NICKNAME:
    case RF_NO_ACCOUNT:
    case RF_WRONG_PASSWORD:
        return static_cast<ERefusal>(letter);
    default:
        return RF_UNKNOWN;
    }
}

constexpr auto REFUSAL_FIELDS = [](auto &payload, SRefusal &refusal) {
    payload.Text(refusal.strNickname, MAX_NICKNAME_LENGTH);
    payload.Letter(refusal.eReason, &ToRefusal);
};

constexpr auto WEB_REQUEST_FIELDS = [](auto &payload, SWebRequest &request) {
    payload.Number(request.ucLink);
    payload.Text(request.strMachine, MAX_WEB_TEXT_LENGTH);
};

constexpr auto WEB_SESSION_FIELDS = [](auto &payload, SWebSession &session) {
    payload.Number(session.ucLink);
    payload.Text(session.strSession, MAX_WEB_TEXT_LENGTH);
};

constexpr auto TIME_FIELDS = [](auto &payload, quint32 &seconds) { payload.Number(seconds); };

constexpr auto JACKPOT_FIELDS = [](auto &payload, SJackpot &jackpot) {
    payload.Letter(jackpot.eCurrency, &Globals::GetMoneyType);
    payload.Number(jackpot.mvAmount);
};

const char *GroupOf(const QByteArray &payload)
{
    if (payload.startsWith(TIME))
        return TIME_GROUP;
    return payload.startsWith(JACKPOT) ? CASINO_GROUP : GROUP;
}

} // namespace

bool IsNickname(const QString &text)
{
    return !text.isEmpty() && text.size() <= MAX_NICKNAME_LENGTH && text == text.trimmed() &&
           std::all_of(text.begin(), text.end(), [](QChar character) { return character.isPrint(); });
}

QString HashPassword(const QString &password)
{
    const QByteArray hash = QCryptographicHash::hash(password.toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex());
}

QByteArray EncodeLogin(const SLogin &login)
{
    return Payload::Encode(LOGIN, login, LOGIN_FIELDS);
}

QByteArray EncodeLogout()
{
    return QByteArray(LOGOUT);
}

QByteArray EncodeAccepted(const SAccount &account)
{
    return Payload::Encode(ACCEPTED, account, ACCOUNT_FIELDS);
}

QByteArray EncodeRefused(const SRefusal &refusal)
{
    return Payload::Encode(REFUSED, refusal, REFUSAL_FIELDS);
}

QByteArray EncodeWebRequest(const SWebRequest &request)
{
    return Payload::Encode(WEB_REQUEST, request, WEB_REQUEST_FIELDS);
}

QByteArray EncodeWebSession(const SWebSession &session)
{
    return Payload::Encode(WEB_SESSION, session, WEB_SESSION_FIELDS);
}

QByteArray EncodeTime(quint32 seconds)
{
    return Payload::Encode(TIME, seconds, TIME_FIELDS);
}

QByteArray EncodeJackpot(const SJackpot &jackpot)
{
    return Payload::Encode(JACKPOT, jackpot, JACKPOT_FIELDS);
}

bool DecodeLogin(const QByteArray &payload, SLogin &login)
{
    return Payload::Decode(LOGIN, payload, login, LOGIN_FIELDS);
}

bool DecodeAccepted(const QByteArray &payload, SAccount &account)
{
    return Payload::Decode(ACCEPTED, payload, account, ACCOUNT_FIELDS);
}

bool DecodeRefused(const QByteArray &payload, SRefusal &refusal)
{
    return Payload::Decode(REFUSED, payload, refusal, REFUSAL_FIELDS);
}

bool DecodeWebRequest(const QByteArray &payload, SWebRequest &request)
{
    SWebRequest read;
    if (!Payload::Decode(WEB_REQUEST, payload, read, WEB_REQUEST_FIELDS) ||
        (read.ucLink != WebLinks::SettingsSyncFetch && read.ucLink != WebLinks::SettingsSyncSend))
        return false;
    request = read;
    return true;
}

bool DecodeWebSession(const QByteArray &payload, SWebSession &session)
{
    return Payload::Decode(WEB_SESSION, payload, session, WEB_SESSION_FIELDS);
}

bool DecodeTime(const QByteArray &payload, quint32 &seconds)
{
    return Payload::Decode(TIME, payload, seconds, TIME_FIELDS);
}

bool DecodeJackpot(const QByteArray &payload, SJackpot &jackpot)
{
    return Payload::Decode(JACKPOT, payload, jackpot, JACKPOT_FIELDS);
}

QByteArray ToPacket(const QByteArray &payload)
{
    return Payload::ToPackets(GroupOf(payload), {payload});
}

} // namespace AccountProtocol
