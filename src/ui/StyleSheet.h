#pragma once

#include <Export.h>

#include <QString>

/// \file
/// Functions for the style sheets of a brand's theme, which may include other files.
namespace Globals {

/// Reads a Qt style sheet in UTF-8. A line `#include "common/buttons.css";` is replaced with that file, relative to
/// the folder of the including one. Relative paths are prefixed with that folder, see ReplaceStylePath(). Comments,
/// blank lines and the white space at both ends of a line are removed.
///
/// Returns false and leaves \a contents unchanged if a file can't be read, if a file includes itself, directly or
/// not, if comments or braces aren't balanced, if a block has no selector, if the result is longer than 16 Mi
/// characters, or if it comes from more than 1000 files, each counted as often as it is included, or from more than
/// 64 nested ones. Blocks don't nest. Takes time linear in the size of what is read, for each level of includes. Any
/// thread.
PLUGININTERFACE_EXPORT bool GetCssContents(const QString &path, QString &contents);

/// Inserts \a directory, which ends in a slash, before the first "./" or "../" of each declaration in a line,
/// wherever they stand. Returns the line unchanged if it would become longer than 16 Mi characters. Any thread.
PLUGININTERFACE_EXPORT QString ReplaceStylePath(QString line, const QString &directory);

} // namespace Globals
