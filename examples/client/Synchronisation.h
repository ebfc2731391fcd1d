#pragma once

#include "Session.h"

#include <plugin/WebLinks.h>

/// Keeps the user's notes and settings in step with the web server: loads notes and tags at each login, begins a
/// synchronisation then and every now and then, and fetches the web sessions for it from the game server.
///
/// At the end of a login the models of all players go, and the notes in them, at the next turn of the event loop: a
/// view has let go of them by then.
class CSynchronisation : public QObject
{
    Q_OBJECT

public:
    /// \a session outlives it.
    explicit CSynchronisation(CSession &session);

    /// The time to the next synchronisation, in milliseconds: \a pause where the web server has not been reached, or
    /// may have more by then, and \a regular in all other cases. 10 s and 60 s unless told otherwise.
    void SetIntervals(int pause, int regular)
    {
        m_iPauseMs = pause;
        m_iRegularMs = regular;
    }

    // For the host, who gives all that there is.
    /// False if the record isn't a web session.
    bool HandleRecord(const CEvent &record);

private:
    void OnLoginStateChanged(bool loggedIn);
    void BeginSync();
    void RequestSession(WebLinks::id link);
    void UseSession(const AccountProtocol::SWebSession &session);
    void Send();

    CSession &m_session;
    WebLinks::id m_eAsked = WebLinks::NoPage; // what the session that is waited for is for
    QTimer m_timer;                           // runs as long as somebody is logged in
    QTimer m_sendTimer;                       // runs as long as the session below waits to be used
    QString m_strSendSession;
    int m_iPauseMs = 10000;
    int m_iRegularMs = 60000;
};
