#pragma once

#include <protocol/AccountProtocol.h>

#include <QDeadlineTimer>
#include <QHash>
#include <QString>

#include <optional>

/// Slows down those who try passwords. The first few wrong ones for a nickname cost nothing. After each further one
/// nobody can try the next for a pause, which doubles up to a minute, from however many connections. A right one, or
/// a quarter of an hour without any, forgets them.
///
/// An attacker can thus keep a user from logging in with the password, but not with a token.
class CLoginGuard
{
public:
    /// Begins to try a password for the nickname, in any case. Returns the reason for which it mustn't be looked at;
    /// if there is none, the caller calls End() afterwards.
    std::optional<AccountProtocol::ERefusal> Begin(const QString &nickname);
    /// Ends what Begin() began; \a isRight is nothing if it couldn't be found out.
    void End(const QString &nickname, std::optional<bool> isRight);

private:
    struct STries
    {
        int iWrong = 0;
        int iBegun = 0;        // and not ended
        QDeadlineTimer pause;  // until the next one
        QDeadlineTimer memory; // until they are forgotten
    };

    void ForgetOld();

    QHash<QString, STries> m_tries; // by nickname in lower case
    int m_iForgetAt = 0;            // so many of them are looked through for old ones
    int m_iBegun = 0;
};
