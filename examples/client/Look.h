#pragma once

#include <QStringList>

class QObject;

namespace Look {

/// The values of the setting `themegeneral`. Any other counts as those of the desktop, which are the default.
enum EColours { CO_SYSTEM, CO_DARK, CO_LIGHT };

/// Applies the look of the setting to the application, with the brand's style sheet for it, now and whenever the
/// setting or the desktop's colours change while \a window exists. Call it once, before the first palette is set.
void Follow(QObject *window);

/// Returns the paths of the brand's style sheets that can't be read. Each look has one.
QStringList FindUnreadableSheets();

/// Makes windows as large on a screen of a higher density, which Qt 6 does by itself. Call it before the application
/// is constructed.
void FollowScreens();

} // namespace Look
