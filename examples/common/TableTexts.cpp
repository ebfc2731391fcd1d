#include "TableTexts.h"

#include "Texts.h"

#include <money/MoneyStrings.h>

#include <QGuiApplication>
#include <QHash>

namespace TableTexts {

namespace {

constexpr ushort LEFT_TO_RIGHT = 0x2066; // Unicode's isolates
constexpr ushort END_OF_DIRECTION = 0x2069;
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
    const QString stakes = AmountText(table.eMoney, table.mvLow) + separator + AmountText(table.eMoney, table.mvHigh);
    // Where texts run from right to left, signs and digits alone would take the other order.
    return QGuiApplication::isRightToLeft() ? QChar(LEFT_TO_RIGHT) + stakes + QChar(END_OF_DIRECTION) : stakes;
}

} // namespace TableTexts
