#pragma once

#include <QString>

namespace BoundText {

/// \a text to be bound to a statement: a null one would be bound as NULL, which equals no text, not even itself.
inline QString NeverNull(const QString &text)
{
    return text.isNull() ? QLatin1String("") : text;
}

} // namespace BoundText
