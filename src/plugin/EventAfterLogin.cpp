#include "EventAfterLogin_p.h"

#include <models/UserInfo.h>

#include <QPointer>
#include <QTimer>

namespace {

constexpr int WAIT_MS = 30000;

unsigned int waits = 0; // the number of events that have had to wait

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

// The object has no parent until the slots that are called by the cancelling have returned: one of them may delete
// the parent, or send a newer event.
void CEventAfterLogin::WaitForLogin(QObject *parent)
{
    CUserInfo *user = CUserInfo::GetInstance();
    const QPointer<QObject> owner = parent;
    const unsigned int wait = ++waits;
    // Drops the older event that waits. This object connects to the signal only afterwards.
    user->EmitLoginCanceled();
    if (!owner || wait != waits) {
        deleteLater();
        return;
    }
    setParent(parent);
    connect(user, &CUserInfo::signal_LoginStateChanged, this, &CEventAfterLogin::slot_LoginStateChanged);
    connect(user, &CUserInfo::signal_LoginCanceled, this, &CEventAfterLogin::Drop);
    // A coarse timer could fire 1.5 s later.
    QTimer::singleShot(WAIT_MS, Qt::PreciseTimer, this, &CEventAfterLogin::Drop);
}

void CEventAfterLogin::SendFromEventLoop()
{
    QTimer::singleShot(0, this, &CEventAfterLogin::slot_SendEvent);
}

// A nested event loop may delay the deletion. Nothing may receive the event in the meantime, so the signal is
// disconnected.
void CEventAfterLogin::Drop()
{
    disconnect(this, &CEventAfterLogin::signal_Event, nullptr, nullptr);
    deleteLater();
}
