#pragma once

#include "TableListModel.h"

#include <common/Texts.h>

#include <QSortFilterProxyModel>
#include <QVariantList>

/// The tables as the user sees them, in widgets or QML: which ones and in which order, as the user's settings say,
/// which one is chosen, and what there is to say of them.
class CLobbyTables : public QSortFilterProxyModel
{
    Q_OBJECT
    /// A line about the tables, with the last answer of the game server, if there is one.
    Q_PROPERTY(QString status READ GetStatus NOTIFY signal_StatusChanged)
    Q_PROPERTY(bool stale READ IsStale NOTIFY signal_StatusChanged)
    /// The same types as objects with `text` and `value`, which the setting `selectedgametype` takes.
    Q_PROPERTY(QVariantList types READ GetTypes NOTIFY signal_TextsChanged)
    /// Pixels that the texts of each column need in the font of the application.
    Q_PROPERTY(QList<qreal> textWidths READ GetTextWidths NOTIFY signal_TextWidthsChanged)
    Q_PROPERTY(int orderColumn READ sortColumn NOTIFY signal_OrderChanged)
    Q_PROPERTY(int order READ sortOrder NOTIFY signal_OrderChanged)
    /// Negative if none is chosen.
    Q_PROPERTY(int chosenRow READ GetChosenRow WRITE SetChosenRow NOTIFY signal_ChosenRowChanged)

public:
    /// Under which TableView keeps the order and the widths of the columns.
    static inline const QString TABLE_KEY = QStringLiteral("lobby");
    static constexpr int ANY_TYPE = 0;
    /// The types to choose from, each behind the key of its text.
    static constexpr std::pair<const char *, int> TYPES[] = {{"LOBBY_ALL", ANY_TYPE},
                                                             {"LOBBY_RING_GAMES", GlobalDefines::TT_NORMAL},
                                                             {"LOBBY_SIT_AND_GOS", GlobalDefines::TT_SITANDGO},
                                                             {"LOBBY_TOURNAMENTS", GlobalDefines::TT_TOURNAMENT}};

    /// The model stays the caller's.
    CLobbyTables(CTableListModel *model, QObject *parent);

    QString GetStatus() const;
    bool IsStale() const { return m_pModel->IsStale(); }
    QVariantList GetTypes() const;
    const QList<qreal> &GetTextWidths() const { return m_textWidths; }
    int GetChosenRow() const { return m_chosen.row(); }
    void SetChosenRow(int row);
    /// An empty one takes the last one off the status line.
    void SetSeatAnswer(const CTranslationItem &answer);

    /// The user wants another order, which is remembered.
    Q_INVOKABLE void sort(int column, Qt::SortOrder order) override;
    /// The user wants to play at the chosen table, if there is one.
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
    QString m_strText; // that is looked for
    int m_iType = ANY_TYPE;
    QPersistentModelIndex m_chosen;
    QList<qreal> m_textWidths;
    CTranslationItem m_seatAnswer;
    bool m_bStoring = false; // the order
};
