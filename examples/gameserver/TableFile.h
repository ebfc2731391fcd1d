#pragma once

#include <protocol/LobbyProtocol.h>

/// Reads the server's tables from a JSON file: an array of objects with the keys "id", "name", "type", "game",
/// "limit", "money", "low", "high", "places" and "players", and, if the table has a start time, "starts_in": seconds
/// from \a now, which is in seconds since 1970. Letters and codes are those of the protocol.
///
/// False, with \a error for whoever wrote the file, if it can't be read or one row isn't right.
bool LoadTables(const QString &fileName, quint32 now, QVector<LobbyProtocol::STable> &tables, QString &error);
