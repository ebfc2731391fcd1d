#include "Session.h"

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
                                            {AccountProtocol::RF_WRONG_PASSWORD, "LOGIN_WRONG_PASSWORD"}};

void SetMoney(const AccountProtocol::SAccount &account)
{
    CUserInfo *user = CUserInfo::GetInstance();
    user->SetAccountCurrency(account.eCurrency);
    user->SetRealMoney(account.mvReal);
    user->SetPlayMoney(account.mvPlay);
}

// The data of the account is set before the login is signalled. At a logout it is emptied before, too.
void SetAccount(const AccountProtocol::SAccount &account, const QString &hash, quint32 loginTime)
{
    CUserInfo *user = CUserInfo::GetInstance();
    user->SetUsername(account.strNickname);
    user->SetPasswordHashed(hash);
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
        ++m_iGivenUp;
        // An acceptance that is still on its way logs the user in on this link.
        Send(AccountProtocol::LOGOUT);
        Refuse("LOGIN_NO_ANSWER");
    });
}

void CSession::LogIn(const QString &nickname, const QString &hash)
{
    if (m_answerTimer.isActive())
        return;
    Ask(nickname, hash);
    if (!m_answerTimer.isActive())
        Refuse("LOGIN_NO_LINK");
}

void CSession::CancelLogin()
{
    if (m_answerTimer.isActive() && !CUserInfo::GetInstance()->IsLoggedIn())
        EndOnServer();
}

void CSession::LogOut()
{
    EndOnServer();
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

void CSession::SetConnectionState(EConnectionState::type state)
{
    m_iGivenUp = 0;
    CUserInfo *user = CUserInfo::GetInstance();
    if (state == EConnectionState::Connected) {
        if (user->IsLoggedIn())
            Ask(user->GetNickname(), user->GetPasswordHashed());
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
    STime time;
    SJackpot jackpot;
    if (Payload::Decode(record.data, account))
        OnAccepted(account);
    else if (Payload::Decode(record.data, refusal))
        OnRefused(refusal);
    else if (Payload::Decode(record.data, account, BALANCES))
        OnBalances(account);
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
    } else {
        if (user->IsLoggedIn())
            EndLogin();
        SetAccount(account, m_asked.strHash, CCasinoTime::GetInstance()->GetTimeUTCServer());
    }
    Q_EMIT signal_LoggedIn();
}

void CSession::OnRefused(const AccountProtocol::SRefusal &refusal)
{
    if (TakeAnswerTo(refusal.strNickname))
        Refuse(REFUSAL_KEYS.value(refusal.eReason, "LOGIN_REFUSED"));
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

void CSession::Ask(const QString &nickname, const QString &hash)
{
    m_asked = {nickname, hash};
    if (Send(Payload::Encode(m_asked)))
        m_answerTimer.start();
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

// Nothing waits for the answer any more, if there is one to come.
void CSession::EndOnServer()
{
    m_iGivenUp += m_answerTimer.isActive() ? 1 : 0;
    m_answerTimer.stop();
    Send(AccountProtocol::LOGOUT);
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
