#pragma once

#include "LobbyColumns.h"
#include "LobbyTables.h"

#include <QWidget>

class QAction;
class QLabel;
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
    void ShowColumns();
    void OnColumnResized(int column, int oldWidth, int width);

    CLobbyTables *m_pTables;
    QAction *m_pTakeSeat;      // a child
    QLabel *m_pCount;          // a child
    QTableView *m_pTable;      // a child
    CLobbyColumns *m_pColumns; // a child
    bool m_bShowing = false;   // while the program changes the widths, not the user
};
