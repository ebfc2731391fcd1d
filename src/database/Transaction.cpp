#include "Transaction_p.h"

#include <database/LocalDB.h>
#include <database/SqliteResult_p.h>

CTransaction::CTransaction(CLocalDB &database)
    : m_database(database)
{
    if (!database.IsOpen())
        return;
    if (!database.m_bTransaction) {
        QSqlQuery begin = database.GetQuery();
        if (!begin.exec(QStringLiteral("BEGIN IMMEDIATE")))
            m_error = begin.lastError();
    }
    // If it was refused for another reason, the connection is in a transaction begun elsewhere; join that one.
    m_bBegun = !SqliteResult::IsPassing(m_error);
    database.m_bTransaction = m_bBegun;
}

CTransaction::~CTransaction()
{
    if (m_bBegun)
        m_database.EndTransaction(false);
}

bool CTransaction::IsBegun() const
{
    return m_bBegun;
}

bool CTransaction::Commit()
{
    if (!m_bBegun)
        return false;
    m_bBegun = false;
    if (!m_database.m_bTransaction)
        return true;
    QSqlQuery commit = m_database.GetQuery();
    if (commit.exec(QStringLiteral("COMMIT"))) {
        m_database.m_bTransaction = false;
        return true;
    }
    m_error = commit.lastError();
    m_database.EndTransaction(false);
    return false;
}

const QSqlError &CTransaction::GetError() const
{
    return m_error;
}
