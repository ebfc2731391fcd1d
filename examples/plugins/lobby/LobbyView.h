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
/// down is a setting, which the next user may have otherwise.
class CLobbyView : public QWidget
{
    Q_OBJECT

public:
    /// The model stays the caller's.
    CLobbyView(CTableListModel *model, QWidget *parent);

    /// Adds an answer of the game server to the status line, until the next one; an empty one takes it off.
    void ShowSeatAnswer(const CTranslationItem &answer);

Q_SIGNALS:
    /// The user wants to play at this table.
    void signal_TableChosen(quint32 id);

private Q_SLOTS:
    void slot_FilterSettingChanged();
    void slot_ListChanged();
    void slot_TextsChanged();
    void slot_ClockChanged();

private:
    void CreateFilterLine();
    void CreateTable();
    void SetColumnWidths(bool onlyWiden);
    int GetTextWidth(int column) const;
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
};
