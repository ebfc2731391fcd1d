#pragma once

#include <protocol/AccountProtocol.h>

#include <QHash>

#include <optional>

/// The accounts that may log in, from the server's data file. They don't change while the server runs.
class CAccounts
{
public:
    /// Reads a JSON file: an array of objects with the keys "nickname", "password", which is a hash that
    /// Passwords::Hash() has made, "currency", "real" and "play". One row may lack the nickname: its password opens
    /// an account with its money under any nickname that no other row has.
    ///
    /// Returns false, with \a error for the author of the file, if the file can't be read or a row has a fault.
    bool Load(const QString &fileName, QString &error);

    /// Returns the reason to refuse any login under this nickname, or nothing, with \a account set, if there is none.
    std::optional<AccountProtocol::ERefusal> Find(const QString &nickname, AccountProtocol::SAccount &account) const;
    /// Returns the account of a user who has logged in under this nickname.
    AccountProtocol::SAccount GetAccount(const QString &nickname) const;
    /// Returns the hash of the user's password.
    QString GetHash(const QString &nickname) const;

private:
    struct SEntry
    {
        AccountProtocol::SAccount account;
        QString strHash;
    };

    QString AddEntry(const SEntry &entry);
    std::optional<SEntry> FindEntry(const QString &nickname) const;

    QHash<QString, SEntry> m_entries; // by nickname in lower case: case doesn't distinguish users
    std::optional<SEntry> m_newcomer;
};
