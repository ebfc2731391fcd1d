#pragma once

#include <settings/PlayerInfo.h>

#include <QSqlQuery>
#include <QVariantList>

class CPlayerModel;

namespace PlayerInfo {

/// LoadInfo(), which with \a keepChanges leaves the models alone that CLocalChanges holds.
bool LoadRows(bool keepChanges);

/// UpdateInfo() of a model that is at hand, under the nickname \a player.
bool UpdateRow(const QString &player, const CPlayerModel &model);

// SaveInfo() and InsertPlayerInfo() for many rows in a row: each prepares its statement once. They live on the stack,
// no longer than the transaction that they work in, if there is one.

class CSaver
{
public:
    CSaver();

    /// Writes the row of a model of the table, under the nickname by which the table knows it. False for any other
    /// model, and while nobody is logged in.
    bool Save(const CPlayerModel &model);
    /// What Save() would write now, with the user, in the order of the columns; empty if nothing.
    static QVariantList GetRow(const CPlayerModel &model);
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
