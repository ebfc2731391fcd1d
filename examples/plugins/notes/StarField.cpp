#include "StarField.h"

#include <QtWidgets>

#include <cmath>

namespace {

constexpr int STARS = 5;
constexpr QRgb GOLD = 0xffe0a616;

QPolygonF MakeStar(const QRectF &place)
{
    constexpr int corners = 10; // every other one points inwards
    QPolygonF star;
    for (int corner = 0; corner < corners; ++corner) {
        const double radius = place.width() * (corner % 2 == 0 ? 0.5 : 0.22);
        const double angle = qDegreesToRadians(corner * 360.0 / corners);
        star.append(place.center() + radius * QPointF(std::sin(angle), -std::cos(angle)));
    }
    return star;
}

} // namespace

CStarField::CStarField(QWidget *parent)
    : QAbstractSlider(parent)
{
    setOrientation(Qt::Horizontal);
    setRange(0, STARS);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize CStarField::sizeHint() const
{
    const int size = fontMetrics().height() * 3 / 2;
    return {STARS * size, size};
}

QRect CStarField::GetPlace(int star) const
{
    const int size = width() / STARS;
    return QStyle::visualRect(layoutDirection(), rect(), QRect((star - 1) * size, 0, size, height()));
}

void CStarField::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::WindowText));
    const QBrush shine(isEnabled() ? QColor(GOLD) : palette().color(QPalette::Mid));
    for (int star = 1; star <= STARS; ++star) {
        painter.setBrush(star <= value() ? shine : QBrush());
        painter.drawPolygon(MakeStar(QRectF(GetPlace(star)).adjusted(3, 3, -3, -3)));
    }
    QStyleOptionFocusRect option;
    option.initFrom(this);
    if (hasFocus())
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
}

void CStarField::keyPressEvent(QKeyEvent *event)
{
    bool isDigit = false;
    const int stars = event->text().toInt(&isDigit); // on some keyboards a digit needs the Shift key
    if (isDigit && stars <= STARS && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
        setValue(stars);
    else
        QAbstractSlider::keyPressEvent(event);
}

void CStarField::mousePressEvent(QMouseEvent *event)
{
    for (int star = 1; star <= STARS; ++star) {
        if (event->button() == Qt::LeftButton && GetPlace(star).contains(event->pos()))
            return setValue(star == value() ? 0 : star);
    }
}

// A wheel that scrolls the view must not change what the user has noted.
void CStarField::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
