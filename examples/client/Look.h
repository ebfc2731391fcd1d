#pragma once

#include <QStringList>

class QObject;

namespace Look {

/// The values of the setting `themegeneral`; any other counts as light.
enum EColours { CO_LIGHT, CO_DARK };

/// Applies the look of the setting to the application, with the brand's style sheet for it, now and whenever the
/// setting changes while \a owner exists.
void Follow(QObject *owner);

/// Returns the paths of the brand's style sheets that can't be read. Each look has one.
QStringList FindUnreadableSheets();

/// Makes windows as large on a screen of a higher density, which Qt 6 does by itself. Call it before the application
/// is constructed.
void FollowScreens();

} // namespace Look
