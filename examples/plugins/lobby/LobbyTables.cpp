#include "LobbyTables.h"

#include <common/TableTexts.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>
#include <time/CountDown.h>
#include <ui/TableView.h>

#include <QCollator>
#include <QElapsedTimer>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPalette>
#include <QScopedValueRollback>

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

using LobbyProtocol::STable;

namespace {

using TTables = CLobbyTables;

constexpr qint64 MINUTE_SECONDS = 60;
constexpr qint64 HOUR_SECONDS = 60 * MINUTE_SECONDS;
constexpr qint64 DAY_SECONDS = 24 * HOUR_SECONDS;
// Each range that has changed costs a view some time.
constexpr int MOST_RANGES = 32;
constexpr qint64 SLICE_MS = 4;
constexpr const char *COLUMN_KEYS[] = {"LOBBY_COLUMN_NAME",   "LOBBY_COLUMN_TYPE",    "LOBBY_COLUMN_GAME",
                                       "LOBBY_COLUMN_STAKES", "LOBBY_COLUMN_PLAYERS", "LOBBY_COLUMN_START"};

// Returns the seconds until a table starts if it starts within 24 hours by the client's clock, else a negative
// number.
qint64 CountDown(const STable &table)
{
    const qint64 left = qint64(table.uiStart) - CCasinoTime::GetInstance()->GetTimeUTCClient();
    return left < DAY_SECONDS ? left : -1;
}

// Returns the text of a countdown, which shows seconds in the last hour. Each is made once, for there may be one in
// every row.
QString GetCountDownText(qint64 seconds)
{
    const qint64 shown = seconds >= HOUR_SECONDS ? seconds - seconds % MINUTE_SECONDS : seconds;
    return Texts::Once(QStringLiteral("countdown %1").arg(shown), [shown] {
        if (shown >= HOUR_SECONDS)
            return Texts::Get("LOBBY_IN_HOURS", {{"#hours#", shown / HOUR_SECONDS},
                                                 {"#minutes#", shown % HOUR_SECONDS / MINUTE_SECONDS}});
        const CTranslationItem time = Globals::GetCountDownString(uint(shown), GlobalDefines::CST_MinAndSecs);
        return Texts::Get("LOBBY_IN", {{"#time#", time.GetTranslatedText()}});
    });
}

// Returns the text of a cell; for a countdown the date, which replaces it later.
QString GetText(const STable &table, int column)
{
    switch (column) {
    case TTables::COL_NAME:
        return table.strName;
    case TTables::COL_TYPE:
        return TableTexts::GetType(table.eType);
    case TTables::COL_GAME:
        return TableTexts::GetGame(table);
    case TTables::COL_STAKES:
        return TableTexts::GetStakes(table);
    case TTables::COL_PLAYERS:
        return QStringLiteral("%1/%2").arg(table.usPlayers).arg(table.usPlaces);
    default:
        return table.uiStart == 0 ? QString()
                                  : CCasinoTime::GetInstance()->GetDateTimeString(table.uiStart).GetTranslatedText();
    }
}

// Returns a number that is the same for all tables with the same text in the column of the type or the game.
int GetKind(const STable &table, int column)
{
    return column == TTables::COL_TYPE ? table.eType : (table.eLimit << 8) + table.eGame;
}

// Returns the position of each kind's text among the texts of all kinds.
QHash<int, quint64> RankKinds(const QVector<STable> &tables, int column)
{
    QHash<int, QString> texts;
    for (const STable &table : tables) {
        const int kind = GetKind(table, column);
        if (!texts.contains(kind))
            texts.insert(kind, GetText(table, column));
    }
    QList<int> kinds = texts.keys();
    const QCollator collator;
    std::sort(kinds.begin(), kinds.end(),
              [&](int left, int right) { return collator.compare(texts[left], texts[right]) < 0; });
    QHash<int, quint64> ranks;
    for (const int kind : qAsConst(kinds))
        ranks.insert(kind, quint64(ranks.size()));
    return ranks;
}

// Returns the value to sort by in a column of numbers.
quint64 GetSortValue(const STable &table, int column)
{
    switch (column) {
    case TTables::COL_STAKES:
        // Amounts of different money can't be compared, so each kind stays together; a sum takes 33 bits.
        return (quint64(table.eMoney) << 33) + table.mvLow + quint64(table.mvHigh);
    case TTables::COL_PLAYERS:
        return table.usPlayers;
    default:
        // Tables without a start time are sorted after those that have one.
        return table.uiStart == 0 ? std::numeric_limits<quint32>::max() : table.uiStart;
    }
}

QVariant Alignment(int column)
{
    const bool number = column >= TTables::COL_STAKES;
    return int(Qt::AlignVCenter | (number ? Qt::AlignRight : Qt::AlignLeft));
}

} // namespace

