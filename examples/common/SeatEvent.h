#pragma once

#include <QString>

/// The event with which the lobby tells the plugins of this client that the user has been given a seat.
///
/// `targetID` is the place, `data` the table, a LobbyProtocol::STable in the form of Payload.h, and `widget` the
/// lobby, beside which a window may open. No game server can send one, because a packet has no widget.
namespace SeatEvent {

inline constexpr char GROUP[] = "SEAT";
inline constexpr char GIVEN[] = "GIVN";

/// The id of the menu that the plugins share, and the key of its title.
inline const QString MENU = QStringLiteral("MENU_TABLES");

} // namespace SeatEvent
