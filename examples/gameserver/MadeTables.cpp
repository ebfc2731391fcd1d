#include "MadeTables.h"

#include <QSet>

#include <iterator>
#include <random>

using LobbyProtocol::STable;

namespace {

using TDefines = GlobalDefines;

constexpr quint32 STARTS_WITHIN = 48 * 60 * 60;
// With letters whose order depends on the language.
constexpr const char *ADJECTIVES[] = {"Amber",    "Bright", "Calm",   "Deep",    "Éternel", "Far",
                                      "Golden",   "Hidden", "Indigo", "Jade",    "Little",  "Misty",
                                      "Northern", "Öde",    "Pale",   "Quiet",   "Rapid",   "Silver",
                                      "Tall",     "Urban",  "Velvet", "Western", "Young",   "Äußere"};
constexpr const char *NOUNS[] = {"Arch", "Bay",   "Canyon", "Dune",   "Elm",  "Field", "Grove", "Harbour",
                                 "Isle", "Jetty", "Knoll",  "Lagoon", "Mill", "Notch", "Oasis", "Pier",
                                 "Quay", "Ridge", "Shore",  "Tunnel", "Vale", "Wharf", "Yard"};
// Ring games are the most frequent.
constexpr TDefines::TableType TYPES[] = {TDefines::TT_NORMAL,     TDefines::TT_NORMAL,     TDefines::TT_NORMAL,
                                         TDefines::TT_SITANDGO,   TDefines::TT_TOURNAMENT, TDefines::TT_PRIVATE,
                                         TDefines::TT_RESTRICTED, TDefines::TT_NORMAL};
constexpr TDefines::GameType GAMES[] = {
    TDefines::GT_HOLDEM,     TDefines::GT_HOLDEM,     TDefines::GT_OMAHA,
    TDefines::GT_OMAHA_HILO, TDefines::GT_SEVEN_CARD, TDefines::GT_SEVEN_CARD_HILO,
    TDefines::GT_BADUGI,     TDefines::GT_2TO7,       TDefines::GT_5CARD};
constexpr TDefines::LimitType LIMITS[] = {TDefines::LT_NO_LIMIT, TDefines::LT_POT_LIMIT, TDefines::LT_FIXED_LIMIT};
constexpr TDefines::MoneyType MONEY[] = {TDefines::MONEYTYPE_DOLLAR, TDefines::MONEYTYPE_EURO,
                                         TDefines::MONEYTYPE_PLAY, TDefines::MONEYTYPE_POINTS};
constexpr quint32 STAKES[] = {1, 2, 5, 10, 25, 50, 100, 200, 500, 1000, 2500, 5000, 10000, 50000};
constexpr quint16 SEATS[] = {2, 6, 8, 9, 10};
constexpr quint16 FIELDS[] = {18, 45, 100, 200, 500, 1000}; // of players

// The distributions of the standard library aren't used because they differ between implementations.
class CDice
{
public:
    explicit CDice(quint32 seed)
        : m_random(seed)
    {
    }

    quint32 Below(quint32 limit) { return static_cast<quint32>(m_random()) % limit; }
    template <typename Value, std::size_t SIZE>
    Value OneOf(const Value (&values)[SIZE])
    {
        return values[Below(SIZE)];
    }

private:
    std::mt19937 m_random;
};

STable MakeTable(CDice &dice, int number, quint32 now)
{
    STable table;
    table.strName = QStringLiteral("%1 %2 %3")
                        .arg(QString::fromUtf8(dice.OneOf(ADJECTIVES)), QString::fromUtf8(dice.OneOf(NOUNS)))
                        .arg(number);
    table.eType = dice.OneOf(TYPES);
    table.eGame = dice.OneOf(GAMES);
    table.eLimit = dice.OneOf(LIMITS);
    table.eMoney = dice.OneOf(MONEY);
    const bool isTournament = table.eType == TDefines::TT_TOURNAMENT;
    const bool hasFee = isTournament || table.eType == TDefines::TT_SITANDGO;
    table.mvLow = dice.OneOf(STAKES) * (hasFee ? 10 : 1);
    table.mvHigh = hasFee ? table.mvLow / 10 : table.mvLow * 2;
    table.usPlaces = isTournament ? dice.OneOf(FIELDS) : dice.OneOf(SEATS);
    table.usPlayers = static_cast<quint16>(dice.Below(table.usPlaces + 1U));
    table.uiStart = isTournament ? now + dice.Below(STARTS_WITHIN) : 0;
    return table;
}

} // namespace

void AddMadeTables(int count, quint32 seed, quint32 now, QVector<STable> &tables)
{
    QSet<quint32> ids;
    for (const STable &table : qAsConst(tables))
        ids.insert(table.uiID);
    CDice dice(seed);
    quint32 id = 0;
    while (tables.size() < count) {
        STable table = MakeTable(dice, int(tables.size()) + 1, now);
        while (ids.contains(++id)) {
        }
        table.uiID = id;
        tables.append(table);
    }
}
