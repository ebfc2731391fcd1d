#pragma once

#include <database/LocalDB.h>

#include <optional>

/// The tokens with which users log in again without their password, each for one login on one machine, for 30 days
/// after its last use. The file has hashes of them, so that nobody can log in with what a thief finds there.
///
/// A function that returns a truth value returns false if the file fails it.
class CTokens : public CLocalDB
{
public:
    /// Creates the object for an SQLite file, or for ":memory:", where they end with the server. Call Init().
    explicit CTokens(const QString &file);

    /// Creates a token of a user.
    bool Add(const QString &nickname, QString *token);
    /// Returns whether the user, in any case, has this token, which is then good for another 30 days; nothing if the
    /// file doesn't tell.
    std::optional<bool> Use(const QString &nickname, const QString &token);
    /// Takes back a token.
    bool Remove(const QString &token);
    /// Takes back all tokens of a user, in any case.
    bool RemoveAll(const QString &nickname);

protected:
    unsigned int GetMaxVersion() override { return 1; }
    bool CreateDBVersion(unsigned int version) override;
};
