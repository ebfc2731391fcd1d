#pragma once

#include <models/PlayerModel.h>
#include <money/MoneySpinner.h>
#include <protocol/TableProtocol.h>

#include <QPointer>
#include <QWidget>

#include <optional>

class QLabel;

/// A seat at a table: the picture of who sits there, the nickname, and the stack, which runs to a new amount. The
/// picture is the one that the user has chosen for the player, or else the stock picture, or else a letter.
class CSeatView : public QWidget
{
    Q_OBJECT

public:
    /// Constructs the view of a free seat. \a money is that of the stacks.
    CSeatView(quint16 place, GlobalDefines::MoneyType money, QWidget *parent);

    /// Shows who sits here, without a value that the seat is free.
    void ShowSeat(const std::optional<TableProtocol::SSeat> &seat);

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void FollowPlayer();
    void ShowTexts();
    void ShowPicture();
    QPixmap FindPicture() const;

    std::optional<TableProtocol::SSeat> m_seat;
    bool m_bOwn = false;
    QPointer<CPlayerModel> m_pPlayer; // who sits here
    CMoneySpinner m_stack;
    QLabel *m_pPicture; // this and the next ones are children
    QLabel *m_pName;
    QLabel *m_pStack;
};
