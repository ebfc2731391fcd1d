#pragma once

#include <settings/Settings.h>

class CSettingsDB;

namespace SettingsRows {

/// The times of rows that are stamped with the time of writing.
enum ETime : qint64 {
    CHANGE = -1, ///< The user has changed the value.
    /// A login queues the current value again. An existing row of a user is kept, because it may have been written
    /// elsewhere meanwhile.
    STORED_AGAIN = -2,
    STAMPED_ANEW = -3, ///< The row gets a new time even if its value is the same.
};

/// Writes \a rows to the file in one transaction. The result is the same as if each were compared and written in
/// turn, but each row is read once and written at most once, however often it occurs. A row that already holds its
/// value isn't written. \a now is the time of rows without one.
///
/// Returns false, with nothing written, if another program keeps the file locked, or the disk is full or not
/// writable; the caller keeps the rows and tries again. Any other error loses the row that it affects, and a file
/// that isn't open loses all rows.
bool Write(CSettingsDB &database, const QList<CSettings::SSetting> &rows, qint64 now);

} // namespace SettingsRows