CLobbyTables::CLobbyTables(CTableList *list, QObject *parent)
    : QAbstractTableModel(parent)
    , m_pList(list)
{
    connect(list, &CTableList::signal_TablesReplaced, this, &CLobbyTables::OnTablesReplaced);
    connect(list, &CTableList::signal_PlayersChanged, this, &CLobbyTables::OnPlayersChanged);
    connect(list, &CTableList::signal_StaleChanged, this, &CLobbyTables::signal_StatusChanged);
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    // In a turn of the event loop of its own, since everything else changes its texts in this one.
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CLobbyTables::OnTextsChanged, Qt::QueuedConnection);
    connect(clock, &CCasinoTime::signal_TimeZoneChanged, this, &CLobbyTables::OnTextsChanged, Qt::QueuedConnection);
    connect(clock, &CCasinoTime::signal_TimeChanged, this, &CLobbyTables::OnClockChanged);
    for (const auto signal : {&CLobbyTables::rowsInserted, &CLobbyTables::rowsRemoved})
        connect(this, signal, this, &CLobbyTables::TellChosenRow);
    connect(this, &CLobbyTables::layoutChanged, this, &CLobbyTables::TellChosenRow);
    connect(&m_measuring, &QTimer::timeout, this, &CLobbyTables::Measure);
    const CSettings *settings = CSettings::GetInstance();
    connect(settings, &CSettings::signal_RinggameFilterChanged, this, &CLobbyTables::TakeFilter);
    connect(settings, &CSettings::signal_SelectedGametypeChanged, this, &CLobbyTables::TakeFilter);
    connect(settings, &CSettings::signal_HeaderSortingColumnChanged, this, &CLobbyTables::TakeOrder);
    connect(settings, &CSettings::signal_HeaderSortingOrderChanged, this, &CLobbyTables::TakeOrder);
    TakeFilter();
    TakeOrder();
    StartMeasuring();
    Measure();
}

QString CLobbyTables::GetCount() const
{
    const int all = int(m_pList->GetTables().size());
    const int shown = rowCount();
    return Texts::Get(shown == all ? "LOBBY_TABLES" : "LOBBY_SOME_TABLES", {{"#n#", shown}, {"#all#", all}});
}

QString CLobbyTables::GetStatus() const
{
    const QString answer = m_seatAnswer.GetTranslatedText();
    if (!answer.isEmpty() || !IsStale())
        return answer;
    return Texts::Get(m_pList->GetTables().isEmpty() ? "LOBBY_WAITING" : "LOBBY_STALE");
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
    TellChosenRow();
}

void CLobbyTables::TellChosenRow()
{
    if (m_iChosenRow == GetChosenRow())
        return;
    m_iChosenRow = GetChosenRow();
    Q_EMIT signal_ChosenRowChanged();
}

void CLobbyTables::SetSeatAnswer(const CTranslationItem &answer)
{
    m_seatAnswer = answer;
    Q_EMIT signal_StatusChanged();
}

void CLobbyTables::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= COL_COUNT || (column == m_iOrderColumn && order == m_eOrder))
        return;
    m_iOrderColumn = column;
    m_eOrder = order;
    Show(MakeOrder());
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
        Q_EMIT signal_SeatWanted(m_shown.at(m_chosen.row()));
}

int CLobbyTables::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

int CLobbyTables::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : COL_COUNT;
}

QVariant CLobbyTables::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    if (role == Qt::TextAlignmentRole)
        return Alignment(index.column());
    if (role == Qt::ForegroundRole && IsStale())
        return QGuiApplication::palette().brush(QPalette::PlaceholderText);
    // A table that the server has removed is null until its row is removed too.
    const STable *table = role == Qt::DisplayRole ? m_pList->FindTable(m_shown.at(index.row())) : nullptr;
    if (!table)
        return QVariant();
    if (index.column() == COL_START && CountDown(*table) >= 0)
        return GetCountDownText(CountDown(*table));
    return GetText(*table, index.column());
}

