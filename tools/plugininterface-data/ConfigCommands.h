#pragma once

#include <QString>

/// The commands on the operator's configuration. Each answers the program's exit code.
namespace ConfigCommands {

int Build(const QString &json, const QString &out);
int Dump(const QString &path);
int Keys(bool json);

} // namespace ConfigCommands
