#include "Session.h"

#include "RememberedLogin.h"

#include <common/Note.h>
#include <models/CasinoInfo.h>
#include <models/UserInfo.h>
#include <time/CasinoTime.h>

#include <QHash>

namespace {

constexpr int ANSWER_LIMIT_MS = 10000;

// Keys of texts by reason; all other reasons have one text.
const QHash<int, const char *> REFUSAL_KEYS{{AccountProtocol::RF_BAD_NICKNAME, "LOGIN_BAD_NICKNAME"},
                                            {AccountProtocol::RF_NO_ACCOUNT, "LOGIN_NO_ACCOUNT"},
                                            {AccountProtocol::RF_WRONG_PASSWORD, "LOGIN_WRONG_PASSWORD"},
                                            {AccountProtocol::RF_TOO_MANY, "LOGIN_TOO_MANY"},
                                            {AccountProtocol::RF_BUSY, "LOGIN_BUSY"},
                                            {AccountProtocol::RF_TOKEN_ENDED, "LOGIN_TOKEN_ENDED"},
                                            {AccountProtocol::RF_UNPROTECTED, "LOGIN_UNPROTECTED"}};

void SetMoney(const AccountProtocol::SAccount &account)
{
    CUserInfo *user = CUserInfo::GetInstance();
    user->SetAccountCurrency(account.eCurrency);
    user->SetRealMoney(account.mvReal);
    user->SetPlayMoney(account.mvPlay);
}

// The data of the account is set before the login is signalled. At a logout it is emptied before, too.
void SetAccount(const AccountProtocol::SAccount &account, const QString &token, quint32 loginTime)
{
    CUserInfo *user = CUserInfo::GetInstance();
    user->SetUsername(account.strNickname);
    user->SetPasswordHashed(token);
    user->SetLoginTime(loginTime);
    user->SetLoginBalance(account.mvReal);
    SetMoney(account);
    user->SetLoggedIn(account.strNickname);
}

void EndLogin()
{
    SetAccount({}, QString(), 0);
}

} // namespace

CSession::CSession(const TSend &send)
    : m_send(send)
{
    m_answerTimer.setSingleShot(true);
    m_answerTimer.setInterval(ANSWER_LIMIT_MS);
    connect(&m_answerTimer, &QTimer::timeout, this, [this] {
        ++m_iGivenUp; // the timer isn't active any more
        EndOnServer(m_bAskedWithToken ? AccountProtocol::LEAVE : AccountProtocol::LOGOUT);
        Refuse("LOGIN_NO_ANSWER");
    });
}

void CSession::LogIn(const QString &nickname, const QString &password, bool remember)
{
    if (m_answerTimer.isActive() && m_bAskedWithToken && !CUserInfo::GetInstance()->IsLoggedIn())
        EndOnServer(AccountProtocol::LEAVE); // the remembered login makes way for what the user wants now
    if (m_answerTimer.isActive())
        return;
    if (m_bIsUnprotected) {
        Refuse("LOGIN_UNPROTECTED");
        return;
    }
    m_asked = {nickname, QString()};
    m_bAskedWithToken = false;
    m_bUsesRemembered = false;
    m_bRemember = remember;
    Ask(AccountProtocol::SLogin{nickname, password});
    if (!m_answerTimer.isActive())
        Refuse("LOGIN_NO_LINK");
}

void CSession::CancelLogin()
{
    if (m_answerTimer.isActive() && !m_bAskedWithToken && !CUserInfo::GetInstance()->IsLoggedIn())
        EndOnServer(AccountProtocol::LOGOUT);
}

void CSession::LogOut()
{
    EndOnServer(AccountProtocol::LOGOUT);
    RememberedLogin::Forget();
    EndLogin();
}

void CSession::LogOutEverywhere()
{
    EndOnServer(AccountProtocol::LOGOUT_EVERYWHERE);
    RememberedLogin::Forget();
    EndLogin();
}

void CSession::Leave()
{
    if (RememberedLogin::Get().strToken.isEmpty()) {
        LogOut();
        return;
    }
    EndOnServer(AccountProtocol::LEAVE);
    EndLogin();
}

bool CSession::RequestBalances() const
{
    return CUserInfo::GetInstance()->IsLoggedIn() && Send(AccountProtocol::GET_BALANCES);
}

bool CSession::Send(const QByteArray &record) const
{
    return m_send(Payload::ToPackets(AccountProtocol::GROUP, {record}));
}

void CSession::SetConnectionState(EConnectionState::type state, bool isEncrypted)
{
    m_iGivenUp = 0;
    m_bIsUnprotected = state == EConnectionState::Connected && !isEncrypted;
    CUserInfo *user = CUserInfo::GetInstance();
    if (state == EConnectionState::Connected) {
        const AccountProtocol::STokenLogin remembered = RememberedLogin::Get();
        if (user->IsLoggedIn())
            AskWithToken(user->GetNickname(), user->GetPasswordHashed());
        else if (m_bUsesRemembered && !remembered.strToken.isEmpty())
            AskWithToken(remembered.strNickname, remembered.strToken);
    } else if (user->IsLoggedIn()) {
        m_answerTimer.stop(); // the login is sent again on the next link
    } else if (m_answerTimer.isActive()) {
        Refuse("LOGIN_LOST_LINK");
    }
}

