#pragma once

#include <database/LocalDB.h>

#include <QVector>

#include <optional>

/// The tokens with which users log in again without their password, each for one login on one machine, for some 30
/// days after its last use, and as long as the user's password stays the same. A user has at most 20 of them. The
/// file has hashes of them, so that nobody can log in with what a thief finds there.
///
/// What is taken back counts as taken back at once, and as long as the server runs, whether or not the file can be
/// written. Another program that has locked the file is waited for for a moment only.
class CTokens : public CLocalDB
{
public:
    /// Creates the object for an SQLite file, or for ":memory:", where they end with the server. Call Open().
    explicit CTokens(const QString &file);

    bool Open();

    /// Creates a token of a user; the user's oldest makes way if there are too many. \a passwordHash stands for the
    /// user's password. Returns false if the file can't be written.
    bool Add(const QString &nickname, const QString &passwordHash, QString *token);
    /// Returns whether the user, in any case, has this token, which is then good for another 30 days; nothing if the
    /// file doesn't tell.
    std::optional<bool> Use(const QString &nickname, const QString &passwordHash, const QString &token);
    /// Takes back a token.
    void Remove(const QString &token);
    /// Takes back all tokens of a user, in any case.
    void RemoveAll(const QString &nickname);
    /// Deletes from the file what has been taken back while it couldn't be written. Returns false if it still can't.
    bool WriteRemovals();

protected:
    unsigned int GetMaxVersion() override { return 2; }
    bool CreateDBVersion(unsigned int version) override;

private:
    /// Rows of which a column has a value.
    struct SRemoval
    {
        QString strColumn;
        QString strValue;
    };

    void Remove(const SRemoval &removal);
    bool IsRemoved(const QString &column, const QString &value) const;

    QVector<SRemoval> m_removals; // still to be written
};
