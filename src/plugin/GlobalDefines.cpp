#include "GlobalDefines.h"

#include <QDataStream>
#include <QMetaType>
#include <QtQml>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr int GAME_CODE_LENGTH = 4;

struct GameRow
{
    GlobalDefines::GameType type;
    const char *code;
    const char *nameKey;
    const char *untranslatedName;
};

constexpr GameRow GAMES[] = {
    {GlobalDefines::GT_HOLDEM, "HOLD", "GAME_HOLDEM", "Hold'em"},
    {GlobalDefines::GT_OMAHA, "OMNM", "GAME_OMAHA", "Omaha"},
    {GlobalDefines::GT_OMAHA_HILO, "OMHL", "GAME_OMAHA_HILO", "Omaha Hi/Lo"},
    {GlobalDefines::GT_SEVEN_CARD, "7CNM", "GAME_7CARD", "7 Card Stud"},
    {GlobalDefines::GT_SEVEN_CARD_HILO, "7CHL", "GAME_7CARD_HILO", "7 Card Stud Hi/Lo"},
    {GlobalDefines::GT_NOBADBEAT, "HNBB", "GAME_NBB", "Hold'em No Bad Beat"},
    {GlobalDefines::GT_BADUGI, "BADU", "GAME_BADUGI", "Badugi"},
    {GlobalDefines::GT_SEVEN_CARD_CHOICE, "7CHO", "GAME_7CARD_CHOICE", "7 Card Choice"},
    {GlobalDefines::GT_2TO7, "2TO7", "GAME_2TO7", "2to7"},
    {GlobalDefines::GT_5CARD, "5CAR", "GAME_5CARD", "5 Card"},
};

constexpr const char *MONTH_KEYS[] = {"JANUARY", "FEBRUARY", "MARCH",     "APRIL",   "MAY",      "JUNE",
                                      "JULY",    "AUGUST",   "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER"};

const GameRow *FindGame(GlobalDefines::GameType type)
{
    const auto row =
        std::find_if(std::begin(GAMES), std::end(GAMES), [type](const GameRow &game) { return game.type == type; });
    return row == std::end(GAMES) ? nullptr : row;
}

template <typename Enum>
QDataStream &ReadEnum(QDataStream &stream, Enum &value)
{
    qint32 number = 0;
    stream >> number;
    value = static_cast<Enum>(number);
    return stream;
}

} // namespace

GlobalDefines::GlobalDefines() = default;

GlobalDefines::~GlobalDefines() = default;

void GlobalDefines::RegisterQML()
{
    qmlRegisterType<GlobalDefines>("GlobalDefines", 1, 0, "GlobalDefines");

    qRegisterMetaType<MoneyType>("GlobalDefines::MoneyType");
    qRegisterMetaType<LimitType>("GlobalDefines::LimitType");
    qRegisterMetaType<GameType>("GlobalDefines::GameType");
    qRegisterMetaType<TableType>("GlobalDefines::TableType");
    qRegisterMetaType<TableConnectTypes>("GlobalDefines::TableConnectTypes");
    qRegisterMetaType<TournamentStatus>("GlobalDefines::TournamentStatus");
    qRegisterMetaType<TournamentType>("GlobalDefines::TournamentType");
    qRegisterMetaType<CountdownStringType>("GlobalDefines::CountdownStringType");
    qRegisterMetaType<ScreenPositionOutside>("GlobalDefines::ScreenPositionOutside");
}

QDataStream &operator>>(QDataStream &stream, GlobalDefines::MoneyType &value)
{
    return ReadEnum(stream, value);
}

QDataStream &operator>>(QDataStream &stream, GlobalDefines::LimitType &value)
{
    return ReadEnum(stream, value);
}

QDataStream &operator>>(QDataStream &stream, GlobalDefines::TableType &value)
{
    return ReadEnum(stream, value);
}

QDataStream &operator>>(QDataStream &stream, GlobalDefines::GameType &value)
{
    return ReadEnum(stream, value);
}

GlobalDefines::MoneyType Globals::GetMoneyType(char letter)
{
    switch (letter) {
    case GlobalDefines::MONEYTYPE_EURO:
    case GlobalDefines::MONEYTYPE_PLAY:
    case GlobalDefines::MONEYTYPE_DOLLAR:
    case GlobalDefines::MONEYTYPE_POINTS:
    case GlobalDefines::MONEYTYPE_TOURN:
        return static_cast<GlobalDefines::MoneyType>(letter);
    default:
        return GlobalDefines::MONEYTYPE_UNKNOWN;
    }
}

GlobalDefines::LimitType Globals::GetLimitType(char letter)
{
    switch (letter) {
    case GlobalDefines::LT_FIXED_LIMIT:
    case GlobalDefines::LT_POT_LIMIT:
        return static_cast<GlobalDefines::LimitType>(letter);
    default:
        return GlobalDefines::LT_NO_LIMIT;
    }
}

