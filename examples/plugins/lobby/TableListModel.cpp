#include "TableListModel.h"

#include <common/TableTexts.h>
#include <common/Texts.h>
#include <time/CasinoTime.h>
#include <time/CountDown.h>

#include <algorithm>
#include <limits>

using LobbyProtocol::SPlayerCount;
using LobbyProtocol::STable;

namespace {

constexpr quint32 DAY_SECONDS = 24 * 60 * 60;
constexpr const char *COLUMN_KEYS[] = {"LOBBY_COLUMN_NAME",   "LOBBY_COLUMN_TYPE",    "LOBBY_COLUMN_GAME",
                                       "LOBBY_COLUMN_STAKES", "LOBBY_COLUMN_PLAYERS", "LOBBY_COLUMN_START"};

// Returns the seconds until a table starts if it starts within 24 hours by the client's clock, else a negative
// number.
qint64 CountDown(const STable &table)
{
    const qint64 left = qint64(table.uiStart) - CCasinoTime::GetInstance()->GetTimeUTCClient();
    return left < DAY_SECONDS ? left : -1;
}

QString PlayersText(const STable &table)
{
    return QStringLiteral("%1/%2").arg(table.usPlayers).arg(table.usPlaces);
}

// Returns the value to sort by; invalid for a column that sorts by its text.
QVariant SortValue(const STable &table, int column)
{
    switch (column) {
    case CTableListModel::COL_STAKES:
        // Amounts of different money can't be compared, so each kind stays together; a sum takes 33 bits.
        return (quint64(table.eMoney) << 33) + table.mvLow + quint64(table.mvHigh);
    case CTableListModel::COL_PLAYERS:
        return uint(table.usPlayers);
    case CTableListModel::COL_START:
        // Tables without a start time are sorted after those that have one.
        return table.uiStart == 0 ? std::numeric_limits<quint32>::max() : table.uiStart;
    default:
        return QVariant();
    }
}

QVariant Alignment(int column)
{
    const bool number = column >= CTableListModel::COL_STAKES;
    return int(Qt::AlignVCenter | (number ? Qt::AlignRight : Qt::AlignLeft));
}

} // namespace

CTableListModel::CTableListModel(QObject *parent)
    : QAbstractTableModel(parent)
{
    const CCasinoTime *clock = CCasinoTime::GetInstance();
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CTableListModel::OnTextsChanged);
    connect(clock, &CCasinoTime::signal_TimeZoneChanged, this, &CTableListModel::OnTextsChanged);
    connect(clock, &CCasinoTime::signal_TimeChanged, this, &CTableListModel::OnClockChanged);
}

const STable *CTableListModel::FindTable(quint32 id) const
{
    const int row = m_rowsByID.value(id, -1);
    return row < 0 ? nullptr : &m_rows.at(row).table;
}

void CTableListModel::SetStale()
{
    m_bStale = true;
    Q_EMIT signal_ListChanged();
}

void CTableListModel::SetTables(const QMap<quint32, STable> &tables)
{
    QMap<quint32, STable> added = tables;
    for (int row = m_rows.size() - 1; row >= 0; --row) {
        const auto table = added.find(m_rows.at(row).table.uiID);
        if (table == added.end()) {
            beginRemoveRows(QModelIndex(), row, row);
            m_rows.remove(row);
            endRemoveRows();
        } else {
            m_rows[row] = MakeRow(*table);
            added.erase(table);
            Q_EMIT dataChanged(index(row, 0), index(row, COL_COUNT - 1));
        }
    }
    if (!added.isEmpty()) {
        beginInsertRows(QModelIndex(), m_rows.size(), m_rows.size() + added.size() - 1);
        std::transform(added.begin(), added.end(), std::back_inserter(m_rows), &MakeRow);
        endInsertRows();
    }
    m_rowsByID.clear();
    for (int row = 0; row < m_rows.size(); ++row)
        m_rowsByID.insert(GetTable(row).uiID, row);
    m_bStale = false;
    Q_EMIT signal_ListChanged();
}

void CTableListModel::SetPlayers(const SPlayerCount &count)
{
    const int row = m_rowsByID.value(count.uiTableID, -1);
    if (row < 0 || GetTable(row).usPlayers == count.usPlayers)
        return;
    m_rows[row].table.usPlayers = count.usPlayers;
    m_rows[row].texts[COL_PLAYERS] = PlayersText(GetTable(row));
    Q_EMIT dataChanged(index(row, COL_PLAYERS), index(row, COL_PLAYERS));
}

int CTableListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int CTableListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : COL_COUNT;
}

QVariant CTableListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const STable &table = GetTable(index.row());
    const QVariant sortValue = role == SORT_ROLE ? SortValue(table, index.column()) : QVariant();
    if (sortValue.isValid() || role == Qt::TextAlignmentRole)
        return role == SORT_ROLE ? sortValue : Alignment(index.column());
    if (role != Qt::DisplayRole && role != SORT_ROLE)
        return QVariant();
    if (index.column() == COL_START && CountDown(table) >= 0)
        return Globals::GetCountDownString(uint(CountDown(table)), GlobalDefines::CST_Normal).GetTranslatedText();
    return GetText(index.row(), index.column());
}

QVariant CTableListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= COL_COUNT)
        return QVariant();
    if (role == Qt::DisplayRole)
        return Texts::Get(COLUMN_KEYS[section]);
    return role == Qt::TextAlignmentRole ? Alignment(section) : QVariant();
}

CTableListModel::SRow CTableListModel::MakeRow(const STable &table)
{
    const QString start = table.uiStart == 0
                              ? QString()
                              : CCasinoTime::GetInstance()->GetDateTimeString(table.uiStart).GetTranslatedText();
    return {table,
            {table.strName, TableTexts::GetType(table.eType), TableTexts::GetGame(table),
             TableTexts::GetStakes(table), PlayersText(table), start}};
}

void CTableListModel::OnTextsChanged()
{
    std::transform(m_rows.begin(), m_rows.end(), m_rows.begin(), [](const SRow &row) { return MakeRow(row.table); });
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, COL_COUNT - 1);
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(m_rows.size() - 1, COL_COUNT - 1));
    Q_EMIT signal_TextsChanged();
}

// Updates the texts of the tables that count down, and shows the date for those whose countdown has just ended.
void CTableListModel::OnClockChanged()
{
    const bool counted = m_bCounting;
    m_bCounting =
        std::any_of(m_rows.begin(), m_rows.end(), [](const SRow &row) { return CountDown(row.table) >= 0; });
    if ((counted || m_bCounting) && !m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, COL_START), index(m_rows.size() - 1, COL_START), {Qt::DisplayRole});
}
