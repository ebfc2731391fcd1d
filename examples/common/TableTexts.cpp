#include "TableTexts.h"

#include "Texts.h"

#include <money/MoneyStrings.h>

#include <QHash>

namespace TableTexts {

namespace {

const QHash<int, const char *> TYPE_KEYS{{GlobalDefines::TT_PRIVATE, "LOBBY_TYPE_PRIVATE"},
                                         {GlobalDefines::TT_RESTRICTED, "LOBBY_TYPE_RESTRICTED"},
                                         {GlobalDefines::TT_SITANDGO, "LOBBY_TYPE_SIT_AND_GO"},
                                         {GlobalDefines::TT_TOURNAMENT, "LOBBY_TYPE_TOURNAMENT"}};

// Makes the text of each amount once, since many tables have the same stakes.
QString AmountText(GlobalDefines::MoneyType money, GlobalDefines::MoneyValue amount)
{
    return Texts::Once(QStringLiteral("%1 %2").arg(money).arg(amount), [=] { return GetAmount(money, amount); });
}

} // namespace

QString GetType(GlobalDefines::TableType type)
{
    return Texts::Get(TYPE_KEYS.value(type, "LOBBY_TYPE_RING_GAME"));
}

// Each area inherits the texts of the core.
QString GetGame(const LobbyProtocol::STable &table)
{
    return Texts::Get(Globals::GetLimitKey(table.eLimit, true)) + QLatin1Char(' ') +
           Texts::Get(Globals::GetGameNameKey(table.eGame));
}

QString GetAmount(GlobalDefines::MoneyType money, GlobalDefines::MoneyValue amount)
{
    const QString text = Globals::MoneyToString(money, amount, true);
    return money == GlobalDefines::MONEYTYPE_POINTS ? Texts::Get("LOBBY_POINTS", {{"#amount#", text}}) : text;
}

bool IsTournament(const LobbyProtocol::STable &table)
{
    return table.eType == GlobalDefines::TT_TOURNAMENT || table.eType == GlobalDefines::TT_SITANDGO;
}

QString GetStakes(const LobbyProtocol::STable &table)
{
    if (IsTournament(table) && table.mvLow == 0 && table.mvHigh == 0)
        return Texts::Get("LOBBY_FREE");
    const QString separator = IsTournament(table) ? QStringLiteral(" + ") : QStringLiteral("/");
    return AmountText(table.eMoney, table.mvLow) + separator + AmountText(table.eMoney, table.mvHigh);
}

} // namespace TableTexts
