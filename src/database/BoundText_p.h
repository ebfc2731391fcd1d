#pragma once

#include <QString>

/// Functions for texts that are bound to a statement. SQLite takes them as UTF-16, drops a leading byte order mark,
/// and combines half a surrogate pair with the character that follows it.
namespace BoundText {

/// Returns \a text as the file returns it once it is stored: each single half of a surrogate pair and each of the two
/// reserved Unicode characters becomes U+FFFD. Never null. Compare stored texts with this.
QString Stored(const QString &text);

/// Returns the value to bind to a statement so that it stores Stored(\a text). It is never null, because null would
/// be bound as NULL, which equals no text. A text that begins with a byte order mark gets a second one for SQLite to
/// drop.
QString ToBind(const QString &text);

} // namespace BoundText
