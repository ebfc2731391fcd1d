#include "TableFile.h"

#include "JsonRows.h"

#include <QSet>

#include <limits>

using LobbyProtocol::STable;

namespace {

constexpr quint32 MAX_U16 = std::numeric_limits<quint16>::max();
constexpr quint32 MAX_U32 = std::numeric_limits<quint32>::max();
constexpr quint32 MAX_STARTS_IN = 365 * 24 * 60 * 60;

GlobalDefines::GameType TakeGame(CJsonRow &row, QLatin1String key)
{
    const QString code = row.TakeText(key, 4, 4);
    const GlobalDefines::GameType game = Globals::GetGameType(code);
    char known[4];
    Globals::GetGameType(game, known);
    row.Check(code == QLatin1String(known, sizeof known), key, QStringLiteral("a game that is known"));
    return game;
}

STable TakeTable(CJsonRow &row, quint32 now)
{
    STable table;
    table.uiID = row.TakeNumber(QLatin1String("id"), 1, MAX_U32);
    table.strName = row.TakeText(QLatin1String("name"), 1, LobbyProtocol::MAX_NAME_LENGTH);
    table.eType = row.TakeLetter(QLatin1String("type"), &Globals::GetTableType);
    table.eGame = TakeGame(row, QLatin1String("game"));
    table.eLimit = row.TakeLetter(QLatin1String("limit"), &Globals::GetLimitType);
    table.eMoney = row.TakeLetter(QLatin1String("money"), &Globals::GetMoneyType);
    table.mvLow = row.TakeNumber(QLatin1String("low"), 0, MAX_U32);
    table.mvHigh = row.TakeNumber(QLatin1String("high"), 0, MAX_U32);
    table.usPlaces = static_cast<quint16>(row.TakeNumber(QLatin1String("places"), 2, MAX_U16));
    table.usPlayers = static_cast<quint16>(row.TakeNumber(QLatin1String("players"), 0, table.usPlaces));
    if (row.Has(QLatin1String("starts_in")))
        table.uiStart = now + row.TakeNumber(QLatin1String("starts_in"), 0, MAX_STARTS_IN);
    return table;
}

} // namespace

bool LoadTables(const QString &fileName, quint32 now, QVector<STable> &tables, QString &error)
{
    QSet<quint32> ids;
    const auto read = [&](CJsonRow &row) {
        const STable table = TakeTable(row, now);
        const QString fault = row.GetFault();
        if (fault.isEmpty() && ids.contains(table.uiID))
            return QStringLiteral("id %1 is another row's already").arg(table.uiID);
        ids.insert(table.uiID);
        tables.append(table);
        return fault;
    };
    return ReadJsonRows(fileName, LobbyProtocol::MAX_TABLES, read, error);
}
