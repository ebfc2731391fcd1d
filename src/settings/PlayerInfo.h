#pragma once

#include <Export.h>

#include <QList>
#include <QString>

/// What a user has noted of other players: the way between the live CPlayerModel and CPlayerInfoDB, and what of it
/// the synchronisation exchanges. One row for each user and player, their nicknames as they are spelled.
///
/// Nothing is stored or read while nobody is logged in. CPlayerInfoDB has to be initialised. Main thread.
namespace PlayerInfo {

/// What travels of a row. Rating and custom avatar stay on the machine.
struct SPlayerInfoSyncElement
{
    QString strUser;          ///< Who has noted it.
    QString strPlayer;        ///< Of whom.
    QString strNote;          ///< Free text.
    unsigned int ulTagID = 0; ///< Index into the tags, 0 for none.
    /// Bit 0: on the buddy list; bit 2: blocked as a buddy; bit 3: blocked in chat. Others are kept as they are by
    /// InsertPlayerInfo() and mean nothing to LoadInfo().
    unsigned int ulPlayerFlags = 0;
    unsigned int ulTimestamp = 0; ///< Seconds since 1970 UTC on the server's clock.
};

/// Brings the models up to date with all rows of the logged-in user, and appends the buddies to CPlayerLists, also
/// those who are on it already. The own player's custom avatar is the setting `customcurrent`, whatever the row says.
/// A model that changes on the way is saved 3 s later. False if there are no rows.
PLUGININTERFACE_EXPORT bool LoadInfo();

/// Writes the player's row, stamped with the server's time. \a nickname gets a model if it has none.
PLUGININTERFACE_EXPORT bool SaveInfo(const QString &nickname);

/// Writes note, flags, rating and custom avatar to a row that is there, without a new time, so that no other machine
/// hears of it.
PLUGININTERFACE_EXPORT bool UpdateInfo(const QString &nickname);

/// The time of the user's newest row, 0 if there is none.
PLUGININTERFACE_EXPORT unsigned int GetLastTimestamp(const QString &user);

/// The user's rows that are newer than \a timestamp.
PLUGININTERFACE_EXPORT QList<PlayerInfo::SPlayerInfoSyncElement> GetSyncList(const QString &user,
                                                                             unsigned int timestamp);

/// Writes the row as it is, over a newer one too; its rating and custom avatar stay.
PLUGININTERFACE_EXPORT bool InsertPlayerInfo(const PlayerInfo::SPlayerInfoSyncElement &element);

} // namespace PlayerInfo
