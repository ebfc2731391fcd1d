#pragma once

#include <protocol/LobbyProtocol.h>

/// Texts about a table, in the user's language and time zone.
namespace TableTexts {

QString GetType(GlobalDefines::TableType type);
/// Returns the limit and the game.
QString GetGame(const LobbyProtocol::STable &table);
/// Returns whether the table is a tournament, which has a buy-in and a fee instead of stakes.
bool IsTournament(const LobbyProtocol::STable &table);
/// Returns the stakes of a game, or buy-in and fee of a tournament.
QString GetStakes(const LobbyProtocol::STable &table);
/// Returns an amount as tables show it.
QString GetAmount(GlobalDefines::MoneyType money, GlobalDefines::MoneyValue amount);

} // namespace TableTexts
