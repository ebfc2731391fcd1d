#include "Synchronisation.h"

#include <common/Note.h>
#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/UserInfo.h>
#include <settings/PlayerInfo.h>
#include <settings/Settings.h>
#include <settings/SettingsSync.h>

#include <QFile>
#include <QUuid>

namespace {

// Rows have their times in whole seconds. Changes that are stored in the same second as the newest row have to be
// sent together with it, because later they would not look newer.
constexpr int SEND_DELAY_MS = 1500;

// Identifies this installation among the user's others at the web server.
QString ReadMachine()
{
    QFile file(Pathes::Tmp() + QLatin1String("/machine"));
    if (file.open(QIODevice::ReadWrite) && file.size() == 0) {
        file.write(QUuid::createUuid().toByteArray(QUuid::WithoutBraces));
        file.seek(0);
    }
    return QString::fromLatin1(file.readAll());
}

} // namespace

CSynchronisation::CSynchronisation(CSession &session)
    : m_session(session)
{
    m_timer.setSingleShot(true);
    m_sendTimer.setSingleShot(true);
    m_sendTimer.setInterval(SEND_DELAY_MS);
    connect(&m_timer, &QTimer::timeout, this, &CSynchronisation::BeginSync);
    connect(&m_sendTimer, &QTimer::timeout, this, &CSynchronisation::Send);
    connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, this,
            &CSynchronisation::OnLoginStateChanged);
    // Also after a connection was established again.
    connect(&session, &CSession::signal_LoggedIn, this, &CSynchronisation::BeginSync);
    connect(CSettingsSync::GetInstance(), &CSettingsSync::signal_RequestSessionForSync, this,
            &CSynchronisation::RequestSession);
}

bool CSynchronisation::HandleRecord(const CEvent &record)
{
    if (!record.HasTags(AccountProtocol::GROUP, AccountProtocol::SWebSession::TAG))
        return false;
    AccountProtocol::SWebSession session;
    if (Payload::Decode(record.data, session))
        UseSession(session);
    else
        Note(QStringLiteral("The game server sent a malformed web session"), CConsole::MC_Network);
    return true;
}

void CSynchronisation::OnLoginStateChanged(bool loggedIn)
{
    m_eAsked = WebLinks::NoPage;
    m_timer.stop();
    m_sendTimer.stop();
    CPlayerLists::GetInstance()->ResetBuddyList();
    if (loggedIn)
        PlayerInfo::LoadInfo();
    else
        CPlayerModel::DestroyInstances(); // pending notes were written while the user was still logged in
}

void CSynchronisation::BeginSync()
{
    m_timer.start(m_iRegularMs);
    CSettingsSync::GetInstance()->InitiateSync();
}

void CSynchronisation::RequestSession(WebLinks::id link)
{
    m_eAsked = link;
    m_session.Send(Payload::Encode(AccountProtocol::SWebRequest{static_cast<quint8>(link), ReadMachine()}));
}

// The game server gives no sessions to a login that has ended, so an unexpected one was on its way when it ended.
void CSynchronisation::UseSession(const AccountProtocol::SWebSession &session)
{
    if (session.ucLink != m_eAsked)
        return;
    m_eAsked = WebLinks::NoPage;
    if (session.strSession.isEmpty()) {
        m_timer.start(m_iPauseMs);
    } else if (session.ucLink == WebLinks::SettingsSyncFetch) {
        CSettingsSync::GetInstance()->StartSync(session.strSession);
    } else {
        m_strSendSession = session.strSession;
        m_sendTimer.start();
    }
}

void CSynchronisation::Send()
{
    if (CSettingsSync::GetInstance()->SyncToServer(m_strSendSession))
        m_timer.start(m_iPauseMs); // the server may have held rows back until it had these
}
