#pragma once

#include <QString>

#include <optional>

/// What the server keeps instead of passwords. Any thread.
namespace Passwords {

/// Returns the hash of a password with a new salt, as one line of printable characters that also tells how slow it is
/// to compute: some 64 MiB and 0.1 s, so that even from a stolen file few passwords can be guessed. Returns an empty
/// text if there isn't the memory.
QString Hash(const QString &password);

/// Returns whether a text is in the form of Hash(), and as slow.
bool IsHash(const QString &text);

/// Returns whether it is the password of this hash; nothing if there isn't the memory to find out. Takes as long as
/// the hash says, and twice as long for another password.
std::optional<bool> Matches(const QString &password, const QString &hash);

} // namespace Passwords
