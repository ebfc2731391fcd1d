#include "MoneyStrings.h"

#include <translation/Translation.h>

#include <cmath>
#include <limits>

namespace {

constexpr unsigned int CENTS = 100;
constexpr unsigned int THOUSAND = 1000;
constexpr int GROUP_DIGITS = 3;
constexpr double RATE_UNIT = 10000.0;
constexpr int MAX_BACK_STEPS = 10000;
constexpr double MAX_MONEY = std::numeric_limits<unsigned int>::max();

const QString MONEY_TEXTS_AREA = QStringLiteral("CORE");

bool IsChips(GlobalDefines::MoneyType type)
{
    return type == GlobalDefines::MONEYTYPE_PLAY || type == GlobalDefines::MONEYTYPE_TOURN;
}

QString Translated(const QString &key)
{
    return CTranslation::GetInstance()->GetTranslatedString(key, MONEY_TEXTS_AREA, -1);
}

// Returns the number in decimal, padded with zeros to at least \a digits digits.
QString Digits(unsigned int number, int digits)
{
    return QString::number(number).rightJustified(digits, QLatin1Char('0'));
}

QString Cents(GlobalDefines::MoneyType type, unsigned int value, const QString &separatorKey)
{
    const unsigned int cents = IsChips(type) ? 0 : value % CENTS;
    return cents == 0 ? QString() : Translated(separatorKey) + Digits(cents, 2);
}

unsigned int Whole(GlobalDefines::MoneyType type, unsigned int value)
{
    return IsChips(type) ? value : value / CENTS;
}

// Splits a text of digits and points into its whole part and its decimals. A point after the first one to three
// digits separates groups, as does each point three digits after such a one; the next point begins the decimals.
void SplitAtSeparator(const QString &number, QString &integer, QString &fraction)
{
    const QLatin1Char point('.');
    auto last = number.indexOf(point);
    if (last < 0) {
        integer = number;
        return;
    }
    integer = number.left(last);
    const bool groupsClosed = last == 0 || last > GROUP_DIGITS;
    for (auto next = number.indexOf(point, last + 1); !groupsClosed && next == last + GROUP_DIGITS + 1;
         next = number.indexOf(point, last + 1)) {
        integer += number.mid(last + 1, GROUP_DIGITS);
        last = next;
    }
    fraction = number.mid(last + 1);
    fraction = fraction.left(fraction.indexOf(point)); // all of it if there is no point
    if (fraction.size() == GROUP_DIGITS && !groupsClosed) {
        integer += fraction;
        fraction.clear();
    }
}

} // namespace

QString Globals::MoneyTypeToString(GlobalDefines::MoneyType type)
{
    switch (type) {
    case GlobalDefines::MONEYTYPE_DOLLAR:
        return Translated(QStringLiteral("CURRENCY"));
    case GlobalDefines::MONEYTYPE_EURO:
        return Translated(QStringLiteral("CURRENCY_EURO"));
    case GlobalDefines::MONEYTYPE_PLAY:
        return Translated(QStringLiteral("CURRENCY_PLAYMONEY"));
    default:
        return QString();
    }
}

QString Globals::MoneyTypeToString(char type)
{
    return MoneyTypeToString(GetMoneyType(type));
}

QString Globals::MoneyToString(GlobalDefines::MoneyType type, unsigned int value, bool thousands)
{
    QString number = Cents(type, value, QStringLiteral("MONEY_DECIMALSEPERATOR"));
    unsigned int whole = Whole(type, value);
    while (thousands && whole >= THOUSAND) {
        number.prepend(Translated(QStringLiteral("MONEY_THOUSANDSSEPERATOR")) +
                       Digits(whole % THOUSAND, GROUP_DIGITS));
        whole /= THOUSAND;
    }
    return MoneyTypeToString(type) + QString::number(whole) + number;
}

QString Globals::MoneyToString(char type, unsigned int value, bool thousands)
{
    return MoneyToString(GetMoneyType(type), value, thousands);
}

QString Globals::MoneyToHistoryString(GlobalDefines::MoneyType type, unsigned int value)
{
    QString shortText;
    QString longText;
    switch (type) {
    case GlobalDefines::MONEYTYPE_DOLLAR:
        shortText = Translated(QStringLiteral("HH_CURRENCY"));
        longText = Translated(QStringLiteral("HH_CURRENCY_LONG"));
        break;
    case GlobalDefines::MONEYTYPE_EURO:
        shortText = Translated(QStringLiteral("HH_CURRENCY_EURO"));
        longText = Translated(QStringLiteral("HH_CURRENCY_EUROLONG"));
        break;
    case GlobalDefines::MONEYTYPE_PLAY:
        shortText = Translated(QStringLiteral("HH_CURRENCY_PLAYMONEY"));
        longText = Translated(QStringLiteral("HH_CURRENCY_PLAYMONEYLONG"));
        break;
    default:
        break;
    }
    QString text =
        QString::number(Whole(type, value)) + Cents(type, value, QStringLiteral("HH_MONEY_DECIMALSEPERATOR"));
    if (!shortText.isEmpty())
        text.prepend(shortText + QLatin1Char(' '));
    if (!longText.isEmpty())
        text.append(QLatin1Char(' ') + longText);
    return text;
}

QString Globals::MoneyToHistoryString(char type, unsigned int value)
{
    return MoneyToHistoryString(GetMoneyType(type), value);
}

bool Globals::MoneyFromString(GlobalDefines::MoneyType type, QString &text, unsigned int *value, QString *errorKey,
                              QString *errorArea)
{
    QString number;
    for (const QChar letter : qAsConst(text)) {
        if (letter >= QLatin1Char('0') && letter <= QLatin1Char('9'))
            number += letter;
        else if (letter == QLatin1Char('.') || letter == QLatin1Char(','))
            number += QLatin1Char('.');
    }
    QString integer;
    QString fraction;
    SplitAtSeparator(number, integer, fraction);
    const int decimals = IsChips(type) ? 0 : 2;
    bool good = false;
    const int amount = (integer + fraction.left(decimals).leftJustified(decimals, QLatin1Char('0'))).toInt(&good);
    if (good) {
        if (value)
            *value = static_cast<unsigned int>(amount);
        return true;
    }
    if (errorKey)
        *errorKey = QStringLiteral("INTEGRAL_NUMBER");
    if (errorArea)
        *errorArea = MONEY_TEXTS_AREA;
    return false;
}

unsigned int Globals::ExchangeMoneyTo(unsigned int value, double rate)
{
    const double amount = std::floor(rate / RATE_UNIT * value);
    if (!(amount > 0))
        return 0;
    return amount < MAX_MONEY ? static_cast<unsigned int>(amount) : std::numeric_limits<unsigned int>::max();
}

unsigned int Globals::ExchangeMoneyBack(unsigned int value, double rate)
{
    if (!(rate > 0))
        return 0;
    const double factor = rate / RATE_UNIT;
    const double quotient = std::floor(value / factor);
    // The quotient may be slightly too small, because it and the product are rounded.
    for (int step = 0; step < MAX_BACK_STEPS; ++step) {
        const double candidate = quotient + step;
        if (!(candidate <= MAX_MONEY))
            return 0;
        if (candidate * factor - value >= 0)
            return static_cast<unsigned int>(candidate);
    }
    return 0;
}
