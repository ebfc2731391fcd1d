#pragma once

#include <QString>

/// Markdown pages of the library's macro tables.
namespace Tables {

/// Returns the page of the users' settings.
QString Settings();
/// Returns the page of the events that the library composes or decodes.
QString Events();
/// Returns the page of the fields of the data models.
QString Models();

} // namespace Tables
