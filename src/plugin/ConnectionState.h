#pragma once

#include <QMetaType>

/// The state of the host's connection to the game server, as the host reports it to the plugins.
namespace EConnectionState {

/// The states. A state is sent as four bytes in the event "M2PE" "SCOC". The library passes on any value, known or
/// not.
enum type : qint32 {
    Disconnected = 0, ///< Not connected, and not trying to connect.
    Connecting = 1,   ///< Trying to connect.
    Connected = 2,    ///< Packets can be sent.
    Reconnecting = 3, ///< The connection was lost; the host tries to restore it.
};

} // namespace EConnectionState

Q_DECLARE_METATYPE(EConnectionState::type)
