#pragma once

#include <Export.h>
#include <plugin/GlobalDefines.h>

#include <QPoint>
#include <QRect>
#include <Qt>

class QWidget;

/// \file
/// Functions that place windows on the screen. All lengths are in device-independent pixels. Main thread.
namespace Globals {

/// Returns the position for the top left corner of \a widget: aligned within \a reference, or on the outside of its
/// edge with \a outside, and then moved onto \a screen as far as it fits. An invalid \a reference is replaced by the
/// screen. If that is invalid, too, or \a widget is, returns the widget's own corner.
PLUGININTERFACE_EXPORT QPoint CalculateScreenPosition(QRect widget, QRect reference, QRect screen,
                                                      QFlags<Qt::AlignmentFlag> alignment,
                                                      QFlags<GlobalDefines::ScreenPositionOutside> outside);

/// Moves a visible window to the position that CalculateScreenPosition() returns, relative to the window of
/// \a relativeTo, or else of the parent, or else to the screen with the number \a screen, or the primary one if there
/// is no such screen. Does nothing if the widget isn't a window, isn't visible or is full screen.
PLUGININTERFACE_EXPORT void SetToScreenPosition(QWidget *widget, QFlags<Qt::AlignmentFlag> alignment,
                                                QWidget *relativeTo, int screen,
                                                QFlags<GlobalDefines::ScreenPositionOutside> outside);

/// Brings a window to the front, even a minimised one. Null is ignored.
PLUGININTERFACE_EXPORT void PopupWidget(QWidget *widget);

} // namespace Globals
