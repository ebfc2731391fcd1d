#pragma once

#include <Export.h>

#include <QString>

/// \file
/// Style sheets of a brand's theme, from files that include others.
namespace Globals {

/// Reads a Qt style sheet in UTF-8. A line `#include "common/buttons.css";` stands for that file, found from the
/// folder of the including one. Relative paths get that folder in front, see ReplaceStylePath(). Comments, blank
/// lines and the blanks at both ends of a line go.
///
/// False, and \a contents stays, if a file can't be read, if a file includes itself, directly or not, if a comment or
/// a brace is left open or closed without being opened, if a block has no selector, or if all together is longer than
/// 16 Mi characters or comes from more than 1000 files, those that are included twice counted twice, or from more
/// than 64 within each other. Blocks don't nest. Time is linear in the size of what is read, for each level of
/// includes. Any thread.
PLUGININTERFACE_EXPORT bool GetCssContents(const QString &path, QString &contents);

/// Puts \a directory, which ends in a slash, in front of the first "./" or "../" of each declaration of a line. They
/// count wherever they stand. A line that would become longer than 16 Mi characters is answered as it is. Any thread.
PLUGININTERFACE_EXPORT QString ReplaceStylePath(QString line, const QString &directory);

} // namespace Globals
