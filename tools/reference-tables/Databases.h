#pragma once

#include <QString>

namespace Databases {

/// Returns a Markdown page of the six databases with their actual schemas: opens those of the installation in which
/// the process runs, and creates the user's four. Null if one can't be opened.
QString Page();

} // namespace Databases
