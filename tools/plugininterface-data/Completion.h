#pragma once

#include "CommandLine.h"

namespace Completion {

/// Returns a script that teaches bash to complete the commands, their options and the files that they take.
QString MakeBashScript(const QVector<SCommand> &commands);

} // namespace Completion