GlobalDefines::TableType Globals::GetTableType(char letter)
{
    switch (letter) {
    case GlobalDefines::TT_PRIVATE:
    case GlobalDefines::TT_RESTRICTED:
    case GlobalDefines::TT_SITANDGO:
    case GlobalDefines::TT_TOURNAMENT:
        return static_cast<GlobalDefines::TableType>(letter);
    default:
        return GlobalDefines::TT_NORMAL;
    }
}

GlobalDefines::GameType Globals::GetGameType(const QString &code)
{
    const QString letters = code.toUpper().left(GAME_CODE_LENGTH);
    const auto row = std::find_if(std::begin(GAMES), std::end(GAMES),
                                  [&](const GameRow &game) { return letters == QLatin1String(game.code); });
    return row == std::end(GAMES) ? GlobalDefines::GT_HOLDEM : row->type;
}

void Globals::GetGameType(GlobalDefines::GameType type, char *code)
{
    if (const GameRow *game = FindGame(type))
        std::memcpy(code, game->code, GAME_CODE_LENGTH);
}

QString Globals::GetGameNameKey(GlobalDefines::GameType type)
{
    const GameRow *game = FindGame(type);
    return game ? QString::fromLatin1(game->nameKey) : QString();
}

QString Globals::GetGameNameKey(QString code)
{
    return GetGameNameKey(GetGameType(code));
}

QString Globals::GetLimitKey(GlobalDefines::LimitType limit, bool shortForm)
{
    switch (limit) {
    case GlobalDefines::LT_NO_LIMIT:
        return shortForm ? QStringLiteral("NL") : QStringLiteral("NO_LIMIT");
    case GlobalDefines::LT_POT_LIMIT:
        return shortForm ? QStringLiteral("PL") : QStringLiteral("POT_LIMIT");
    case GlobalDefines::LT_FIXED_LIMIT:
        return shortForm ? QStringLiteral("LIMIT_TYPE_FL") : QStringLiteral("FIXED_LIMIT");
    }
    return QString();
}

QString Globals::GetLimitKey(QChar letter, bool shortForm)
{
    return GetLimitKey(static_cast<GlobalDefines::LimitType>(letter.unicode()), shortForm);
}

QString Globals::GetMonthKey(int month)
{
    if (month < 1 || month > int(std::size(MONTH_KEYS)))
        return QString();
    return QString::fromLatin1(MONTH_KEYS[month - 1]);
}

QString Globals::GetTournamentStatusLongKey(int status)
{
    switch (status) {
    case GlobalDefines::TRNSTATUS_ANNOUNCED:
    case GlobalDefines::TRNSTATUS_NOTYETANNOUNCED:
        return QStringLiteral("ANNOUNCED");
    case GlobalDefines::TRNSTATUS_REGISTERING:
        return QStringLiteral("REGISTERING");
    case GlobalDefines::TRNSTATUS_SEATING:
    case GlobalDefines::TRNSTATUS_SEATED:
        return QStringLiteral("SEATING");
    case GlobalDefines::TRNSTATUS_RUNNING:
    case GlobalDefines::TRNSTATUS_STARTINGBREAK:
    case GlobalDefines::TRNSTATUS_STARTINGADDON:
    case GlobalDefines::TRNSTATUS_ADDONPERIOD:
        return QStringLiteral("RUNNING");
    case GlobalDefines::TRNSTATUS_ONBREAK:
        return QStringLiteral("ONBREAK");
    case GlobalDefines::TRNSTATUS_COMPLETED:
    case GlobalDefines::TRNSTATUS_COMPLETING:
        return QStringLiteral("COMPLETED");
    case GlobalDefines::TRNSTATUS_CANCELLED:
    case GlobalDefines::TRNSTATUS_CANCELLING:
        return QStringLiteral("CANCELLED");
    case GlobalDefines::TRNSTATUS_ONHOLD:
        return QStringLiteral("ONHOLD");
    case GlobalDefines::TRNSTATUS_LATE_REG:
        return QStringLiteral("LATE_REG");
    default:
        return QStringLiteral("UNKNOWN");
    }
}

QString Globals::GetUntranslatedGameName(GlobalDefines::GameType type, GlobalDefines::LimitType limit)
{
    QString name;
    if (limit == GlobalDefines::LT_NO_LIMIT)
        name = QStringLiteral("NL ");
    else if (limit == GlobalDefines::LT_POT_LIMIT)
        name = QStringLiteral("PL ");
    if (const GameRow *game = FindGame(type))
        name += QLatin1String(game->untranslatedName);
    return name;
}
