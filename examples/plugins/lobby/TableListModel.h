#pragma once

#include <protocol/LobbyProtocol.h>

#include <QAbstractTableModel>
#include <QHash>
#include <QMap>
#include <QStringList>

/// The tables of the game server, a row each, in no order of note.
class CTableListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum EColumn { COL_NAME, COL_TYPE, COL_GAME, COL_STAKES, COL_PLAYERS, COL_START, COL_COUNT };
    /// What a column sorts by, where its text would sort wrongly.
    static constexpr int SORT_ROLE = Qt::UserRole;

    explicit CTableListModel(QObject *parent);

    const LobbyProtocol::STable &GetTable(int row) const { return m_rows.at(row).table; }
    /// Null if there is no such table; good until the next change.
    const LobbyProtocol::STable *FindTable(quint32 id) const;
    /// What stands in a cell; where a countdown does, the date, which is wider and takes its place.
    QString GetText(int row, int column) const { return m_rows.at(row).texts.at(column); }
    /// Whether the tables are as the server last knew them, but may have changed since.
    bool IsStale() const { return m_bStale; }
    void SetStale();
    /// Takes over a complete list, by their ids. Rows of tables that stay are the same rows afterwards, so that what
    /// is selected stays selected.
    void SetTables(const QMap<quint32, LobbyProtocol::STable> &tables);
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

private:
    // The texts are kept, for there may be many rows, and all of them are looked at to sort, to filter and to
    // measure.
    struct SRow
    {
        LobbyProtocol::STable table;
        QStringList texts; // by column
    };

    static SRow MakeRow(const LobbyProtocol::STable &table);
    void OnTextsChanged();
    void OnClockChanged();

    QVector<SRow> m_rows;
    QHash<quint32, int> m_rowsByID;
    bool m_bStale = true;
    bool m_bCounting = false; // down to a start, as of the last second
};
