#pragma once

#include <protocol/LobbyProtocol.h>
#include <protocol/TableProtocol.h>

#include <QVector>
#include <QWidget>

class CSeatView;

/// A table seen from above, with the seats around it. The user sits at the lower end.
class CSeatsView : public QWidget
{
    Q_OBJECT

public:
    /// Constructs the view of a table without seats.
    CSeatsView(const LobbyProtocol::STable &table, QWidget *parent);

    /// Creates the seats around the table at which the user's \a place is, unless they are there.
    void SetPlace(quint16 place);
    /// Shows who has the seats.
    void ShowSeats(const QVector<TableProtocol::SSeat> &seats);

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void ArrangeSeats();
    QSize GetSeatSize() const;

    LobbyProtocol::STable m_table;
    quint16 m_usFirst = 0;        // the place of the first seat
    quint16 m_usPlace = 0;        // the user's
    QVector<CSeatView *> m_seats; // children
};
