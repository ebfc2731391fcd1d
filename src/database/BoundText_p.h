#pragma once

#include <QString>

/// Texts on their way into a statement. SQLite takes them as UTF-16, drops a byte order mark at their beginning, and
/// joins half a surrogate pair with whatever character follows it.
namespace BoundText {

/// What the file gives back of \a text once it is stored: each half of a surrogate pair and each of the two
/// characters that Unicode reserves has become U+FFFD. Never null. Compare this with what is stored.
QString Stored(const QString &text);

/// \a text to be bound to a statement, which then holds Stored(\a text): not null, which would be bound as NULL and
/// equal no text, and with a byte order mark that SQLite may drop where it begins with one itself.
QString ToBind(const QString &text);

} // namespace BoundText
