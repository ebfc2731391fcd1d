#pragma once

#include <QString>

/// Returns a text of the source as QString, whose arg() most messages call.
inline QString L(const char *text)
{
    return QString::fromLatin1(text);
}

inline QString Quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}