QVariant CLobbyTables::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= COL_COUNT)
        return QVariant();
    if (role == Qt::DisplayRole)
        return Texts::Get(COLUMN_KEYS[section]);
    return role == Qt::TextAlignmentRole ? Alignment(section) : QVariant();
}

void CLobbyTables::OnTablesReplaced(const QSet<quint32> &changed)
{
    m_counting = FindCounting();
    Filter();
    TellChanged(changed, 0, COL_COUNT - 1);
    StartMeasuring();
}

void CLobbyTables::OnPlayersChanged(const QSet<quint32> &changed)
{
    TellChanged(changed, COL_PLAYERS, COL_PLAYERS);
    if (m_iOrderColumn == COL_PLAYERS)
        Show(MakeOrder());
}

void CLobbyTables::OnTextsChanged()
{
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, COL_COUNT - 1);
    if (!m_shown.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, COL_COUNT - 1), {Qt::DisplayRole});
    Filter();
    m_seatAnswer.ReTranslate();
    Q_EMIT signal_TextsChanged();
    Q_EMIT signal_StatusChanged();
    StartMeasuring();
}

QSet<quint32> CLobbyTables::FindCounting() const
{
    QSet<quint32> counting;
    for (const STable &table : m_pList->GetTables()) {
        if (CountDown(table) >= 0)
            counting.insert(table.uiID);
    }
    return counting;
}

// Updates the texts of the tables that count down, and shows the date for those whose countdown has just ended.
void CLobbyTables::OnClockChanged()
{
    const QSet<quint32> counting = FindCounting();
    TellChanged(std::exchange(m_counting, counting) + counting, COL_START, COL_START);
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
    Filter();
    Q_EMIT signal_StatusChanged();
}

void CLobbyTables::ClearFilter()
{
    CSettings::GetInstance()->SetRinggameFilter(QByteArray());
    CSettings::GetInstance()->SetSelectedGametype(ANY_TYPE);
}

void CLobbyTables::TakeOrder()
{
    if (m_bStoring)
        return;
    const int column = TableView::GetSortingColumn(TABLE_KEY);
    const bool known = column >= 0 && column < COL_COUNT;
    m_iOrderColumn = known ? column : COL_NAME;
    m_eOrder = TableView::GetSortingOrder(TABLE_KEY) ? Qt::DescendingOrder : Qt::AscendingOrder;
    Show(MakeOrder());
    Q_EMIT signal_OrderChanged();
}

void CLobbyTables::Filter()
{
    QHash<int, bool> games; // whether the text of the game contains the text to search for
    const auto contains = [&](const STable &table) {
        const int kind = GetKind(table, COL_GAME);
        if (!games.contains(kind))
            games.insert(kind, GetText(table, COL_GAME).contains(m_strText, Qt::CaseInsensitive));
        return games.value(kind) || table.strName.contains(m_strText, Qt::CaseInsensitive);
    };
    m_accepted.clear();
    const QVector<STable> &tables = m_pList->GetTables();
    for (int row = 0; row < tables.size(); ++row) {
        if ((m_iType == ANY_TYPE || tables.at(row).eType == m_iType) && contains(tables.at(row)))
            m_accepted.append(row);
    }
    Show(MakeOrder());
}

// Tables that don't differ in the column are in the order of their names, which is that of the list.
CLobbyTables::TIDs CLobbyTables::MakeOrder() const
{
    const QVector<STable> &tables = m_pList->GetTables();
    const bool isText = m_iOrderColumn == COL_TYPE || m_iOrderColumn == COL_GAME;
    const QHash<int, quint64> ranks = isText ? RankKinds(tables, m_iOrderColumn) : QHash<int, quint64>();
    const bool isDescending = m_eOrder == Qt::DescendingOrder;
    QVector<std::tuple<quint64, int, quint32>> rows; // value, row in the list, id
    rows.reserve(m_accepted.size());
    for (const int row : m_accepted) {
        const STable &table = tables.at(row);
        quint64 value = quint64(row);
        if (isText)
            value = ranks.value(GetKind(table, m_iOrderColumn));
        else if (m_iOrderColumn != COL_NAME)
            value = GetSortValue(table, m_iOrderColumn);
        rows.append({isDescending ? ~value : value, row, table.uiID});
    }
    std::sort(rows.begin(), rows.end());
    TIDs ids;
    ids.reserve(rows.size());
    for (const auto &row : qAsConst(rows))
        ids.append(std::get<quint32>(row));
    return ids;
}

