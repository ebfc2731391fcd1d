#pragma once

#include <settings/Settings.h>

class CSettingsDB;

namespace SettingsRows {

/// Brings \a rows to the file in one transaction: the same rows and times as if each were compared and written in
/// turn, but each row is read once and written at most once, however often it occurs. A row that holds its value
/// already stays. \a now is the time of those that bring none.
///
/// False if another program keeps the file locked, or the disk is full or can't be written: nothing is written then,
/// and the rows have to come again. Any other failure loses the row that it hits, and a file that isn't open loses
/// all of them.
bool Write(CSettingsDB &database, const QList<CSettings::SSetting> &rows, qint64 now);

} // namespace SettingsRows
