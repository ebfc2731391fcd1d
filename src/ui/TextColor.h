#pragma once

#include <Export.h>

#include <QColor>

namespace Globals {

/// Returns black or white, whichever reads better on \a background.
PLUGININTERFACE_EXPORT QColor GetIdealTextColor(const QColor &background);

} // namespace Globals
