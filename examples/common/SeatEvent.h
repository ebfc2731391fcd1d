#pragma once

#include <QString>

/// What the lobby tells the plugins of this client when the user is given a seat.
///
/// `targetID` is the place, `data` the table, a LobbyProtocol::STable in the form of Payload.h, and `widget` the
/// lobby, which whatever is opened may stand beside. No game server can send one: a packet has no widget.
namespace SeatEvent {

inline constexpr char GROUP[] = "SEAT";
inline constexpr char GIVEN[] = "GIVN";

/// Id of the menu that the plugins share, and the key of its title.
inline const QString MENU = QStringLiteral("MENU_TABLES");

} // namespace SeatEvent
