#include "EventAfterLogin_p.h"

#include <models/UserInfo.h>

#include <QTimer>

namespace {

constexpr int WAIT_MS = 30000;

} // namespace

CEventAfterLogin::CEventAfterLogin(const CEvent &event, QObject *parent)
    : QObject(parent)
    , m_event(event)
{
    if (CUserInfo::GetInstance()->IsLoggedIn())
        SendFromEventLoop();
    else
        WaitForLogin();
}

void CEventAfterLogin::slot_LoginStateChanged(bool loggedIn)
{
    if (loggedIn)
        SendFromEventLoop();
    else
        Drop();
}

void CEventAfterLogin::slot_SendEvent()
{
    Q_EMIT signal_Event(m_event);
}

void CEventAfterLogin::WaitForLogin()
{
    CUserInfo *user = CUserInfo::GetInstance();
    // Older events that wait hear this; the own connection comes behind it.
    user->EmitLoginCanceled();
    connect(user, &CUserInfo::signal_LoginStateChanged, this, &CEventAfterLogin::slot_LoginStateChanged);
    connect(user, &CUserInfo::signal_LoginCanceled, this, &CEventAfterLogin::Drop);
    // A coarse timer could take a second and a half longer.
    QTimer::singleShot(WAIT_MS, Qt::PreciseTimer, this, &CEventAfterLogin::Drop);
}

void CEventAfterLogin::SendFromEventLoop()
{
    QTimer::singleShot(0, this, &CEventAfterLogin::slot_SendEvent);
}

// The object may outlive this for a while, where an event loop runs within the one that deletes it; nobody hears it
// then.
void CEventAfterLogin::Drop()
{
    disconnect(this, &CEventAfterLogin::signal_Event, nullptr, nullptr);
    deleteLater();
}
