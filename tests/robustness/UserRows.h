#pragma once

#include <support/Literal.h>

#include <QStringList>

/// What users change in the town. Of each of them a row is called "p/PLAYER" or "s/KEY".
const QStringList PLAYERS{"p0"_s, "p1"_s, "p2"_s};
const QStringList SETTINGS{"volume"_s, "themechips"_s};

inline QStringList GetRows()
{
    QStringList rows;
    for (const QString &player : PLAYERS)
        rows.append("p/"_s + player);
    for (const QString &key : SETTINGS)
        rows.append("s/"_s + key);
    return rows;
}

/// What a row is that nobody has changed.
inline QString GetUnchanged(const QString &row)
{
    return row.contains("p/"_s) ? "|0|0"_s : row.endsWith("volume"_s) ? "70"_s : "0"_s;
}

/// Of a player's row; a setting's is its value.
inline QString ToContent(const QString &note, int tag, int flags)
{
    return "%1|%2|%3"_s.arg(note).arg(tag).arg(flags);
}
