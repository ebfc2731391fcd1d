#pragma once

#include <settings/PlayerInfo.h>

#include <QSet>
#include <QSqlQuery>
#include <QVariantList>

class CPlayerModel;

namespace PlayerInfo {

/// LoadInfo() after an answer of the server: what the user has changed since the change of that number stays, and so
/// do ratings and pictures that wait to be stored. The buddy list becomes what the rows say.
void LoadAnswered(quint64 known);

/// UpdateInfo() of a model that is at hand, under the nickname \a player.
bool UpdateRow(const QString &player, const CPlayerModel &model);

// SaveInfo() and InsertPlayerInfo() for many rows in a row: each prepares its statement once. They live on the stack,
// no longer than the transaction that they work in, if there is one.

/// Which rows that are there are overwritten.
enum ERows {
    All,
    NotOlder,  ///< Than the stored ones; a row whose time isn't known is none.
    OwnFields, ///< Of a row that is there only what stays on the machine: rating and picture.
};

class CSaver
{
public:
    explicit CSaver(ERows rows = All);

    /// Writes the row of a user, who needn't be logged in any more, and of the model that the table holds under the
    /// nickname \a player. False if either is empty.
    bool SaveOf(const QString &user, const QString &player, const CPlayerModel &model);
    /// What SaveOf() would write now, in the order of the columns, user and player first; empty if nothing.
    QVariantList GetRow(const QString &user, const QString &player, const CPlayerModel &model) const;
    bool Write(const QVariantList &row);

private:
    QSqlQuery m_query;
    QSet<const CPlayerModel *> m_buddies;
};

class CInserter
{
public:
    explicit CInserter(ERows rows = All);

    bool Insert(const SPlayerInfoSyncElement &element);

private:
    QSqlQuery m_query;
};

} // namespace PlayerInfo
