#pragma once

#include "TableListModel.h"

#include <QWidget>

class CTableFilter;
class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;

/// The lobby as the player sees it: the tables, what narrows them down, and how many there are.
class CLobbyView : public QWidget
{
    Q_OBJECT

public:
    /// The model stays the caller's.
    CLobbyView(CTableListModel *model, QWidget *parent);

private:
    void CreateFilterLine();
    void CreateTable();
    void SetColumnWidths();
    void Arrange();
    void ApplyFilter();
    void ShowState();

    CTableListModel *m_pModel;
    CTableFilter *m_pFilter; // this and the widgets below are children
    QLineEdit *m_pText;
    QComboBox *m_pType;
    QTableView *m_pTable;
    QLabel *m_pStatus;
};
