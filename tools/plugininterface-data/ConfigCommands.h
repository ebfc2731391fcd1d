#pragma once

#include <QString>

/// The commands for the operator's configuration. Each returns the program's exit code.
namespace ConfigCommands {

int Build(const QString &json, const QString &out);
int Dump(const QString &path);
int Keys(bool json);

} // namespace ConfigCommands
