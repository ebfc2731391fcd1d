#pragma once

#include <common/Texts.h>
#include <money/MoneySpinner.h>

#include <QLabel>

#include <functional>

/// Shows the amount that a spinner displays, also while it runs, as \a toText writes it. The label asks again when
/// the language changes. The spinner has to outlive the label.
inline void ShowAmount(QLabel *label, const CMoneySpinner *spinner,
                       const std::function<QString(unsigned int)> &toText)
{
    const auto show = [=] { label->setText(toText(spinner->GetValue())); };
    using TSpinner = CMoneySpinner;
    Texts::Follow(label, show, spinner, &TSpinner::signal_C2Changed, &TSpinner::signal_C1Changed,
                  &TSpinner::signal_D1Changed, &TSpinner::signal_D2Changed, &TSpinner::signal_D3Changed,
                  &TSpinner::signal_D4Changed, &TSpinner::signal_D5Changed, &TSpinner::signal_D6Changed,
                  &TSpinner::signal_D7Changed);
}
