#include "LobbyColumns.h"

#include "LobbyTables.h"

#include <settings/Settings.h>
#include <ui/TableView.h>

#include <QScopedValueRollback>

#include <algorithm>
#include <functional>

namespace {

constexpr int NO_COLUMN = -1;

} // namespace

CLobbyColumns::CLobbyColumns(QObject *parent)
    : QObject(parent)
{
    connect(CSettings::GetInstance(), &CSettings::signal_HeaderSizesChanged, this, [this] {
        if (!m_bStoring)
            Fit();
    });
}

void CLobbyColumns::SetNeeded(const QList<qreal> &widths)
{
    if (m_needed == widths)
        return;
    m_needed = widths;
    Q_EMIT signal_NeededChanged();
    Fit();
}

void CLobbyColumns::SetRoom(qreal room)
{
    if (qFuzzyCompare(1 + m_room, 1 + room))
        return;
    m_room = room;
    Q_EMIT signal_RoomChanged();
    Fit();
}

void CLobbyColumns::Drag(int column, qreal width)
{
    QList<qreal> widths = m_widths;
    if (column < 0 || column >= widths.size())
        return;
    widths[column] = width;
    widths = TableView::Recalculate(m_room, widths, m_needed, column);
    const bool isGood = AreWideEnough(widths);
    if (isGood)
        m_widths = widths;
    Q_EMIT signal_WidthsChanged();
    if (!isGood)
        return;
    const QScopedValueRollback<bool> storing(m_bStoring, true);
    TableView::Store(CLobbyTables::TABLE_KEY, m_widths);
}

// Stored widths, perhaps of another language, may be too narrow for the texts.
void CLobbyColumns::Fit()
{
    m_widths = TableView::Recalculate(m_room, TableView::Load(CLobbyTables::TABLE_KEY), m_needed, NO_COLUMN);
    if (!AreWideEnough(m_widths))
        m_widths = TableView::Recalculate(m_room, {}, m_needed, NO_COLUMN);
    Q_EMIT signal_WidthsChanged();
}

bool CLobbyColumns::AreWideEnough(const QList<qreal> &widths) const
{
    return std::equal(widths.begin(), widths.end(), m_needed.begin(), m_needed.end(), std::greater_equal<>());
}
