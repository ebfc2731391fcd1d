#pragma once

#include "LobbyTables.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;

/// The lobby in widgets: the tables, what narrows them down, and how many there are. The columns' widths are
/// settings, which the next user may have otherwise.
class CLobbyView : public QWidget
{
    Q_OBJECT

public:
    /// The tables stay the caller's.
    explicit CLobbyView(CLobbyTables *tables);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private Q_SLOTS:
    void slot_ColumnResized(int column);

private:
    void CreateFilterLine();
    void CreateTable();
    void Arrange();
    void RememberFilter();
    void ShowTypes();
    void ShowFilter();
    void ShowStatus();
    void ShowOrder();
    void MeasureColumns();
    void FitColumns(const QList<double> &widths, int dragged);
    void FitStoredColumns();

    CLobbyTables *m_pTables;
    QLineEdit *m_pText; // the widgets are children
    QComboBox *m_pType;
    QTableView *m_pTable;
    QLabel *m_pStatus;
    QList<double> m_neededWidths; // of the columns; no one gets narrower
    QList<double> m_shownWidths;
    bool m_bFitting = false; // it isn't the user who changes the columns
};
