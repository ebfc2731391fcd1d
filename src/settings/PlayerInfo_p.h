#pragma once

#include <settings/PlayerInfo.h>

#include <QSqlQuery>
#include <QVariantList>

namespace PlayerInfo {

/// LoadInfo(), which with \a keepChanges leaves the models alone that CLocalChanges holds.
bool LoadRows(bool keepChanges);

// SaveInfo() and InsertPlayerInfo() for many rows in a row: each prepares its statement once. They live on the stack,
// no longer than the transaction that they work in, if there is one.

class CSaver
{
public:
    CSaver();

    bool Save(const QString &nickname);
    /// What Save() would write now, with the user, in the order of the columns.
    static QVariantList GetRow(const QString &nickname);
    bool Write(const QVariantList &row);

private:
    QSqlQuery m_query;
};

class CInserter
{
public:
    CInserter();

    bool Insert(const SPlayerInfoSyncElement &element);

private:
    QSqlQuery m_query;
};

} // namespace PlayerInfo
