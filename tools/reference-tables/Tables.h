#pragma once

#include <QString>

/// Pages in Markdown of what the library's macro tables say.
namespace Tables {

/// The users' settings.
QString Settings();
/// The events that the library composes or takes apart.
QString Events();
/// The fields of the data models.
QString Models();

} // namespace Tables
