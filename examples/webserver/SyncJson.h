#pragma once

#include <QByteArray>
#include <QVector>

#include <array>

/// A setting or a note as it travels.
struct SSyncRow
{
    QString strKey;     ///< A JSON object with what tells it from others.
    QString strContent; ///< A JSON object with the rest but the time.
    qint64 iTime = 0;   ///< Seconds since 1970 UTC.
};

struct SSyncList
{
    qint64 iTime = 0; ///< How far whoever sends it is.
    QVector<SSyncRow> rows;
};

namespace SyncJson {

/// The settings and the notes, by the names of their lists.
inline constexpr std::array<const char *, 2> LISTS{"usersettings", "playerinfos"};
/// Whether clients give the rows of the list a new time whenever they load them.
inline constexpr std::array<bool, LISTS.size()> STAMPED_ANEW{false, true};
/// The content of a note that says nothing. A client sends such a row of a player who has only been rated.
extern const QString NO_NOTE;
using TLists = std::array<SSyncList, LISTS.size()>;

/// False if the text isn't whole seconds before the year 2100. Later ones would leave no numbers to count on from.
bool ReadTime(const QString &text, qint64 &time);
/// What a client sends: all values are texts, numbers in decimal; a list may be missing. False for any other shape.
bool ReadLists(const QByteArray &json, TLists &lists);
/// An answer: times, tags and flags are numbers; a list without rows is left out.
QByteArray WriteLists(const TLists &lists);

} // namespace SyncJson
