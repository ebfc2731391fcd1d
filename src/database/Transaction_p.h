#pragma once

#include <QSqlError>
#include <QtGlobal>

class CLocalDB;

/// A transaction of the library's own, which tells whether it could begin and commit. It lives on the stack, and
/// rolls back at its end unless it was committed; queries that work in it end before.
///
/// Where CLocalDB::StartTransaction() has begun one already, it joins that one, and ends it.
class CTransaction
{
public:
    /// Takes the lock for writing at once; SQLite waits for another connection to release it.
    explicit CTransaction(CLocalDB &database);
    ~CTransaction();
    Q_DISABLE_COPY_MOVE(CTransaction)

    /// Whether the transaction is under way: the database is open, and its file isn't locked, full or not writable.
    bool IsBegun() const;
    /// Ends the transaction. False if it was refused; all is rolled back then. True also where somebody else has
    /// called CLocalDB::EndTransaction() meanwhile.
    bool Commit();
    /// Why the beginning or the commit was refused.
    const QSqlError &GetError() const;

private:
    CLocalDB &m_database;
    QSqlError m_error;
    bool m_bBegun = false;
};
