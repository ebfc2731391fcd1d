#pragma once

#include <settings/Settings.h>

class CSettingsDB;

namespace SettingsRows {

/// Times of rows that get that of the writing.
enum ETime : qint64 {
    CHANGE = -1, ///< What the user has changed.
    /// What a login has found in force, and queues again: a user's row that is there is left to whoever has written
    /// it meanwhile.
    STORED_AGAIN = -2,
    STAMPED_ANEW = -3, ///< The time changes, whether the value does or not.
};

/// Brings \a rows to the file in one transaction: the same rows and times as if each were compared and written in
/// turn, but each row is read once and written at most once, however often it occurs. A row that holds its value
/// already stays. \a now is the time of those that bring none.
///
/// False if another program keeps the file locked, or the disk is full or can't be written: nothing is written then,
/// and the rows have to come again. Any other failure loses the row that it hits, and a file that isn't open loses
/// all of them.
bool Write(CSettingsDB &database, const QList<CSettings::SSetting> &rows, qint64 now);

} // namespace SettingsRows
