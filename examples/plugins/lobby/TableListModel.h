#pragma once

#include <common/LobbyProtocol.h>

#include <QAbstractTableModel>
#include <QHash>

/// The tables of the game server, a row each, in no order of note.
class CTableListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum EColumn { COL_NAME, COL_TYPE, COL_GAME, COL_STAKES, COL_PLAYERS, COL_START, COL_COUNT };
    /// What a column sorts by, where its text would sort wrongly.
    static constexpr int SORT_ROLE = Qt::UserRole;

    explicit CTableListModel(QObject *parent);

    const LobbyProtocol::STable &GetTable(int row) const { return m_tables.at(row); }
    /// Whether the tables are as the server last knew them, but may have changed since.
    bool IsStale() const { return m_bStale; }
    void SetStale();
    /// Takes over a complete list, in which no id is twice. Rows of tables that stay are the same rows afterwards, so
    /// that what is selected stays selected.
    void SetTables(const QVector<LobbyProtocol::STable> &tables);
    /// Does nothing if there is no such table.
    void SetPlayers(const LobbyProtocol::SPlayerCount &count);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    /// Behind SetTables() and SetStale().
    void signal_ListChanged();

private:
    void RemoveAllBut(const QVector<LobbyProtocol::STable> &tables);
    void IndexRows();

    QVector<LobbyProtocol::STable> m_tables;
    QHash<quint32, int> m_rows; // by table id
    bool m_bStale = true;
};
