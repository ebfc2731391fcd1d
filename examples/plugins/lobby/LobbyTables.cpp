#include "LobbyTables.h"

#include <settings/Settings.h>
#include <ui/TableView.h>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>

CLobbyTables::CLobbyTables(CTableListModel *model, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_pModel(model)
{
    setSourceModel(model);
    setSortRole(CTableListModel::SORT_ROLE);
    setSortCaseSensitivity(Qt::CaseInsensitive);
    setSortLocaleAware(true);
    connect(model, &CTableListModel::signal_ListChanged, this, &CLobbyTables::OnListChanged);
    connect(model, &CTableListModel::signal_TextsChanged, this, [this] {
        m_seatAnswer.ReTranslate();
        Q_EMIT signal_TextsChanged();
        OnListChanged();
    });
    for (const auto signal : {&CLobbyTables::rowsInserted, &CLobbyTables::rowsRemoved})
        connect(this, signal, this, &CLobbyTables::signal_ChosenRowChanged);
    connect(this, &CLobbyTables::layoutChanged, this, &CLobbyTables::signal_ChosenRowChanged);
    const CSettings *settings = CSettings::GetInstance();
    connect(settings, &CSettings::signal_RinggameFilterChanged, this, &CLobbyTables::TakeFilter);
    connect(settings, &CSettings::signal_SelectedGametypeChanged, this, &CLobbyTables::TakeFilter);
    connect(settings, &CSettings::signal_HeaderSortingColumnChanged, this, &CLobbyTables::TakeOrder);
    connect(settings, &CSettings::signal_HeaderSortingOrderChanged, this, &CLobbyTables::TakeOrder);
    TakeFilter();
    TakeOrder();
    OnListChanged();
}

QString CLobbyTables::GetStatus() const
{
    const int all = m_pModel->rowCount();
    const int shown = rowCount();
    QString status =
        Texts::Get(shown == all ? "LOBBY_TABLES" : "LOBBY_SOME_TABLES", {{"#n#", shown}, {"#all#", all}});
    if (IsStale())
        status = all == 0 ? Texts::Get("LOBBY_WAITING") : Texts::Get("LOBBY_STALE", {{"#tables#", status}});
    const QString answer = m_seatAnswer.GetTranslatedText();
    return answer.isEmpty() ? status : Texts::Get("LOBBY_ANSWER", {{"#status#", status}, {"#answer#", answer}});
}

QVariantList CLobbyTables::GetTypes() const
{
    QVariantList types;
    for (const auto &[key, type] : TYPES)
        types.append(QVariantMap{{QStringLiteral("text"), Texts::Get(key)}, {QStringLiteral("value"), type}});
    return types;
}

void CLobbyTables::SetChosenRow(int row)
{
    m_chosen = index(row, 0);
    Q_EMIT signal_ChosenRowChanged();
}

void CLobbyTables::SetSeatAnswer(const CTranslationItem &answer)
{
    m_seatAnswer = answer;
    Q_EMIT signal_StatusChanged();
}

void CLobbyTables::sort(int column, Qt::SortOrder order)
{
    if (column == sortColumn() && order == sortOrder())
        return;
    QSortFilterProxyModel::sort(column, order);
    {
        const QScopedValueRollback<bool> storing(m_bStoring, true);
        TableView::SetSortingColumn(TABLE_KEY, column);
        TableView::SetSortingOrder(TABLE_KEY, order == Qt::DescendingOrder);
    }
    Q_EMIT signal_OrderChanged();
}

void CLobbyTables::AskForSeat()
{
    if (m_chosen.isValid())
        Q_EMIT signal_SeatWanted(m_pModel->GetTable(mapToSource(m_chosen).row()).uiID);
}

bool CLobbyTables::filterAcceptsRow(int row, const QModelIndex &) const
{
    const auto contains = [this, row](int column) {
        return m_pModel->GetText(row, column).contains(m_strText, Qt::CaseInsensitive);
    };
    return (m_iType == ANY_TYPE || m_pModel->GetTable(row).eType == m_iType) &&
           (contains(CTableListModel::COL_NAME) || contains(CTableListModel::COL_GAME));
}

void CLobbyTables::OnListChanged()
{
    const QFontMetricsF metrics(QGuiApplication::font());
    m_textWidths.clear();
    for (int column = 0; column < CTableListModel::COL_COUNT; ++column) {
        QSet<QString> texts{m_pModel->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString()};
        for (int row = 0; row < m_pModel->rowCount(); ++row)
            texts.insert(m_pModel->GetText(row, column));
        qreal width = 0;
        for (const QString &text : qAsConst(texts))
            width = qMax(width, metrics.horizontalAdvance(text));
        m_textWidths.append(width);
    }
    Q_EMIT signal_TextWidthsChanged();
    Q_EMIT signal_StatusChanged();
}

// A user without a choice, or with a choice that this version doesn't know, sees all tables.
void CLobbyTables::TakeFilter()
{
    const CSettings *settings = CSettings::GetInstance();
    const int type = settings->GetSelectedGametype();
    const bool known =
        std::any_of(std::begin(TYPES), std::end(TYPES), [&](const auto &it) { return it.second == type; });
    m_strText = QString::fromUtf8(settings->GetRinggameFilter());
    m_iType = known ? type : ANY_TYPE;
    invalidateFilter();
    Q_EMIT signal_StatusChanged();
}

void CLobbyTables::TakeOrder()
{
    if (m_bStoring)
        return;
    const int column = TableView::GetSortingColumn(TABLE_KEY);
    const bool known = column >= 0 && column < CTableListModel::COL_COUNT;
    QSortFilterProxyModel::sort(known ? column : CTableListModel::COL_NAME,
                                TableView::GetSortingOrder(TABLE_KEY) ? Qt::DescendingOrder : Qt::AscendingOrder);
    Q_EMIT signal_OrderChanged();
}
