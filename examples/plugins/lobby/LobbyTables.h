#pragma once

#include "TableList.h"

#include <common/Texts.h>

#include <QAbstractTableModel>
#include <QPersistentModelIndex>
#include <QTimer>
#include <QVariantList>

/// The tables as the user sees them, in widgets or QML: filtered and sorted by the user's settings, with the chosen
/// table and texts about the tables.
///
/// It is made for very many tables. A text is made when a view asks for it, a change tells the rows that it concerns,
/// and what takes longer than a frame of the screen is done in slices.
class CLobbyTables : public QAbstractTableModel
{
    Q_OBJECT
    /// How many tables there are, and how many of them the filter accepts.
    Q_PROPERTY(QString count READ GetCount NOTIFY signal_StatusChanged)
    /// What the user should know: that the tables may be out of date, or the last answer of the game server. Often
    /// empty.
    Q_PROPERTY(QString status READ GetStatus NOTIFY signal_StatusChanged)
    Q_PROPERTY(bool stale READ IsStale NOTIFY signal_StatusChanged)
    /// Whether there are tables, but none that the filter accepts.
    Q_PROPERTY(bool allFiltered READ AreAllFiltered NOTIFY signal_StatusChanged)
    /// The entries of TYPES as objects with `text` and `value`; the setting `selectedgametype` stores the value.
    Q_PROPERTY(QVariantList types READ GetTypes NOTIFY signal_TextsChanged)
    /// The widths of the columns' texts in the font of the application, in pixels.
    Q_PROPERTY(QList<qreal> textWidths READ GetTextWidths NOTIFY signal_TextWidthsChanged)
    Q_PROPERTY(int orderColumn READ GetOrderColumn NOTIFY signal_OrderChanged)
    Q_PROPERTY(int order READ GetOrder NOTIFY signal_OrderChanged)
    /// The row of the chosen table; negative if there is none.
    Q_PROPERTY(int chosenRow READ GetChosenRow WRITE SetChosenRow NOTIFY signal_ChosenRowChanged)

public:
    enum EColumn { COL_NAME, COL_TYPE, COL_GAME, COL_STAKES, COL_PLAYERS, COL_START, COL_COUNT };
    /// The key under which TableView stores the order and the widths of the columns.
    static inline const QString TABLE_KEY = QStringLiteral("lobby");
    static constexpr int ANY_TYPE = 0;
    /// The types to choose from, each with the key of its text.
    static constexpr std::pair<const char *, int> TYPES[] = {{"LOBBY_ALL", ANY_TYPE},
                                                             {"LOBBY_RING_GAMES", GlobalDefines::TT_NORMAL},
                                                             {"LOBBY_SIT_AND_GOS", GlobalDefines::TT_SITANDGO},
                                                             {"LOBBY_TOURNAMENTS", GlobalDefines::TT_TOURNAMENT}};

    /// Constructs the view of a \a list that the caller owns.
    CLobbyTables(CTableList *list, QObject *parent);

    QString GetCount() const;
    QString GetStatus() const;
    bool IsStale() const { return m_pList->IsStale(); }
    bool AreAllFiltered() const { return m_shown.isEmpty() && !m_pList->GetTables().isEmpty(); }
    QVariantList GetTypes() const;
    const QList<qreal> &GetTextWidths() const { return m_textWidths; }
    int GetOrderColumn() const { return m_iOrderColumn; }
    Qt::SortOrder GetOrder() const { return m_eOrder; }
    int GetChosenRow() const { return m_chosen.row(); }
    void SetChosenRow(int row);
    /// Shows an answer in the status line; an empty one removes the last.
    void SetSeatAnswer(const CTranslationItem &answer);

    /// Removes the user's filter, which is a setting.
    Q_INVOKABLE static void ClearFilter();
    /// Sorts the tables and stores the order as the user's choice.
    Q_INVOKABLE void sort(int column, Qt::SortOrder order) override;
    /// Requests a seat at the chosen table, if there is one.
    Q_INVOKABLE void AskForSeat();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    void signal_StatusChanged();
    void signal_TextsChanged();
    void signal_TextWidthsChanged();
    void signal_OrderChanged();
    void signal_ChosenRowChanged();
    void signal_SeatWanted(quint32 tableID);

private:
    using TIDs = QVector<quint32>;

    void OnTablesReplaced(const QSet<quint32> &changed);
    void OnPlayersChanged(const QSet<quint32> &changed);
    void OnTextsChanged();
    void OnClockChanged();
    QSet<quint32> FindCounting() const;
    void TakeFilter();
    void TakeOrder();
    void Filter();
    TIDs MakeOrder() const;
    void Show(const TIDs &ids);
    void HideAllBut(const TIDs &ids);
    void Move(const TIDs &ids);
    void TellChanged(const QSet<quint32> &changed, int firstColumn, int lastColumn);
    void TellChosenRow();
    void StartMeasuring();
    void Measure();

    CTableList *m_pList;
    QVector<int> m_accepted; // by the filter: rows of the list
    TIDs m_shown;            // by row
    QString m_strText;       // the text to search for
    int m_iType = ANY_TYPE;
    int m_iOrderColumn = COL_NAME;
    Qt::SortOrder m_eOrder = Qt::AscendingOrder;
    QPersistentModelIndex m_chosen;
    int m_iChosenRow = -1;    // as told last
    QSet<quint32> m_counting; // the tables that count down, as told last
    QList<qreal> m_textWidths;
    // The columns' widths as of the first m_iMeasured tables, and the widths of their texts.
    QList<qreal> m_measured;
    QHash<QString, qreal> m_measuredTexts;
    int m_iMeasured = 0;
    QTimer m_measuring; // runs until all tables are measured
    CTranslationItem m_seatAnswer;
    bool m_bStoring = false; // while the order is being stored
};
