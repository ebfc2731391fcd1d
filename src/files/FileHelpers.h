#pragma once

#include <Export.h>

#include <QByteArray>
#include <QString>

/// \file
/// Helpers for whole files and small texts. The functions have no state and may be called from any thread.
namespace Globals {

/// Reads a whole file. If it can't be opened, returns false and leaves \a contents unchanged.
PLUGININTERFACE_EXPORT bool GetContents(const QString &path, QByteArray &contents);

/// Writes \a data to a file and creates the directories above it. If \a position is at least 0, only the data from
/// there on is written; if \a length is at least 0, at most that many bytes. A file that already contains these
/// bytes isn't touched. Returns false if a directory can't be created or the file can't be opened. A \a path without
/// "/" is relative to the current directory.
PLUGININTERFACE_EXPORT bool WriteToFile(const QString &path, const QByteArray &data, int position, int length);

/// Returns the MD5 digest of \a data as 32 lower-case hexadecimal digits. Use it to compare copies, not for security.
PLUGININTERFACE_EXPORT QString GetMD5(const QByteArray &data);
/// Returns the MD5 digest of a file's contents, or an empty string if the file can't be read.
PLUGININTERFACE_EXPORT QString GetFileMD5(const QString &path);

/// Finds the bytes between the first \a begin at or after the offset \a from (0 if negative) and the next \a end.
/// Sets \a next to the offset after \a end. If either isn't found, returns false and leaves \a result and \a next
/// unchanged. A \a begin at offset 0 counts as not found.
PLUGININTERFACE_EXPORT bool GetBetween(const QByteArray &data, int from, QByteArray begin, QByteArray end,
                                       QByteArray &result, int &next);

/// Converts "true", "on", "yes", "1" and "false", "off", "no", "0", in any case. Returns \a defaultValue for anything
/// else.
PLUGININTERFACE_EXPORT bool ToBool(const QString &text, bool defaultValue);

} // namespace Globals
