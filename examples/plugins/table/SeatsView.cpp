#include "SeatsView.h"

#include "SeatView.h"

#include <common/TableTexts.h>

#include <QPainter>
#include <QtMath>

#include <algorithm>

namespace {

constexpr int RAIL = 8;         // pixels
constexpr int FELT_SHADE = 130; // per cent, as QColor::darker() takes it
constexpr int RAIL_SHADE = 160;

} // namespace

CSeatsView::CSeatsView(const LobbyProtocol::STable &table, QWidget *parent)
    : QWidget(parent)
    , m_table(table)
{
    setObjectName(QStringLiteral("seats"));
}

void CSeatsView::SetPlace(quint16 place)
{
    using TableProtocol::PLACES_AROUND;
    m_usPlace = place;
    const auto first = static_cast<quint16>((place - 1) / PLACES_AROUND * PLACES_AROUND + 1);
    if (first != m_usFirst) {
        qDeleteAll(m_seats);
        m_seats.clear();
        const auto money = TableTexts::IsTournament(m_table) ? GlobalDefines::MONEYTYPE_TOURN : m_table.eMoney;
        for (quint16 next = first; next <= m_table.usPlaces && next < first + PLACES_AROUND; ++next)
            m_seats.append(new CSeatView(next, money, this));
        for (CSeatView *seat : qAsConst(m_seats))
            seat->show();
        m_usFirst = first;
        updateGeometry();
    }
    ArrangeSeats();
}

void CSeatsView::ShowSeats(const QVector<TableProtocol::SSeat> &seats)
{
    for (int i = 0; i < m_seats.size(); ++i) {
        const auto seat = std::find_if(seats.begin(), seats.end(), [&](const TableProtocol::SSeat &candidate) {
            return candidate.usPlace == m_usFirst + i;
        });
        m_seats.at(i)->ShowSeat(seat == seats.end() ? std::nullopt : std::optional(*seat));
    }
}

QSize CSeatsView::GetSeatSize() const
{
    return m_seats.isEmpty() ? QSize() : m_seats.constFirst()->size();
}

// Ten seats fit side by side then.
QSize CSeatsView::minimumSizeHint() const
{
    return m_seats.isEmpty() ? QSize() : QSize(9 * GetSeatSize().width() / 2, 6 * GetSeatSize().height());
}

// Places seats clockwise on an ellipse, seen from the middle, the user's own at the bottom.
void CSeatsView::ArrangeSeats()
{
    const QSize seat = GetSeatSize();
    const QSizeF radius = QSizeF(size() - seat) / 2;
    for (int i = 0; i < m_seats.size(); ++i) {
        const qreal angle = M_PI_2 + 2 * M_PI * (m_usFirst + i - m_usPlace) / int(m_seats.size());
        const QPointF corner(radius.width() * (1 + qCos(angle)), radius.height() * (1 + qSin(angle)));
        m_seats.at(i)->move(corner.toPoint());
    }
}

void CSeatsView::paintEvent(QPaintEvent *)
{
    const QSize seat = GetSeatSize();
    const QRectF felt =
        QRectF(rect()).adjusted(seat.width() / 2.0, seat.height() / 2.0, -seat.width() / 2.0, -seat.height() / 2.0);
    const QColor colour = palette().color(QPalette::Highlight).darker(FELT_SHADE);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(colour);
    painter.setPen(QPen(colour.darker(RAIL_SHADE), RAIL));
    painter.drawEllipse(felt);
}

void CSeatsView::resizeEvent(QResizeEvent *)
{
    ArrangeSeats();
}
