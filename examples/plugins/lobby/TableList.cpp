#include "TableList.h"

using LobbyProtocol::SPlayerCount;
using LobbyProtocol::STable;

const STable *CTableList::FindTable(quint32 id) const
{
    const int row = m_rowsByID.value(id, -1);
    return row < 0 ? nullptr : &m_tables.at(row);
}

void CTableList::SetStale()
{
    m_bStale = true;
    Q_EMIT signal_StaleChanged();
}

void CTableList::SetTables(const QVector<STable> &tables)
{
    QSet<quint32> changed;
    for (const STable &table : tables) {
        const STable *before = FindTable(table.uiID);
        if (before && !(*before == table))
            changed.insert(table.uiID);
    }
    m_tables = tables;
    m_rowsByID.clear();
    m_rowsByID.reserve(tables.size());
    for (int row = 0; row < tables.size(); ++row)
        m_rowsByID.insert(tables.at(row).uiID, row);
    m_bStale = false;
    Q_EMIT signal_TablesReplaced(changed);
    Q_EMIT signal_StaleChanged();
}

void CTableList::SetPlayers(const QVector<SPlayerCount> &counts)
{
    QSet<quint32> changed;
    for (const SPlayerCount &count : counts) {
        const int row = m_rowsByID.value(count.uiTableID, -1);
        if (row < 0 || m_tables.at(row).usPlayers == count.usPlayers)
            continue;
        m_tables[row].usPlayers = count.usPlayers;
        changed.insert(count.uiTableID);
    }
    if (!changed.isEmpty())
        Q_EMIT signal_PlayersChanged(changed);
}
