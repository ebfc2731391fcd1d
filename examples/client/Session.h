#pragma once

#include <plugin/ConnectionState.h>
#include <plugin/Event.h>
#include <protocol/AccountProtocol.h>

#include <QObject>
#include <QTimer>

#include <functional>

/// The user's session with the game server: logs in and out, and keeps CUserInfo, CCasinoTime and the jackpot of
/// CCasinoInfo as the server says.
///
/// Who is logged in stays so while the link is away, and is logged in anew, with the hash that CUserInfo holds, when
/// it comes back. Answers to logins that nobody waits for, and balances of somebody else, change nothing and are
/// noted in the console.
class CSession : public QObject
{
    Q_OBJECT

public:
    /// Sends one packet, false if it can't be sent.
    using TSend = std::function<bool(const QByteArray &)>;

    explicit CSession(const TSend &send);

    /// How long the server may take to answer a login, 10 s unless told otherwise.
    void SetAnswerLimit(int milliseconds) { m_answerTimer.setInterval(milliseconds); }

    /// Ends in one of the two signals below, at once if there is no link. \a hash is that of the password. Does
    /// nothing while another login waits for its answer.
    void LogIn(const QString &nickname, const QString &hash);
    void LogOut();

    /// Asks for the user's balances anew; CUserInfo has them when the server has answered. False if nobody is logged
    /// in or there is no link.
    bool RequestBalances() const;

    /// Sends a record of the session's group, false if it can't be sent.
    bool Send(const QByteArray &record) const;

    // For the host, who gives all that there is of both.
    void SetConnectionState(EConnectionState::type state);
    /// False if the record isn't the session's.
    bool HandleRecord(const CEvent &record);

Q_SIGNALS:
    /// CUserInfo knows the user by now.
    void signal_LoggedIn();
    /// Whoever was logged in before isn't any more. Nothing is cancelled: the user may try again.
    /// \a key is that of the text to show, in the area of Texts.
    void signal_LoginRefused(const QString &key);

private:
    void OnAccepted(const AccountProtocol::SAccount &account);
    static void OnBalances(const AccountProtocol::SAccount &account);
    void OnRefused(const AccountProtocol::SRefusal &refusal);
    void Ask(const QString &nickname, const QString &hash);
    void Refuse(const char *key);
    bool TakeAnswerTo(const QString &nickname);

    TSend m_send;
    AccountProtocol::SLogin m_asked;
    QTimer m_answerTimer; // runs as long as that waits for its answer
};
