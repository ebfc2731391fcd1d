#pragma once

#include "TableListModel.h"

#include <common/Texts.h>

#include <QSortFilterProxyModel>
#include <QVariantList>

/// The tables as the user sees them, in widgets or QML: filtered and sorted by the user's settings, with the chosen
/// table and texts about the tables.
class CLobbyTables : public QSortFilterProxyModel
{
    Q_OBJECT
    /// A line about the tables, with the last answer of the game server, if there is one.
    Q_PROPERTY(QString status READ GetStatus NOTIFY signal_StatusChanged)
    Q_PROPERTY(bool stale READ IsStale NOTIFY signal_StatusChanged)
    /// The entries of TYPES as objects with `text` and `value`; the setting `selectedgametype` stores the value.
    Q_PROPERTY(QVariantList types READ GetTypes NOTIFY signal_TextsChanged)
    /// The widths of the columns' texts in the font of the application, in pixels.
    Q_PROPERTY(QList<qreal> textWidths READ GetTextWidths NOTIFY signal_TextWidthsChanged)
    Q_PROPERTY(int orderColumn READ sortColumn NOTIFY signal_OrderChanged)
    Q_PROPERTY(int order READ sortOrder NOTIFY signal_OrderChanged)
    /// The row of the chosen table; negative if there is none.
    Q_PROPERTY(int chosenRow READ GetChosenRow WRITE SetChosenRow NOTIFY signal_ChosenRowChanged)

public:
    /// The key under which TableView stores the order and the widths of the columns.
    static inline const QString TABLE_KEY = QStringLiteral("lobby");
    static constexpr int ANY_TYPE = 0;
    /// The types to choose from, each with the key of its text.
    static constexpr std::pair<const char *, int> TYPES[] = {{"LOBBY_ALL", ANY_TYPE},
                                                             {"LOBBY_RING_GAMES", GlobalDefines::TT_NORMAL},
                                                             {"LOBBY_SIT_AND_GOS", GlobalDefines::TT_SITANDGO},
                                                             {"LOBBY_TOURNAMENTS", GlobalDefines::TT_TOURNAMENT}};

    /// Constructs the view of a \a model that the caller owns.
    CLobbyTables(CTableListModel *model, QObject *parent);

    QString GetStatus() const;
    bool IsStale() const { return m_pModel->IsStale(); }
    QVariantList GetTypes() const;
    const QList<qreal> &GetTextWidths() const { return m_textWidths; }
    int GetChosenRow() const { return m_chosen.row(); }
    void SetChosenRow(int row);
    /// Shows an answer in the status line; an empty one removes the last.
    void SetSeatAnswer(const CTranslationItem &answer);

    /// Sorts the tables and stores the order as the user's choice.
    Q_INVOKABLE void sort(int column, Qt::SortOrder order) override;
    /// Requests a seat at the chosen table, if there is one.
    Q_INVOKABLE void AskForSeat();

Q_SIGNALS:
    void signal_StatusChanged();
    void signal_TextsChanged();
    void signal_TextWidthsChanged();
    void signal_OrderChanged();
    void signal_ChosenRowChanged();
    void signal_SeatWanted(quint32 tableID);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    void OnListChanged();
    void TakeFilter();
    void TakeOrder();

    CTableListModel *m_pModel;
    QString m_strText; // the text to search for
    int m_iType = ANY_TYPE;
    QPersistentModelIndex m_chosen;
    QList<qreal> m_textWidths;
    CTranslationItem m_seatAnswer;
    bool m_bStoring = false; // while the order is being stored
};
