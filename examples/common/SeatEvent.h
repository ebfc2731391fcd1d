#pragma once

#include <QString>

/// The events with which the plugins of this client tell each other of the user's seats.
namespace SeatEvent {

inline constexpr char GROUP[] = "SEAT";
/// The user has been given a seat. `targetID` is the place, `data` the table, a LobbyProtocol::STable in the form of
/// Payload.h, and `widget` the lobby, beside which a window may open. No game server can send one, because a packet
/// has no widget.
inline constexpr char GIVEN[] = "GIVN";
/// The user has left the table whose id is `targetID`. Whoever hears of it shows less, no more,
/// so it doesn't matter who sends one.
inline constexpr char LEFT[] = "LEFT";

/// The id of the menu that the plugins share, and the key of its title.
inline const QString MENU = QStringLiteral("MENU_TABLES");

} // namespace SeatEvent
