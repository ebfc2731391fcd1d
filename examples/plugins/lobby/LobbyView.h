#pragma once

#include "TableListModel.h"

#include <translation/TranslationItem.h>

#include <QWidget>

class CTableFilter;
class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;

/// The lobby as the player sees it: the tables, what narrows them down, and how many there are. What narrows them
/// down is a setting, which the next user may have otherwise, and so are the columns' widths and the rows' order.
class CLobbyView : public QWidget
{
    Q_OBJECT

public:
    /// The model stays the caller's.
    CLobbyView(CTableListModel *model, QWidget *parent);

    /// Adds an answer of the game server to the status line, until the next one; an empty one takes it off.
    void ShowSeatAnswer(const CTranslationItem &answer);
    bool HasChosenTable() const;
    /// The same as choosing that table once more.
    void ChooseTable();

Q_SIGNALS:
    /// The user wants to play at this table.
    void signal_TableChosen(quint32 id);

private Q_SLOTS:
    void slot_FilterSettingChanged();
    void slot_ListChanged();
    void slot_TextsChanged();
    void slot_ClockChanged();
    void slot_ColumnResized(int column);
    void slot_OrderChanged(int column, Qt::SortOrder order);
    void slot_TableSettingChanged();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void CreateFilterLine();
    void CreateTable();
    void SetColumnWidths(bool onlyWiden);
    int GetTextWidth(int column) const;
    QList<double> FitColumns(const QList<double> &widths, int column) const;
    void ShowColumns(const QList<double> &widths);
    void Arrange();
    void ApplyFilter();
    void RememberFilter();
    int IndexOfStoredType() const;
    QString MakeStatus() const;
    void ShowState();

    CTableListModel *m_pModel;
    CTableFilter *m_pFilter; // this and the widgets below are children
    QLineEdit *m_pText;
    QComboBox *m_pType;
    QTableView *m_pTable;
    QLabel *m_pStatus;
    CTranslationItem m_seatAnswer;
    QList<double> m_neededWidths; // of the columns
    QList<double> m_shownWidths;
    bool m_bTableChanging = false; // by this view and not by the user
};
