#pragma once

#include <money/MoneySpinnerDataModel.h>
#include <plugin/GlobalDefines.h>

#include <QPropertyAnimation>

/// An amount of money that runs up or down, digit by digit, to its new value, as the counter of a jackpot does.
///
/// It counts hundredths, whatever the currency, and shows nine digits with leading zeros; of a value of ten digits
/// the nine lowest. ShowComma tells the view whether to show the cents, up to 99,999.99, or the two highest digits.
/// The currency's sign is that of the language at the time it was set. A slot of its signals may set another amount,
/// but must not delete it, other than by deleteLater(). CTranslation's databases have to be initialised. Main thread.
class PLUGININTERFACE_EXPORT CMoneySpinner : public CMoneySpinnerDataModel
{
    Q_OBJECT

    /// The amount that is displayed; written, it is displayed at once.
    Q_PROPERTY(uint value READ GetValue WRITE SetValue) // clazy:exclude=qproperty-without-notify (the digits do)

public:
    /// Displays \a value at once, in hundredths.
    CMoneySpinner(unsigned int value, GlobalDefines::MoneyType moneytype, QObject *parent = nullptr);
    /// 0, without a currency.
    explicit CMoneySpinner(QObject *parent = nullptr);
    ~CMoneySpinner() override;

    /// What is displayed now, also in the middle of a run.
    unsigned int GetValue() const;
    /// Displays an amount without a run. A run that is under way goes on, and displays its own.
    void SetValue(unsigned int value);

public Q_SLOTS:
    /// Runs to an amount in half a second; jumps there if the user wants no animations. A run that is under way
    /// goes on between what is displayed and the new amount.
    void slot_SetValue(unsigned int value);
    /// Displays the currency's sign in the language of the moment; the amount stays.
    void slot_SetMoneyType(GlobalDefines::MoneyType moneytype);

private Q_SLOTS:
    void slot_TranslationChanged();

private:
    friend class CMoneySpinnerWidget; // tells the amount to which it runs

    void Init();
    void UpdateDisplay();

    QPropertyAnimation m_animation;
    unsigned int m_uiValue = 0;
};
