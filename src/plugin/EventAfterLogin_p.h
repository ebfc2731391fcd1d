#pragma once

#include <plugin/Event.h>

#include <QObject>

/// An event that is held back until a user is logged in. At most one waits in the whole client: a newer one replaces
/// it. It is also dropped when the login is cancelled, when a login state of false is reported, and 30 s after its
/// creation. If a user is already logged in, the event is sent at the next turn of the event loop and the object is
/// destroyed afterwards. An object that has waited is destroyed after its 30 s.
class CEventAfterLogin : public QObject
{
    Q_OBJECT

public:
    /// Creates a child of \a parent, which isn't null. A slot that reacts to the cancelling of an older event may
    /// delete \a parent meanwhile; the object is then destroyed at the next turn of the event loop.
    CEventAfterLogin(const CEvent &event, QObject *parent);

Q_SIGNALS:
    /// Emitted when \a e is to be sent, never by the constructor.
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
