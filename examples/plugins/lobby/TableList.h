#pragma once

#include <protocol/LobbyProtocol.h>

#include <QHash>
#include <QObject>
#include <QSet>
#include <QVector>

/// The tables of the game server in the order of their names, and what of them changes. Knows no views and no texts.
class CTableList : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    const QVector<LobbyProtocol::STable> &GetTables() const { return m_tables; }
    /// Returns a table, which is valid until the next change; null if there is no such table.
    const LobbyProtocol::STable *FindTable(quint32 id) const;
    /// Returns whether the tables may have changed since the server sent them.
    bool IsStale() const { return m_bStale; }
    void SetStale();
    /// Replaces the tables by a complete list in the order of their names. The ids are unique.
    void SetTables(const QVector<LobbyProtocol::STable> &tables);
    /// Changes tables; ignores counts of those that aren't there.
    void SetPlayers(const QVector<LobbyProtocol::SPlayerCount> &counts);

Q_SIGNALS:
    /// Emitted after SetTables(). \a changed are the tables that were there before with other values.
    void signal_TablesReplaced(const QSet<quint32> &changed);
    void signal_PlayersChanged(const QSet<quint32> &changed);
    void signal_StaleChanged();

private:
    QVector<LobbyProtocol::STable> m_tables;
    QHash<quint32, int> m_rowsByID;
    bool m_bStale = true;
};
