#include "TableListModel.h"

#include <time/CasinoTime.h>
#include <translation/Translation.h>

#include <QSet>

#include <algorithm>
#include <limits>

using LobbyProtocol::SPlayerCount;
using LobbyProtocol::STable;

namespace {

const QString COLUMN_KEYS[] = {QStringLiteral("LOBBY_COLUMN_NAME"),    QStringLiteral("LOBBY_COLUMN_TYPE"),
                               QStringLiteral("LOBBY_COLUMN_GAME"),    QStringLiteral("LOBBY_COLUMN_STAKES"),
                               QStringLiteral("LOBBY_COLUMN_PLAYERS"), QStringLiteral("LOBBY_COLUMN_START")};

// Amounts of different money don't compare, so each kind stays together; a sum takes 33 bits.
quint64 StakesSortValue(const STable &table)
{
    return (quint64(table.eMoney) << 33) + table.mvLow + quint64(table.mvHigh);
}

// Invalid for a column that sorts by its text.
QVariant SortValue(const STable &table, int column)
{
    switch (column) {
    case CTableListModel::COL_STAKES:
        return StakesSortValue(table);
    case CTableListModel::COL_PLAYERS:
        return uint(table.usPlayers);
    case CTableListModel::COL_START:
        // Tables without a start come behind all that have one.
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
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CTableListModel::slot_TextsChanged);
    connect(CCasinoTime::GetInstance(), &CCasinoTime::signal_TimeZoneChanged, this,
            &CTableListModel::slot_TextsChanged);
    connect(CCasinoTime::GetInstance(), &CCasinoTime::signal_TimeChanged, this, &CTableListModel::slot_ClockChanged);
}

const STable *CTableListModel::FindTable(quint32 id) const
{
    const int row = m_rows.value(id, -1);
    return row < 0 ? nullptr : &m_tables.at(row);
}

void CTableListModel::SetStale()
{
    m_bStale = true;
    Q_EMIT signal_ListChanged();
}

void CTableListModel::SetTables(const QVector<STable> &tables)
{
    m_texts.Forget();
    RemoveAllBut(tables);

    QVector<STable> added;
    for (const STable &table : tables) {
        const int row = m_rows.value(table.uiID, -1);
        if (row < 0) {
            added.append(table);
        } else {
            m_tables[row] = table;
            Q_EMIT dataChanged(index(row, 0), index(row, COL_COUNT - 1));
        }
    }
    if (!added.isEmpty()) {
        beginInsertRows(QModelIndex(), m_tables.size(), m_tables.size() + added.size() - 1);
        m_tables += added;
        IndexRows();
        endInsertRows();
    }
    m_bStale = false;
    Q_EMIT signal_ListChanged();
}

void CTableListModel::SetPlayers(const SPlayerCount &count)
{
    const int row = m_rows.value(count.uiTableID, -1);
    if (row < 0 || m_tables.at(row).usPlayers == count.usPlayers)
        return;
    m_tables[row].usPlayers = count.usPlayers;
    Q_EMIT dataChanged(index(row, COL_PLAYERS), index(row, COL_PLAYERS));
}

// One second less for those that count down, and the date for those that have just ended.
void CTableListModel::slot_ClockChanged()
{
    const bool counted = m_bCounting;
    m_bCounting = std::any_of(m_tables.begin(), m_tables.end(), &CTableTexts::IsCountingDown);
    if ((counted || m_bCounting) && !m_tables.isEmpty())
        Q_EMIT dataChanged(index(0, COL_START), index(m_tables.size() - 1, COL_START), {Qt::DisplayRole});
}

int CTableListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_tables.size();
}

int CTableListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : COL_COUNT;
}

QVariant CTableListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const STable &table = m_tables.at(index.row());
    if (role == WIDEST_ROLE && index.column() == COL_START)
        return table.uiStart == 0 ? QString() : m_texts.GetDate(table.uiStart);
    if (role == Qt::DisplayRole || role == WIDEST_ROLE)
        return CellText(table, index.column());
    if (role == SORT_ROLE) {
        const QVariant value = SortValue(table, index.column());
        return value.isValid() ? value : CellText(table, index.column());
    }
    return role == Qt::TextAlignmentRole ? Alignment(index.column()) : QVariant();
}

QVariant CTableListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= COL_COUNT)
        return QVariant();
    if (role == Qt::DisplayRole)
        return m_texts.GetText(COLUMN_KEYS[section]);
    return role == Qt::TextAlignmentRole ? Alignment(section) : QVariant();
}

QString CTableListModel::CellText(const STable &table, int column) const
{
    switch (column) {
    case COL_NAME:
        return table.strName;
    case COL_TYPE:
        return m_texts.GetType(table.eType);
    case COL_GAME:
        return m_texts.GetGame(table);
    case COL_STAKES:
        return m_texts.GetStakes(table);
    case COL_PLAYERS:
        return QStringLiteral("%1/%2").arg(table.usPlayers).arg(table.usPlaces);
    case COL_START:
        return m_texts.GetStart(table);
    default:
        return QString();
    }
}

void CTableListModel::slot_TextsChanged()
{
    m_texts.Forget();
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, COL_COUNT - 1);
    if (!m_tables.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(m_tables.size() - 1, COL_COUNT - 1));
    Q_EMIT signal_TextsChanged();
}

void CTableListModel::RemoveAllBut(const QVector<STable> &tables)
{
    QSet<quint32> staying;
    for (const STable &table : tables)
        staying.insert(table.uiID);
    for (int row = m_tables.size() - 1; row >= 0; --row) {
        if (staying.contains(m_tables.at(row).uiID))
            continue;
        beginRemoveRows(QModelIndex(), row, row);
        m_tables.remove(row);
        endRemoveRows();
    }
    IndexRows();
}

void CTableListModel::IndexRows()
{
    m_rows.clear();
    for (int row = 0; row < m_tables.size(); ++row)
        m_rows.insert(m_tables.at(row).uiID, row);
}
