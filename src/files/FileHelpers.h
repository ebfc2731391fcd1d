#pragma once

#include <Export.h>

#include <QByteArray>
#include <QString>

/// \file
/// Helpers for whole files and small texts. No state, any thread.
namespace Globals {

/// Reads a whole file. False, with \a contents unchanged, if it can't be opened.
PLUGININTERFACE_EXPORT bool GetContents(const QString &path, QByteArray &contents);

/// Writes \a data to a file and makes the directories above it. With \a position at least 0 only what lies from there
/// on, with \a length at least 0 of that at most so many bytes. A file that already holds these bytes isn't touched.
/// False if a directory can't be made or the file can't be opened. A \a path without "/" lies in the current
/// directory.
PLUGININTERFACE_EXPORT bool WriteToFile(const QString &path, const QByteArray &data, int position, int length);

/// MD5 digest as 32 lower-case hexadecimal digits. It tells copies apart; it protects nothing.
PLUGININTERFACE_EXPORT QString GetMD5(const QByteArray &data);
/// The same of a file's contents; empty if it can't be read.
PLUGININTERFACE_EXPORT QString GetFileMD5(const QString &path);

/// Finds the bytes between the first \a begin at or behind offset \a from (0 if negative) and the next \a end. \a
/// next becomes the offset behind \a end. False, with \a result and \a next unchanged, if a marker is missing; a \a
/// begin at offset 0 counts as missing.
PLUGININTERFACE_EXPORT bool GetBetween(const QByteArray &data, int from, QByteArray begin, QByteArray end,
                                       QByteArray &result, int &next);

/// Reads "true", "on", "yes", "1" and "false", "off", "no", "0" in any case; anything else is \a defaultValue.
PLUGININTERFACE_EXPORT bool ToBool(const QString &text, bool defaultValue);

} // namespace Globals
