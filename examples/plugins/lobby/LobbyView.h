#pragma once

#include "LobbyTables.h"

#include <QWidget>

class QAction;
class QLayout;
class QTableView;

/// The lobby in widgets: the tables, their filter, and their number. The columns' widths are settings, and may change
/// with the user.
class CLobbyView : public QWidget
{
    Q_OBJECT

public:
    /// Constructs the view of \a tables, which the caller owns.
    explicit CLobbyView(CLobbyTables *tables);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    QLayout *CreateFilterLine();
    QAction *CreateSeatAction();
    QWidget *CreateNoMatch();
    void SetUpTable();
    void MeasureColumns();
    void FitColumns(const QList<double> &widths, int dragged);
    void FitStoredColumns();
    void OnColumnResized(int column);

    CLobbyTables *m_pTables;
    QAction *m_pTakeSeat;         // a child
    QTableView *m_pTable;         // a child
    QList<double> m_neededWidths; // the columns' minimum widths
    QList<double> m_shownWidths;
    bool m_bFitting = false; // while the program changes the widths, not the user
};
