#pragma once

#include "TableTexts.h"

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
    /// The text, or of one that counts down the date, which is wider and takes its place.
    static constexpr int WIDEST_ROLE = Qt::UserRole + 1;

    explicit CTableListModel(QObject *parent);

    const LobbyProtocol::STable &GetTable(int row) const { return m_tables.at(row); }
    /// Null if there is no such table; good until the next change.
    const LobbyProtocol::STable *FindTable(quint32 id) const;
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
    /// All texts are others, in another language or time zone.
    void signal_TextsChanged();

private Q_SLOTS:
    void slot_TextsChanged();
    void slot_ClockChanged();

private:
    void RemoveAllBut(const QVector<LobbyProtocol::STable> &tables);
    void IndexRows();
    QString CellText(const LobbyProtocol::STable &table, int column) const;

    QVector<LobbyProtocol::STable> m_tables;
    QHash<quint32, int> m_rows; // by table id
    mutable CTableTexts m_texts;
    bool m_bStale = true;
    bool m_bCounting = false; // down to a start, as of the last second
};
