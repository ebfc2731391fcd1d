#include "TableListModel.h"

#include <QDateTime>
#include <QLocale>
#include <QSet>

#include <limits>

using LobbyProtocol::SPlayerCount;
using LobbyProtocol::STable;

namespace {

const QLatin1String COLUMN_TITLES[] = {QLatin1String("Name"),    QLatin1String("Type"),
                                       QLatin1String("Game"),    QLatin1String("Stakes / Buy-in"),
                                       QLatin1String("Players"), QLatin1String("Start")};
const QLatin1String TEXT_RING_GAME("Ring game");
const QLatin1String TEXT_PRIVATE("Private");
const QLatin1String TEXT_RESTRICTED("Restricted");
const QLatin1String TEXT_SIT_AND_GO("Sit & Go");
const QLatin1String TEXT_TOURNAMENT("Tournament");
const QLatin1String TEXT_FREE("Free");
const QLatin1String TEXT_POINTS("%1 pts");
const QLatin1String FORMAT_START("d MMM, hh:mm");

QString TypeText(GlobalDefines::TableType type)
{
    switch (type) {
    case GlobalDefines::TT_PRIVATE:
        return TEXT_PRIVATE;
    case GlobalDefines::TT_RESTRICTED:
        return TEXT_RESTRICTED;
    case GlobalDefines::TT_SITANDGO:
        return TEXT_SIT_AND_GO;
    case GlobalDefines::TT_TOURNAMENT:
        return TEXT_TOURNAMENT;
    case GlobalDefines::TT_NORMAL:
        break;
    }
    return TEXT_RING_GAME;
}

QString MoneyText(GlobalDefines::MoneyValue amount, GlobalDefines::MoneyType money)
{
    const QLocale english(QLocale::English);
    QString hundredths = english.toString(amount / 100.0, 'f', 2);
    switch (money) {
    case GlobalDefines::MONEYTYPE_DOLLAR:
        return QLatin1Char('$') + hundredths;
    case GlobalDefines::MONEYTYPE_EURO:
        return QChar(0x20AC) + hundredths;
    case GlobalDefines::MONEYTYPE_POINTS:
        return QString(TEXT_POINTS).arg(hundredths);
    case GlobalDefines::MONEYTYPE_PLAY:
    case GlobalDefines::MONEYTYPE_TOURN:
        return english.toString(amount);
    case GlobalDefines::MONEYTYPE_UNKNOWN:
        break;
    }
    return hundredths;
}

// Stakes of a game, or buy-in and fee of a tournament.
QString StakesText(const STable &table)
{
    const bool buyIn = table.eType == GlobalDefines::TT_TOURNAMENT || table.eType == GlobalDefines::TT_SITANDGO;
    if (buyIn && table.mvLow == 0 && table.mvHigh == 0)
        return TEXT_FREE;
    const QString separator = buyIn ? QStringLiteral(" + ") : QStringLiteral("/");
    return MoneyText(table.mvLow, table.eMoney) + separator + MoneyText(table.mvHigh, table.eMoney);
}

// Amounts of different money don't compare, so each kind stays together; a sum takes 33 bits.
quint64 StakesSortValue(const STable &table)
{
    return (quint64(table.eMoney) << 33) + table.mvLow + quint64(table.mvHigh);
}

QString StartText(const STable &table)
{
    if (table.uiStart == 0)
        return QString();
    return QLocale(QLocale::English).toString(QDateTime::fromSecsSinceEpoch(table.uiStart), FORMAT_START);
}

QString CellText(const STable &table, int column)
{
    switch (column) {
    case CTableListModel::COL_NAME:
        return table.strName;
    case CTableListModel::COL_TYPE:
        return TypeText(table.eType);
    case CTableListModel::COL_GAME:
        return Globals::GetUntranslatedGameName(table.eGame, table.eLimit);
    case CTableListModel::COL_STAKES:
        return StakesText(table);
    case CTableListModel::COL_PLAYERS:
        return QStringLiteral("%1/%2").arg(table.usPlayers).arg(table.usPlaces);
    case CTableListModel::COL_START:
        return StartText(table);
    default:
        return QString();
    }
}

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
        return CellText(table, column);
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
}

void CTableListModel::SetStale()
{
    m_bStale = true;
    Q_EMIT signal_ListChanged();
}

void CTableListModel::SetTables(const QVector<STable> &tables)
{
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
    if (role == Qt::DisplayRole)
        return CellText(table, index.column());
    if (role == SORT_ROLE)
        return SortValue(table, index.column());
    return role == Qt::TextAlignmentRole ? Alignment(index.column()) : QVariant();
}

QVariant CTableListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= COL_COUNT)
        return QVariant();
    if (role == Qt::DisplayRole)
        return QString(COLUMN_TITLES[section]);
    return role == Qt::TextAlignmentRole ? Alignment(section) : QVariant();
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
