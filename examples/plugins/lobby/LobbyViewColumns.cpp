#include "LobbyView.h"

#include <ui/TableView.h>

#include <QEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTableView>

#include <algorithm>
#include <functional>

namespace {

constexpr int ALL_COLUMNS = -1;
constexpr int MINIMUM_ROWS = 8;
const QString TABLE_KEY = QStringLiteral("lobby");
const QLatin1String LONG_NAME("Silver Mountain Championship");
const QLatin1String LONG_PLAYERS("1000/1000");

} // namespace

// What the columns need at least, which the table always has room for.
void CLobbyView::SetColumnWidths(bool onlyWiden)
{
    QHeaderView *header = m_pTable->horizontalHeader();
    const int margins = fontMetrics().horizontalAdvance(QLatin1Char('M'));
    const int mark = style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, header); // for any column to sort by
    int sum = m_pTable->verticalScrollBar()->sizeHint().width() + margins;
    for (int column = 0; column < CTableListModel::COL_COUNT; ++column) {
        const int width = qMax(GetTextWidth(column) + margins, header->sectionSizeHint(column) + mark);
        if (column == m_neededWidths.size())
            m_neededWidths.append(width);
        m_neededWidths[column] = onlyWiden ? qMax<double>(width, m_neededWidths.at(column)) : width;
        sum += qRound(m_neededWidths.at(column));
    }
    ShowColumns(FitColumns(TableView::Load(TABLE_KEY), ALL_COLUMNS));
    m_pTable->setMinimumSize(sum, m_pTable->verticalHeader()->defaultSectionSize() * (MINIMUM_ROWS + 1));
}

// Fits the widths into the table; none at all if a column would get too narrow for its texts. \a column is the one
// that the user has dragged, or ALL_COLUMNS.
QList<double> CLobbyView::FitColumns(const QList<double> &widths, int column) const
{
    const auto fitted = TableView::Recalculate(m_pTable->viewport()->width(), widths, m_neededWidths, column);
    const bool fit = fitted.size() == m_neededWidths.size() &&
                     std::equal(fitted.begin(), fitted.end(), m_neededWidths.begin(), std::greater_equal<>());
    return fit ? fitted : QList<double>();
}

// Those that the texts need, fitted in, if there are none: as where the stored ones are of another language, or of a
// table of other columns.
void CLobbyView::ShowColumns(const QList<double> &widths)
{
    const QScopedValueRollback<bool> changing(m_bTableChanging, true);
    m_shownWidths = widths.isEmpty() ? FitColumns({}, ALL_COLUMNS) : widths;
    m_shownWidths = m_shownWidths.isEmpty() ? m_neededWidths : m_shownWidths; // before it has its place
    for (int column = 0; column < m_shownWidths.size(); ++column)
        m_pTable->horizontalHeader()->resizeSection(column, qRound(m_shownWidths.at(column)));
}

// A drag takes from the next column what that can spare.
void CLobbyView::slot_ColumnResized(int column)
{
    if (m_bTableChanging)
        return;
    QList<double> widths;
    for (int i = 0; i < m_neededWidths.size(); ++i)
        widths.append(m_pTable->columnWidth(i));
    const QList<double> fitted = FitColumns(widths, column);
    ShowColumns(fitted.isEmpty() ? m_shownWidths : fitted);
    const QScopedValueRollback<bool> changing(m_bTableChanging, true);
    TableView::Store(TABLE_KEY, m_shownWidths);
}

void CLobbyView::slot_OrderChanged(int column, Qt::SortOrder order)
{
    if (m_bTableChanging)
        return;
    const QScopedValueRollback<bool> changing(m_bTableChanging, true);
    TableView::SetSortingColumn(TABLE_KEY, column);
    TableView::SetSortingOrder(TABLE_KEY, order == Qt::DescendingOrder);
}

void CLobbyView::slot_TableSettingChanged()
{
    if (m_bTableChanging)
        return;
    ShowColumns(FitColumns(TableView::Load(TABLE_KEY), ALL_COLUMNS));
    const int column = TableView::GetSortingColumn(TABLE_KEY);
    const bool known = column >= 0 && column < CTableListModel::COL_COUNT;
    const QScopedValueRollback<bool> changing(m_bTableChanging, true);
    m_pTable->sortByColumn(known ? column : CTableListModel::COL_NAME,
                           TableView::GetSortingOrder(TABLE_KEY) ? Qt::DescendingOrder : Qt::AscendingOrder);
}

bool CLobbyView::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_pTable->viewport() && event->type() == QEvent::Resize)
        ShowColumns(FitColumns(TableView::Load(TABLE_KEY), ALL_COLUMNS));
    return QWidget::eventFilter(object, event);
}

// The types and games there are; of the others about the widest that there may be, for names are the server's choice.
int CLobbyView::GetTextWidth(int column) const
{
    QSet<QString> texts;
    if (column == CTableListModel::COL_NAME)
        texts.insert(LONG_NAME);
    else if (column == CTableListModel::COL_STAKES)
        texts.insert(m_pModel->GetTexts().GetLongStakes());
    else if (column == CTableListModel::COL_PLAYERS)
        texts.insert(LONG_PLAYERS);
    else if (column == CTableListModel::COL_START)
        texts.insert(m_pModel->GetTexts().GetLongestDate());
    else
        for (int row = 0; row < m_pModel->rowCount(); ++row)
            texts.insert(m_pModel->index(row, column).data().toString());
    int width = 0;
    for (const QString &text : qAsConst(texts))
        width = qMax(width, fontMetrics().horizontalAdvance(text));
    return width;
}
