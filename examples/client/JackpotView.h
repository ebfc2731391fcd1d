#pragma once

#include <money/MoneySpinner.h>
#include <money/MoneySpinnerWidget.h>

#include <QWidget>

/// The bad beat jackpot, hidden until the game server has told of it.
class CJackpotView : public QWidget
{
    Q_OBJECT

public:
    explicit CJackpotView(QWidget *parent = nullptr);

    void ShowJackpot(GlobalDefines::MoneyType currency, GlobalDefines::MoneyValue amount);

private:
    CMoneySpinner m_spinner;
    CMoneySpinnerWidget m_digits;
    GlobalDefines::MoneyType m_eCurrency = GlobalDefines::MONEYTYPE_UNKNOWN;
};
