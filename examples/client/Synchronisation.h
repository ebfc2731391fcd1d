#pragma once

#include "Session.h"

#include <plugin/WebLinks.h>

/// Synchronises the user's notes and settings with the web server: loads notes and tags at each login, starts a
/// synchronisation then and at intervals, and requests the web sessions for it from the game server.
///
/// At the end of a login it destroys the models of all players, with the notes in them, when control returns to the
/// event loop; views have to drop their pointers before.
class CSynchronisation : public QObject
{
    Q_OBJECT

public:
    /// Constructs the synchronisation with a \a session that outlives it.
    explicit CSynchronisation(CSession &session);

    /// Sets the time to the next synchronisation, in milliseconds: \a pause if the web server has not been reached,
    /// or may have more rows after this one, and \a regular otherwise. The defaults are 10 s and 60 s.
    void SetIntervals(int pause, int regular)
    {
        m_iPauseMs = pause;
        m_iRegularMs = regular;
    }

    // For the host, which passes all records.
    /// Handles a record; returns false if it isn't a web session.
    bool HandleRecord(const CEvent &record);

private:
    void OnLoginStateChanged(bool loggedIn);
    void BeginSync();
    void RequestSession(WebLinks::id link);
    void UseSession(const AccountProtocol::SWebSession &session);
    void Send();

    CSession &m_session;
    WebLinks::id m_eAsked = WebLinks::NoPage; // what the requested session is for
    QTimer m_timer;                           // runs while a user is logged in
    QTimer m_sendTimer;                       // runs while the session below waits to be used
    QString m_strSendSession;
    int m_iPauseMs = 10000;
    int m_iRegularMs = 60000;
};
