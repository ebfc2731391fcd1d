#include "ScreenPlacement.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>

namespace {

// One dimension of a placement: a length and the edges of the reference.
struct SSpan
{
    int iFirst; // coordinate of the reference's first pixel
    int iLast;
    int iReferenceLength;
    int iLength;
};

int Align(const SSpan &span, bool toFirst, bool toLast, bool toCenter, bool outside)
{
    if (toFirst)
        return span.iFirst - (outside ? span.iLength : 0);
    if (toLast)
        return span.iLast - (outside ? 0 : span.iLength);
    return toCenter ? span.iFirst + (span.iReferenceLength - span.iLength) / 2 : 0;
}

QRect TopmostFrame(const QWidget *widget)
{
    while (widget->parentWidget())
        widget = widget->parentWidget();
    return widget->frameGeometry();
}

QRect ScreenGeometry(int number)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const QScreen *screen =
        number < 0 || number >= screens.size() ? QGuiApplication::primaryScreen() : screens.at(number);
    return screen ? screen->availableGeometry() : QRect();
}

QRect ScreenGeometry(const QPoint &point)
{
    const QScreen *screen = QGuiApplication::screenAt(point);
    return screen ? screen->availableGeometry() : ScreenGeometry(-1);
}

} // namespace

QPoint Globals::CalculateScreenPosition(QRect widget, QRect reference, QRect screen,
                                        QFlags<Qt::AlignmentFlag> alignment,
                                        QFlags<GlobalDefines::ScreenPositionOutside> outside)
{
    if (!reference.isValid())
        reference = screen;
    if (!reference.isValid() || !widget.isValid())
        return widget.topLeft();
    int x = Align({reference.left(), reference.right(), reference.width(), widget.width()},
                  alignment.testFlag(Qt::AlignLeft), alignment.testFlag(Qt::AlignRight),
                  alignment.testFlag(Qt::AlignHCenter), outside.testFlag(GlobalDefines::SPO_Horizontal));
    int y = Align({reference.top(), reference.bottom(), reference.height(), widget.height()},
                  alignment.testFlag(Qt::AlignTop), alignment.testFlag(Qt::AlignBottom),
                  alignment.testFlag(Qt::AlignVCenter), outside.testFlag(GlobalDefines::SPO_Vertical));
    // If a widget doesn't fit, its right and bottom ends are kept on the screen.
    x = qMin(qMax(x, screen.x()), screen.right() - widget.width());
    y = qMin(qMax(y, screen.y()), screen.bottom() - widget.height());
    return {x, y};
}

void Globals::SetToScreenPosition(QWidget *widget, QFlags<Qt::AlignmentFlag> alignment, QWidget *relativeTo,
                                  int screen, QFlags<GlobalDefines::ScreenPositionOutside> outside)
{
    if (!widget || widget->isFullScreen() || !widget->isWindow() || !widget->isVisible())
        return;
    QRect reference = ScreenGeometry(screen);
    if (relativeTo)
        reference = TopmostFrame(relativeTo);
    else if (widget->parentWidget())
        reference = TopmostFrame(widget->parentWidget());
    widget->move(CalculateScreenPosition(widget->frameGeometry(), reference, ScreenGeometry(reference.center()),
                                         alignment, outside));
}

void Globals::PopupWidget(QWidget *widget)
{
    if (!widget)
        return;
    if (widget->isMaximized())
        widget->showMaximized();
    else if (widget->isMinimized())
        widget->showNormal();
    if (QApplication::activeWindow()) {
        widget->activateWindow();
        widget->raise();
    } else {
        widget->raise();
        widget->show();
        widget->activateWindow();
    }
}
