#pragma once

#include <plugin/ConnectionState.h>
#include <plugin/Event.h>
#include <protocol/AccountProtocol.h>

#include <QObject>
#include <QTimer>

#include <functional>

/// The user's session with the game server: logs in and out, and updates CUserInfo, CCasinoTime and the jackpot of
/// CCasinoInfo with the server's data.
///
/// The user stays logged in while the connection is lost, and is logged in again when it is established, with a token
/// that the server has given: CUserInfo holds it as the hashed password. If the user wants to stay logged in, the
/// settings hold it too, and the next start of the client logs in with it, unless the user logs in by hand first. The
/// password itself is kept nowhere. Unexpected answers to logins, and balances of another user, change nothing and
/// are written to the console.
class CSession : public QObject
{
    Q_OBJECT

public:
    /// Sends one packet; returns false if it can't be sent.
    using TSend = std::function<bool(const QByteArray &)>;

    explicit CSession(const TSend &send);

    /// Sets how long the server may take to answer a login, 10 s by default.
    void SetAnswerLimit(int milliseconds) { m_answerTimer.setInterval(milliseconds); }

    /// Requests a login; one of the two signals below is emitted when it ends, at once if there is no connection, or
    /// one that others can read. \a remember has the user stay logged in when the client ends. Does nothing while
    /// another login waits for its answer, but for a remembered one, which it gives up.
    void LogIn(const QString &nickname, const QString &password, bool remember);
    /// Gives up the login that waits for its answer, without a signal. Does nothing if none does, or if it is one
    /// with a token: the remembered one, or that of a user on a new connection.
    void CancelLogin();
    /// Logs the user out. The server takes back the token, if there is a connection; otherwise the token ends later
    /// by itself.
    void LogOut();
    /// Logs the user out on all machines: the server takes back all of the user's tokens.
    void LogOutEverywhere();
    /// Ends the login, but not for the next start of the client if the user wants to stay logged in.
    void Leave();

    /// Requests the user's balances, which CUserInfo holds once the server has answered. Returns false if nobody is
    /// logged in or there is no connection.
    bool RequestBalances() const;

    /// Sends a record of the session's group; returns false if it can't be sent.
    bool Send(const QByteArray &record) const;

    // For the host, which passes all states and records.
    void SetConnectionState(EConnectionState::type state, bool isEncrypted);
    /// Handles a record; returns false if it isn't one of the session.
    bool HandleRecord(const CEvent &record);

Q_SIGNALS:
    /// Emitted after the login, when CUserInfo holds the user.
    void signal_LoggedIn();
    /// Emitted when a login is refused; a user who was logged in before isn't any more. The login isn't cancelled:
    /// the user may try again. \a key is the key of the text to show, in the area of Texts.
    void signal_LoginRefused(const QString &key);

private:
    void OnAccepted(const AccountProtocol::SAccount &account);
    static void OnBalances(const AccountProtocol::SAccount &account);
    void OnRefused(const AccountProtocol::SRefusal &refusal);
    void OnToken(const AccountProtocol::SToken &token);
    template <typename Login>
    void Ask(const Login &login);
    void AskWithToken(const QString &nickname, const QString &token);
    void Refuse(const char *key);
    void EndOnServer(const char *record);
    bool TakeAnswerTo(const QString &nickname);

    TSend m_send;
    AccountProtocol::STokenLogin m_asked; // its token is empty while the server hasn't given one
    bool m_bAskedWithToken = false;
    bool m_bUsesRemembered = true; // until the user logs in by hand
    bool m_bRemember = false;      // once the login is accepted
    bool m_bIsUnprotected = false; // the connection
    QTimer m_answerTimer;          // runs while m_asked waits for its answer
    int m_iGivenUp = 0;            // logins whose answers are still to come on this connection
};
