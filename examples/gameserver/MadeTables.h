#pragma once

#include <protocol/LobbyProtocol.h>

/// Appends made-up tables until there are \a count: of all types, games, limits and kinds of money, some with a start
/// time within two days after \a now, which is in seconds since 1970 UTC. The same \a seed gives the same tables.
void AddMadeTables(int count, quint32 seed, quint32 now, QVector<LobbyProtocol::STable> &tables);
