#pragma once

#include <models/UserInfo.h>
#include <settings/PlayerInfo.h>

#include <QSet>
#include <QSqlQuery>
#include <QVariantList>

class CPlayerModel;

namespace PlayerInfo {

/// Returns the nickname of the user who is logged in, an empty text if nobody is.
inline QString GetUser()
{
    return CUserInfo::GetInstance()->GetNickname();
}

/// Loads the rows like LoadInfo(), after an answer of the server. Keeps what the user has changed after the change
/// \a known, and ratings and pictures that wait to be stored. Makes the buddy list match the rows.
void LoadAnswered(quint64 known);

/// Updates the row of \a model, whose nickname is \a player, like UpdateInfo().
bool UpdateRow(const QString &player, const CPlayerModel &model);

// These classes do the work of SaveInfo() and InsertPlayerInfo() for several rows and prepare their statement once.
// They live on the stack, no longer than the transaction that they work in.

/// What a row that is written overwrites of the stored one.
enum ERows {
    All,
    NotOlder,  ///< By rows that aren't older than the stored ones; a row without a time counts as newer.
    OwnFields, ///< Only rating and picture, which stay on the machine.
};

class CSaver
{
public:
    explicit CSaver(ERows rows = All);

    /// Writes the row of \a user, who may have logged out, and of \a model, which is stored under the nickname
    /// \a player. Returns false if \a user or \a player is empty.
    bool SaveOf(const QString &user, const QString &player, const CPlayerModel &model);
    /// Returns what SaveOf() would write now, in the order of the columns, user and player first; empty if nothing.
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

    /// Returns false also if a stored row is newer, where only rows that aren't older are taken.
    bool Insert(const SPlayerInfoSyncElement &element);

private:
    QSqlQuery m_query;
};

} // namespace PlayerInfo
