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
/// The user stays logged in while the connection is lost, and is logged in again, with the hash that CUserInfo holds,
/// when it is established. Unexpected answers to logins, and balances of another user, change nothing and are written
/// to the console.
class CSession : public QObject
{
    Q_OBJECT

public:
    /// Sends one packet; returns false if it can't be sent.
    using TSend = std::function<bool(const QByteArray &)>;

    explicit CSession(const TSend &send);

    /// Sets how long the server may take to answer a login, 10 s by default.
    void SetAnswerLimit(int milliseconds) { m_answerTimer.setInterval(milliseconds); }

    /// Requests a login; one of the two signals below is emitted when it ends, at once if there is no connection. \a
    /// hash is the hash of the password. Does nothing while another login waits for its answer.
    void LogIn(const QString &nickname, const QString &hash);
    /// Gives up the login that waits for its answer, without a signal. Does nothing if none does, or if the user is
    /// being logged in again on a new connection.
    void CancelLogin();
    void LogOut();

    /// Requests the user's balances, which CUserInfo holds once the server has answered. Returns false if nobody is
    /// logged in or there is no connection.
    bool RequestBalances() const;

    /// Sends a record of the session's group; returns false if it can't be sent.
    bool Send(const QByteArray &record) const;

    // For the host, which passes all states and records.
    void SetConnectionState(EConnectionState::type state);
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
    void Ask(const QString &nickname, const QString &hash);
    void Refuse(const char *key);
    void EndOnServer();
    bool TakeAnswerTo(const QString &nickname);

    TSend m_send;
    AccountProtocol::SLogin m_asked;
    QTimer m_answerTimer; // runs while m_asked waits for its answer
    int m_iGivenUp = 0;   // logins whose answers are still to come on this connection
};
