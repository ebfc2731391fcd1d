// Amounts as players type them: an amount that was read is written and read again unchanged.

#include "Fuzz.h"

#include <money/MoneyStrings.h>

void FuzzOne(QByteArray bytes)
{
    Fuzz::Library();
    const auto type = Globals::GetMoneyType(static_cast<char>(Fuzz::TakeByte(bytes)));
    const bool thousands = Fuzz::TakeByte(bytes) % 2 == 0;
    QString typed = QString::fromUtf8(bytes);
    const QString before = typed;
    unsigned int amount = 77;
    QString key;
    QString area;
    if (!Globals::MoneyFromString(type, typed, &amount, &key, &area)) {
        Fuzz::Require(amount == 77 && !key.isEmpty() && typed == before, "what is no amount has a reason");
        return;
    }
    Fuzz::Require(key.isEmpty() && typed == before && amount <= 2147483647u, "an amount has none, and a bound");
    QString shown = Globals::MoneyToString(type, amount, thousands);
    unsigned int again = 0;
    Fuzz::Require(Globals::MoneyFromString(type, shown, &again, nullptr, nullptr) && again == amount,
                  "an amount that is shown is the same");
}
