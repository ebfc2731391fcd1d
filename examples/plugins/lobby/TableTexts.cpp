#include "TableTexts.h"

#include <common/Texts.h>
#include <money/MoneyStrings.h>
#include <time/CasinoTime.h>
#include <time/CountDown.h>

using LobbyProtocol::STable;

namespace {

constexpr quint32 DAY_SECONDS = 24 * 60 * 60;

const char *TypeKey(GlobalDefines::TableType type)
{
    switch (type) {
    case GlobalDefines::TT_PRIVATE:
        return "LOBBY_TYPE_PRIVATE";
    case GlobalDefines::TT_RESTRICTED:
        return "LOBBY_TYPE_RESTRICTED";
    case GlobalDefines::TT_SITANDGO:
        return "LOBBY_TYPE_SIT_AND_GO";
    case GlobalDefines::TT_TOURNAMENT:
        return "LOBBY_TYPE_TOURNAMENT";
    case GlobalDefines::TT_NORMAL:
        break;
    }
    return "LOBBY_TYPE_RING_GAME";
}

} // namespace

void CTableTexts::Forget()
{
    m_texts.clear();
    m_amounts.clear();
    m_dates.clear();
}

// An area has the texts of the core as well, so one serves for all.
QString CTableTexts::GetText(const QString &key)
{
    const auto text = m_texts.constFind(key);
    if (text != m_texts.constEnd())
        return *text;
    return *m_texts.insert(key, CTranslation::GetInstance()->GetTranslatedString(key, Texts::Area(), -1));
}

QString CTableTexts::GetType(GlobalDefines::TableType type)
{
    return GetText(QString::fromLatin1(TypeKey(type)));
}

QString CTableTexts::GetGame(const STable &table)
{
    const QString limit = GetText(Globals::GetLimitKey(table.eLimit, true));
    return limit + QLatin1Char(' ') + GetText(Globals::GetGameNameKey(table.eGame));
}

QString CTableTexts::GetStakes(const STable &table)
{
    const bool buyIn = table.eType == GlobalDefines::TT_TOURNAMENT || table.eType == GlobalDefines::TT_SITANDGO;
    if (buyIn && table.mvLow == 0 && table.mvHigh == 0)
        return GetText(QStringLiteral("LOBBY_FREE"));
    const QString separator = buyIn ? QStringLiteral(" + ") : QStringLiteral("/");
    return GetAmount(table.eMoney, table.mvLow) + separator + GetAmount(table.eMoney, table.mvHigh);
}

QString CTableTexts::GetStart(const STable &table)
{
    if (table.uiStart == 0)
        return QString();
    if (!IsCountingDown(table))
        return GetDate(table.uiStart);
    const quint32 left = table.uiStart - CCasinoTime::GetInstance()->GetTimeUTCClient();
    return Globals::GetCountDownString(left, GlobalDefines::CST_Normal).GetTranslatedText();
}

bool CTableTexts::IsCountingDown(const STable &table)
{
    const quint32 now = CCasinoTime::GetInstance()->GetTimeUTCClient();
    return table.uiStart >= now && table.uiStart - now < DAY_SECONDS;
}

QString CTableTexts::GetAmount(GlobalDefines::MoneyType money, GlobalDefines::MoneyValue amount)
{
    QString &text = m_amounts[quint64(money) << 32 | amount];
    if (text.isEmpty()) {
        text = Globals::MoneyToString(money, amount, true);
        if (money == GlobalDefines::MONEYTYPE_POINTS)
            text = Texts::MakeItem("LOBBY_POINTS", {{"#amount#", text}}).GetTranslatedText();
    }
    return text;
}

QString CTableTexts::GetDate(quint32 time)
{
    QString &text = m_dates[time];
    if (text.isEmpty())
        text = CCasinoTime::GetInstance()->GetDateTimeString(time).GetTranslatedText();
    return text;
}