bool CSession::HandleRecord(const CEvent &record)
{
    using namespace AccountProtocol;
    if (!record.HasTag1(GROUP) && !record.HasTag1(TIME_GROUP) && !record.HasTag1(CASINO_GROUP))
        return false;
    SAccount account;
    SRefusal refusal;
    SToken token;
    STime time;
    SJackpot jackpot;
    if (Payload::Decode(record.data, account))
        OnAccepted(account);
    else if (Payload::Decode(record.data, refusal))
        OnRefused(refusal);
    else if (Payload::Decode(record.data, account, BALANCES))
        OnBalances(account);
    else if (Payload::Decode(record.data, token))
        OnToken(token);
    else if (Payload::Decode(record.data, time))
        CCasinoTime::GetInstance()->SetTimeUTCServer(time.uiSeconds);
    else if (Payload::Decode(record.data, jackpot))
        CCasinoInfo::GetInstance()->SetBadBeatJackpot(static_cast<char>(jackpot.eCurrency), jackpot.mvAmount);
    else
        Note(QStringLiteral("The game server sent a %1 that is malformed or unknown")
                 .arg(QString::fromLatin1(record.tag2, sizeof record.tag2)),
             CConsole::MC_Network);
    return true;
}

void CSession::OnAccepted(const AccountProtocol::SAccount &account)
{
    if (!TakeAnswerTo(account.strNickname))
        return;
    CUserInfo *user = CUserInfo::GetInstance();
    if (user->GetNickname() == account.strNickname) {
        SetMoney(account);
        user->SetPasswordHashed(m_asked.strToken);
    } else {
        if (user->IsLoggedIn())
            EndLogin();
        SetAccount(account, m_asked.strToken, CCasinoTime::GetInstance()->GetTimeUTCServer());
    }
    if (user->GetNickname() != account.strNickname) { // a slot has logged the user out
        Refuse("LOGIN_REFUSED");
        return;
    }
    if (!m_bAskedWithToken && m_bRemember)
        RememberedLogin::Store({account.strNickname, m_asked.strToken});
    else if (!m_bAskedWithToken)
        RememberedLogin::Forget();
    Q_EMIT signal_LoggedIn();
}

void CSession::OnRefused(const AccountProtocol::SRefusal &refusal)
{
    if (!TakeAnswerTo(refusal.strNickname))
        return;
    if (refusal.eReason == AccountProtocol::RF_TOKEN_ENDED)
        RememberedLogin::Forget();
    Refuse(REFUSAL_KEYS.value(refusal.eReason, "LOGIN_REFUSED"));
}

// It belongs to the answer that comes next, which may be to a login that was given up.
void CSession::OnToken(const AccountProtocol::SToken &token)
{
    if (m_iGivenUp == 0 && m_answerTimer.isActive() && !m_bAskedWithToken)
        m_asked.strToken = token.strToken;
}

// The user who has asked may have logged out since.
void CSession::OnBalances(const AccountProtocol::SAccount &account)
{
    if (CUserInfo::GetInstance()->IsLoggedIn() && CUserInfo::GetInstance()->GetNickname() == account.strNickname)
        SetMoney(account);
    else
        Note(QStringLiteral("The game server told the balances of %1, who isn't logged in").arg(account.strNickname),
             CConsole::MC_Network);
}

template <typename Login>
void CSession::Ask(const Login &login)
{
    if (Send(Payload::Encode(login)))
        m_answerTimer.start();
}

void CSession::AskWithToken(const QString &nickname, const QString &token)
{
    if (m_bIsUnprotected) // a client that has been started for a look at the bytes
        return;
    m_asked = {nickname, token};
    m_bAskedWithToken = true;
    if (token.isEmpty())
        Refuse("LOGIN_TOKEN_ENDED");
    else
        Ask(m_asked);
}

// A user who was logged in on the former connection is logged out.
void CSession::Refuse(const char *key)
{
    m_answerTimer.stop();
    CUserInfo *user = CUserInfo::GetInstance();
    if (user->IsLoggedIn())
        EndLogin();
    Q_EMIT signal_LoginRefused(QString::fromLatin1(key));
}

// Nothing waits for the answer any more, if there is one to come. If that accepts the login, the record ends it.
void CSession::EndOnServer(const char *record)
{
    m_iGivenUp += m_answerTimer.isActive() ? 1 : 0;
    m_answerTimer.stop();
    Send(record);
}

// Returns whether an answer is for the pending login: the server answers in turn, and may spell the nickname in
// another case.
bool CSession::TakeAnswerTo(const QString &nickname)
{
    if (m_iGivenUp > 0) {
        --m_iGivenUp;
        Note(QStringLiteral("The game server answered the login of %1, which was given up").arg(nickname),
             CConsole::MC_Network);
        return false;
    }
    if (m_answerTimer.isActive() && nickname.compare(m_asked.strNickname, Qt::CaseInsensitive) == 0) {
        m_answerTimer.stop();
        return true;
    }
    Note(QStringLiteral("The game server answered a login that nobody asked for: %1").arg(nickname),
         CConsole::MC_Network);
    return false;
}
