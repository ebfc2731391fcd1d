#pragma once

#include <QSqlError>
#include <QtGlobal>

class CLocalDB;

/// A transaction of the library itself, which reports whether it could begin and commit. It lives on the stack and
/// rolls back in its destructor unless it was committed. Queries that use it are finished before.
///
/// If CLocalDB::StartTransaction() has already begun a transaction, the object joins and ends that one.
class CTransaction
{
public:
    /// Takes the write lock at once. SQLite waits for another connection to release it.
    explicit CTransaction(CLocalDB &database);
    ~CTransaction();
    Q_DISABLE_COPY_MOVE(CTransaction)

    /// Returns whether the transaction has begun: the database is open, and its file isn't locked, full or read-only.
    bool IsBegun() const;
    /// Commits the transaction. If the commit is refused, rolls back and returns false. Returns true also if
    /// CLocalDB::EndTransaction() was called in the meantime.
    bool Commit();
    /// Returns why the beginning or the commit was refused.
    const QSqlError &GetError() const;

private:
    CLocalDB &m_database;
    QSqlError m_error;
    bool m_bBegun = false;
};
