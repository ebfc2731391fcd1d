#pragma once

#include <protocol/LobbyProtocol.h>

#include <QAbstractTableModel>
#include <QHash>
#include <QMap>
#include <QStringList>

/// The tables of the game server, one row each, in any order.
class CTableListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum EColumn { COL_NAME, COL_TYPE, COL_GAME, COL_STAKES, COL_PLAYERS, COL_START, COL_COUNT };
    /// The role of the value that a column sorts by, where its text would sort wrongly.
    static constexpr int SORT_ROLE = Qt::UserRole;

    explicit CTableListModel(QObject *parent);

    const LobbyProtocol::STable &GetTable(int row) const { return m_rows.at(row).table; }
    /// Returns a table, which is valid until the next change; null if there is no such table.
    const LobbyProtocol::STable *FindTable(quint32 id) const;
    /// Returns the text of a cell; for a countdown the date, which is wider and replaces it later.
    QString GetText(int row, int column) const { return m_rows.at(row).texts.at(column); }
    /// Returns whether the tables may have changed since the server sent them.
    bool IsStale() const { return m_bStale; }
    void SetStale();
    /// Replaces the tables by a complete list. Tables with the same id keep their rows, and so stay selected.
    void SetTables(const QMap<quint32, LobbyProtocol::STable> &tables);
    /// Changes a table; does nothing if there is no such table.
    void SetPlayers(const LobbyProtocol::SPlayerCount &count);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    /// Emitted after SetTables() and SetStale().
    void signal_ListChanged();
    /// Emitted when all texts have changed, with the language or the time zone.
    void signal_TextsChanged();

private:
    // The texts are cached, because there may be many rows, and sorting, filtering and measuring read all of them.
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
    bool m_bCounting = false; // a countdown is shown, as of the last second
};
