#pragma once

#include <protocol/AccountProtocol.h>

#include <QHash>

#include <optional>

/// Who may log in, as the server's data file says. Nothing of it changes while the server runs.
class CAccounts
{
public:
    /// Reads a JSON file: an array of objects with the keys "nickname", "password", which is a hash in the form of
    /// AccountProtocol::HashPassword(), "currency", "real" and "play". One row may lack the nickname: its password
    /// opens an account with its money under any nickname that no other row has.
    ///
    /// False, with \a error for whoever wrote the file, if it can't be read or one row isn't right.
    bool Load(const QString &fileName, QString &error);

    /// Why there is no account for this login; nothing, with the \a account, if there is one.
    std::optional<AccountProtocol::ERefusal> LogIn(const AccountProtocol::SLogin &login,
                                                   AccountProtocol::SAccount &account) const;
    /// The account of who has logged in under this nickname.
    AccountProtocol::SAccount GetAccount(const QString &nickname) const;

private:
    struct SEntry
    {
        AccountProtocol::SAccount account;
        QString strHash;
    };

    QString AddEntry(const SEntry &entry);
    std::optional<SEntry> Find(const QString &nickname) const;

    QHash<QString, SEntry> m_entries; // by nickname, in lower case: users are told apart without regard to case
    std::optional<SEntry> m_newcomer;
};
