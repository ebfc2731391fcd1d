#pragma once

#include <protocol/LobbyProtocol.h>

/// Reads the server's tables from a JSON file: an array of objects with the keys "id", "name", "type", "game",
/// "limit", "money", "low", "high", "places" and "players", and, if the table has a start time, "starts_in": seconds
/// after \a now, which is in seconds since 1970 UTC. Letters and codes are those of the protocol.
///
/// Returns false, with \a error for the author of the file, if the file can't be read or a row has a fault.
bool LoadTables(const QString &fileName, quint32 now, QVector<LobbyProtocol::STable> &tables, QString &error);
