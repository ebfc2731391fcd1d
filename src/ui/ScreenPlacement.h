#pragma once

#include <Export.h>
#include <plugin/GlobalDefines.h>

#include <QPoint>
#include <QRect>
#include <Qt>

class QWidget;

/// \file
/// Where windows are put. All lengths are device-independent pixels. Thread of the user interface.
namespace Globals {

/// Where the top left corner of \a widget goes: aligned within \a reference, or with \a outside against its edge from
/// without, and then kept on \a screen as far as it fits. Without a valid \a reference the screen stands for it. The
/// widget's own corner if there is nothing to go by.
PLUGININTERFACE_EXPORT QPoint CalculateScreenPosition(QRect widget, QRect reference, QRect screen,
                                                      QFlags<Qt::AlignmentFlag> alignment,
                                                      QFlags<GlobalDefines::ScreenPositionOutside> outside);

/// Moves a visible window so, by the window of \a relativeTo, or of the parent, or by the screen of number \a screen,
/// the primary one if there is no such. Does nothing with what is no window, not visible, or full screen.
PLUGININTERFACE_EXPORT void SetToScreenPosition(QWidget *widget, QFlags<Qt::AlignmentFlag> alignment,
                                                QWidget *relativeTo, int screen,
                                                QFlags<GlobalDefines::ScreenPositionOutside> outside);

/// Brings a window to the front, a minimised one too. Null is nothing.
PLUGININTERFACE_EXPORT void PopupWidget(QWidget *widget);

} // namespace Globals
