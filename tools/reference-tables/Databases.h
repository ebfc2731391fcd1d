#pragma once

#include <QString>

namespace Databases {

/// A page in Markdown of the six databases, as SQLite holds them: opens those of the installation that the process
/// runs in, and makes the users' four. Null if one can't be opened.
QString Page();

} // namespace Databases
