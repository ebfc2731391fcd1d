#pragma once

#include <plugin/Event.h>

#include <QObject>

/// An event that is kept back until the user is logged in. At most one waits in the whole client: a newer one drops
/// those before it. It is dropped, too, when the login is cancelled, when a login state of false arrives, and 30 s
/// after its creation. With a user logged in already it goes out at the next turn of the event loop, and the object
/// ends after that; one that has waited ends after its 30 s.
class CEventAfterLogin : public QObject
{
    Q_OBJECT

public:
    /// \a parent isn't null. It may be deleted while this runs, by somebody who hears that an older event is
    /// cancelled; the object then ends at the next turn of the event loop.
    CEventAfterLogin(const CEvent &event, QObject *parent);

Q_SIGNALS:
    /// The event goes out; never from within the constructor.
    void signal_Event(CEvent e);

private Q_SLOTS:
    void slot_LoginStateChanged(bool loggedIn);
    void slot_SendEvent();

private:
    void WaitForLogin(QObject *parent);
    void SendFromEventLoop();
    void Drop();

    CEvent m_event;
};