// Tells the views at most four changes, however many tables come, go and move: rows that aren't next to each other
// are moved together, which takes a view no longer than to move one.
void CLobbyTables::Show(const TIDs &ids)
{
    HideAllBut(ids);
    const QSet<quint32> shown(m_shown.begin(), m_shown.end());
    TIDs added;
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(added), [&](quint32 id) { return !shown.contains(id); });
    if (!added.isEmpty()) {
        const int first = int(ids.indexOf(added.constFirst()));
        const bool isTogether = ids.at(first + added.size() - 1) == added.constLast();
        const int row = isTogether ? first : rowCount();
        beginInsertRows(QModelIndex(), row, row + int(added.size()) - 1);
        m_shown = m_shown.mid(0, row) + added + m_shown.mid(row);
        endInsertRows();
    }
    Move(ids);
}

void CLobbyTables::HideAllBut(const TIDs &ids)
{
    const QSet<quint32> wanted(ids.begin(), ids.end());
    TIDs order = m_shown;
    const auto end =
        std::stable_partition(order.begin(), order.end(), [&](quint32 id) { return wanted.contains(id); });
    const int count = int(order.end() - end);
    if (count == 0)
        return;
    int first = int(m_shown.indexOf(*end));
    if (m_shown.at(first + count - 1) != order.constLast()) {
        Move(order);
        first = int(order.size()) - count;
    }
    beginRemoveRows(QModelIndex(), first, first + count - 1);
    m_shown.remove(first, count);
    endRemoveRows();
}

// Shows the same tables in another order.
void CLobbyTables::Move(const TIDs &ids)
{
    if (ids.size() < 2 || ids == m_shown)
        return;
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex &cell : before)
        after.append(index(int(ids.indexOf(m_shown.at(cell.row()))), cell.column()));
    m_shown = ids;
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

// Tells the ranges of rows that have changed; if there are many, one range that contains them.
void CLobbyTables::TellChanged(const QSet<quint32> &changed, int firstColumn, int lastColumn)
{
    QVector<QPair<int, int>> ranges;
    for (int row = 0; row < m_shown.size() && !changed.isEmpty(); ++row) {
        if (!changed.contains(m_shown.at(row)))
            continue;
        if (ranges.isEmpty() || ranges.constLast().second != row - 1)
            ranges.append({row, row});
        ranges.last().second = row;
    }
    if (ranges.size() > MOST_RANGES)
        ranges = {{ranges.constFirst().first, ranges.constLast().second}};
    for (const auto &[first, last] : qAsConst(ranges))
        Q_EMIT dataChanged(index(first, firstColumn), index(last, lastColumn), {Qt::DisplayRole});
}

void CLobbyTables::StartMeasuring()
{
    m_iMeasured = 0;
    m_measured.clear();
    m_measuredTexts.clear();
    const QFontMetricsF metrics(QGuiApplication::font());
    for (const char *key : COLUMN_KEYS)
        m_measured.append(metrics.horizontalAdvance(Texts::Get(key)));
    m_measured[COL_START] =
        qMax(m_measured.at(COL_START), metrics.horizontalAdvance(GetCountDownText(DAY_SECONDS - 1)));
    m_measuring.start(0);
}

// Measures the texts of some tables.
void CLobbyTables::Measure()
{
    const QVector<STable> &tables = m_pList->GetTables();
    const QFontMetricsF metrics(QGuiApplication::font());
    QElapsedTimer slice;
    slice.start();
    for (; m_iMeasured < tables.size() && !slice.hasExpired(SLICE_MS); ++m_iMeasured) {
        STable table = tables.at(m_iMeasured);
        table.usPlayers = table.usPlaces; // as wide as it gets
        for (int column = 0; column < COL_COUNT; ++column) {
            const QString text = GetText(table, column);
            auto width = m_measuredTexts.find(text);
            if (width == m_measuredTexts.end())
                width = m_measuredTexts.insert(text, metrics.horizontalAdvance(text));
            m_measured[column] = qMax(m_measured.at(column), *width);
        }
    }
    if (m_iMeasured < tables.size())
        return;
    m_measuring.stop();
    m_measuredTexts.clear();
    m_textWidths = m_measured;
    Q_EMIT signal_TextWidthsChanged();
}
