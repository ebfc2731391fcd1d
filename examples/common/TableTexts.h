#pragma once

#include <protocol/LobbyProtocol.h>

/// What there is to say of a table, in the user's language and time zone.
namespace TableTexts {

QString GetType(GlobalDefines::TableType type);
/// The limit and the game.
QString GetGame(const LobbyProtocol::STable &table);
/// A tournament has a buy-in and a fee instead of stakes.
bool IsTournament(const LobbyProtocol::STable &table);
/// Stakes of a game, or buy-in and fee of a tournament.
QString GetStakes(const LobbyProtocol::STable &table);

} // namespace TableTexts
