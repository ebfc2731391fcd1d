#pragma once

class QObject;

namespace Look {

/// Values of the setting `themegeneral`; others count as light.
enum EColours { CO_LIGHT, CO_DARK };

/// Gives the application the look that the setting says, with the brand's style sheet of that kind on top, now and
/// whenever the setting changes, as long as \a owner lives.
void Follow(QObject *owner);

} // namespace Look
