#pragma once

#include <Export.h>

#include <QList>
#include <QString>

/// Moves a user's notes on other players between CPlayerModel and CPlayerInfoDB, and provides the part that is
/// synchronised. There is one row for each user and player, with their nicknames as they are spelled.
///
/// Nothing is stored or read while nobody is logged in. CPlayerInfoDB must be initialised. Main thread.
namespace PlayerInfo {

/// The part of a row that is synchronised. Rating and custom avatar stay on the machine.
struct SPlayerInfoSyncElement
{
    QString strUser;          ///< The user who wrote the note.
    QString strPlayer;        ///< The player whom it is about.
    QString strNote;          ///< Free text.
    unsigned int ulTagID = 0; ///< The index of the tag, 0 for none.
    /// Bit 0: on the buddy list; bit 2: blocked as a buddy; bit 3: blocked in chat. InsertPlayerInfo() keeps other
    /// bits as they are; LoadInfo() ignores them.
    unsigned int ulPlayerFlags = 0;
    unsigned int ulTimestamp = 0; ///< Seconds since 1970 UTC on the server's clock.
};

/// Updates the models from all rows of the logged-in user, and appends the buddies to CPlayerLists, even those
/// already in it. The own player's custom avatar is the setting `customcurrent`, not the row's. A model that is
/// changed by this is saved 3 s later. Returns false if there are no rows.
PLUGININTERFACE_EXPORT bool LoadInfo();

/// Writes the row of the player \a nickname, with the server's time. Creates a model for \a nickname if there is
/// none.
PLUGININTERFACE_EXPORT bool SaveInfo(const QString &nickname);

/// Writes note, flags, rating and custom avatar to an existing row without a new time, so that the change isn't
/// synchronised.
PLUGININTERFACE_EXPORT bool UpdateInfo(const QString &nickname);

/// Returns the time of the user's newest row, or 0 if there is none.
PLUGININTERFACE_EXPORT unsigned int GetLastTimestamp(const QString &user);

/// Returns the user's rows that are newer than \a timestamp.
PLUGININTERFACE_EXPORT QList<PlayerInfo::SPlayerInfoSyncElement> GetSyncList(const QString &user,
                                                                             unsigned int timestamp);

/// Writes \a element as it is, even over a newer row. The row's rating and custom avatar are kept.
PLUGININTERFACE_EXPORT bool InsertPlayerInfo(const PlayerInfo::SPlayerInfoSyncElement &element);

} // namespace PlayerInfo
