#pragma once

#include "LobbyTables.h"

#include <QWidget>

class QLayout;
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

private:
    QLayout *CreateFilterLine();
    void SetUpTable();
    void MeasureColumns();
    void FitColumns(const QList<double> &widths, int dragged);
    void FitStoredColumns();
    void OnColumnResized(int column);

    CLobbyTables *m_pTables;
    QTableView *m_pTable;         // a child
    QList<double> m_neededWidths; // of the columns; no one gets narrower
    QList<double> m_shownWidths;
    bool m_bFitting = false; // it isn't the user who changes the columns
};
