#include "EventAfterLogin_p.h"

#include <models/UserInfo.h>

#include <QPointer>
#include <QTimer>

namespace {

constexpr int WAIT_MS = 30000;

unsigned int waits = 0; // how many events have begun to wait

} // namespace

CEventAfterLogin::CEventAfterLogin(const CEvent &event, QObject *parent)
    : m_event(event)
{
    if (!CUserInfo::GetInstance()->IsLoggedIn()) {
        WaitForLogin(parent);
        return;
    }
    setParent(parent);
    connect(this, &CEventAfterLogin::signal_Event, this, &QObject::deleteLater);
    SendFromEventLoop();
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

// It is nobody's child until others have heard the cancel: one of them may delete the parent, or send an event that
// is newer than this one.
void CEventAfterLogin::WaitForLogin(QObject *parent)
{
    CUserInfo *user = CUserInfo::GetInstance();
    const QPointer<QObject> owner = parent;
    const unsigned int wait = ++waits;
    // Older events that wait hear this; the own connection comes after it.
    user->EmitLoginCanceled();
    if (!owner || wait != waits) {
        deleteLater();
        return;
    }
    setParent(parent);
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
