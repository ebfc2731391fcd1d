#pragma once

#include <money/MoneySpinnerWidget.h>

#include <QWidget>

/// The bad beat jackpot as CCasinoInfo has it, hidden until the game server has told of it.
class CJackpotView : public QWidget
{
    Q_OBJECT

public:
    explicit CJackpotView(QWidget *parent = nullptr);

private:
    CMoneySpinnerWidget m_digits;
};
