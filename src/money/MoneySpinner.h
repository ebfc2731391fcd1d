#pragma once

#include <money/MoneySpinnerDataModel.h>
#include <plugin/GlobalDefines.h>

#include <QPropertyAnimation>

/// An amount of money that runs up or down to its new value, digit by digit, like the counter of a jackpot.
///
/// It counts hundredths of any currency and shows nine digits with leading zeros; of a ten-digit value it shows the
/// nine lowest. ShowComma tells the view whether to show the cents, for values up to 99,999.99, or the two highest
/// digits. The currency sign is in the language at the time when it was set. A slot connected to its signals may set
/// another amount, but must not delete the object except by deleteLater(). CTranslation's databases must be
/// initialised. Main thread.
class PLUGININTERFACE_EXPORT CMoneySpinner : public CMoneySpinnerDataModel
{
    Q_OBJECT

    /// The displayed amount. Setting it displays the new amount at once.
    Q_PROPERTY(uint value READ GetValue WRITE SetValue) // clazy:exclude=qproperty-without-notify (the digits do)

public:
    /// Constructs a spinner that displays \a value, in hundredths.
    CMoneySpinner(unsigned int value, GlobalDefines::MoneyType moneytype, QObject *parent = nullptr);
    /// Constructs a spinner that displays 0, without a currency.
    explicit CMoneySpinner(QObject *parent = nullptr);
    ~CMoneySpinner() override;

    /// Returns the amount that is displayed now, even during a run.
    unsigned int GetValue() const;
    /// Displays an amount without a run. A run in progress continues and displays its own amounts.
    void SetValue(unsigned int value);

public Q_SLOTS:
    /// Runs to an amount in half a second, or jumps there if the user has turned off animations. A run in progress
    /// continues between the displayed amount and the new one.
    void slot_SetValue(unsigned int value);
    /// Displays the currency sign in the current language; the amount doesn't change.
    void slot_SetMoneyType(GlobalDefines::MoneyType moneytype);

private Q_SLOTS:
    void slot_TranslationChanged();

private:
    friend class CMoneySpinnerWidget; // reads the amount at the end of a run

    void Init();
    void UpdateDisplay();

    QPropertyAnimation m_animation;
    unsigned int m_uiValue = 0;
};
