#pragma once

#include <QMetaType>

/// State of the host's link to the game server, as the host tells it to the plugins.
namespace EConnectionState {

/// Travels as four bytes in the event "M2PE" "SCOC". The library hands any value on, known or not.
enum type : qint32 {
    Disconnected = 0, ///< No link, and no attempt under way.
    Connecting = 1,   ///< An attempt is under way.
    Connected = 2,    ///< Packets can be sent.
    Reconnecting = 3, ///< The link was lost; the host tries again by itself.
};

} // namespace EConnectionState

Q_DECLARE_METATYPE(EConnectionState::type)
