#include "SyncMerge.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QVariant>

#include <algorithm>

namespace {

// All rows that a request is about go to the database in an array, and come from it in one result.
QString ToText(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

} // namespace

CSyncMerge::CSyncMerge(CSyncStore &store, const CSyncStore::SPlace &place, SSyncList &list, SMachine &machine)
    : m_store(store)
    , m_place(place)
    , m_strID(place.strList)
    , m_list(list)
    , m_machine(machine)
    , m_findPast(store.Prepare(QStringLiteral("SELECT 1 FROM tbl_past WHERE PST_cList = ? AND PST_cKey = ?"
                                              " AND PST_cContent = ? AND PST_iTime = ?")))
{
}

bool CSyncMerge::Run()
{
    QJsonArray keys;
    for (const SSyncRow &sent : qAsConst(m_list.rows))
        keys.append(sent.strKey);
    m_strKeys = ToText(keys);
    if (!ReadNewest() || !ReadSentRows() || !ReadHeld() || !ReadMissing())
        return false;
    // A new machine's rows are defaults, or older than what it has lost. It isn't new any more if it has been offered
    // what is here and shows nothing that would have been overwritten by that.
    const bool offered = m_machine.bCaughtUp || m_machine.iOffered > 0 || m_bEmpty;
    m_bAddsOnly =
        !offered || (!m_machine.bCaughtUp && std::any_of(m_list.rows.begin(), m_list.rows.end(),
                                                         [this](const auto &row) { return IsOverwritten(row); }));
    for (const SSyncRow &sent : qAsConst(m_list.rows))
        Take(sent);
    const bool good = (m_bAddsOnly || SendAgain()) && Store() && (m_bAddsOnly || Forget());
    m_machine = {m_list.iTime, m_bAddsOnly ? 0 : m_list.iTime, !m_bAddsOnly && !m_bMissing, true};
    m_list.rows.clear();
    return good;
}

bool CSyncMerge::ReadNewest()
{
    CSyncStore::TQuery query;
    if (!m_store.Run(query,
                     QStringLiteral("SELECT MAX(CASE WHEN MAC_iBase > MAC_iOffered THEN MAC_iBase"
                                    " ELSE MAC_iOffered END),"
                                    " (SELECT MAX(ROW_iStamp) FROM tbl_row WHERE ROW_cList = ?)"
                                    " FROM tbl_machine WHERE MAC_cList = ?"),
                     {m_strID, m_strID}) ||
        !query->next())
        return false;
    m_iNewest = std::max(query->value(0).toLongLong(), query->value(1).toLongLong());
    m_bEmpty = query->isNull(1);
    return true;
}

bool CSyncMerge::ReadSentRows()
{
    CSyncStore::TQuery query;
    const bool good = m_store.Run(query,
                                  QStringLiteral("SELECT ROW_cKey, ROW_cContent, ROW_iChanged, ROW_iStamp"
                                                 " FROM %texts(?) AS sent %join tbl_row"
                                                 " WHERE ROW_cList = ? AND ROW_cKey = sent.value %end"),
                                  {m_strKeys, m_strID});
    while (good && query->next())
        m_rows.insert(query->value(0).toString(),
                      {query->value(1).toString(), query->value(2).toLongLong(), query->value(3).toLongLong()});
    return good;
}

// Those whose stamps are beyond one time and not beyond the other.
bool CSyncMerge::ReadOtherRows(qint64 after, qint64 last)
{
    CSyncStore::TQuery query;
    const bool good =
        m_store.Run(query,
                    QStringLiteral("SELECT ROW_cKey, ROW_cContent, ROW_iChanged, ROW_iStamp FROM tbl_row"
                                   " WHERE ROW_cList = ? AND ROW_iStamp > ? AND ROW_iStamp <= ?"),
                    {m_strID, after, last});
    while (good && query->next()) {
        const QString key = query->value(0).toString();
        if (!m_rows.contains(key))
            m_rows.insert(key,
                          {query->value(1).toString(), query->value(2).toLongLong(), query->value(3).toLongLong()});
    }
    return good;
}

bool CSyncMerge::ReadSentBefore()
{
    CSyncStore::TQuery query;
    const bool good = m_store.Run(query,
                                  QStringLiteral("SELECT HLD_cKey, HLD_cContent, HLD_iSent"
                                                 " FROM %texts(?) AS sent %join tbl_held WHERE HLD_cList = ?"
                                                 " AND HLD_cMachine = ? AND HLD_cKey = sent.value AND HLD_iSent > 0"
                                                 " %end"),
                                  {m_strKeys, m_strID, m_place.strMachine});
    while (good && query->next())
        m_sentBefore.insert(query->value(0).toString(), {query->value(1).toString(), query->value(2).toLongLong()});
    return good;
}

// If the machine sends the newest row of an offer with the time that it was offered, all rows of the offer have
// arrived. The content alone doesn't tell, for a user may have chosen the same, nor does a time with which it has
// sent the row itself.
bool CSyncMerge::ReadArrival()
{
    m_bArrived = std::any_of(m_list.rows.cbegin(), m_list.rows.cend(), [this](const SSyncRow &sent) {
        const SRow row = m_rows.value(sent.strKey);
        return sent.iTime == m_machine.iOffered && sent.iTime == row.iStamp && sent.strContent == row.strContent &&
               sent.iTime != m_sentBefore.value(sent.strKey).iTime;
    });
    if (m_bArrived)
        m_machine.iBase = std::max(m_machine.iBase, m_machine.iOffered);
    return !m_bArrived || m_store.Confirm(m_place, m_machine.iOffered);
}

// What the machine may hold. If it shows a note, it can't be without one any more, whatever has arrived.
bool CSyncMerge::ReadHeld()
{
    if (!m_place.bStampedAnew)
        return m_machine.bCaughtUp || ReadSentBefore();
    CSyncStore::TQuery query;
    if (!ReadSentBefore() || !ReadArrival() ||
        !m_store.Run(query,
                     QStringLiteral("SELECT HLD_cKey, HLD_cContent, HLD_bEmpty FROM %texts(?) AS sent %join tbl_held"
                                    " WHERE HLD_cList = ? AND HLD_cMachine = ? AND HLD_cKey = sent.value %end"),
                     {m_strKeys, m_strID, m_place.strMachine}))
        return false;
    QSet<QString> empty;
    while (query->next()) {
        m_held[query->value(0).toString()].insert(query->value(1).toString());
        if (query->value(2).toInt() != 0)
            empty.insert(query->value(0).toString());
    }
    const CSyncStore::TQuery fill =
        m_store.Prepare(QStringLiteral("UPDATE tbl_held SET HLD_bEmpty = 0 WHERE HLD_cList = ? AND HLD_cMachine = ?"
                                       " AND HLD_cKey = ?"));
    bool good = true;
    for (const SSyncRow &sent : qAsConst(m_list.rows)) {
        if (empty.contains(sent.strKey) && sent.strContent == SyncJson::NO_NOTE)
            m_held[sent.strKey].insert(SyncJson::NO_NOTE);
        else if (empty.contains(sent.strKey))
            good = good && m_store.Execute(fill, {m_strID, m_place.strMachine, sent.strKey});
    }
    return good;
}

// A machine with rows that isn't known to have those of an offer has been asked for all that it has. If one of them
// is missing there, the offer hasn't arrived.
bool CSyncMerge::ReadMissing()
{
    if (m_machine.bCaughtUp || m_bArrived || m_machine.iBase == 0)
        return true;
    CSyncStore::TQuery query;
    const bool good =
        m_store.Run(query, QStringLiteral("SELECT ROW_cKey FROM tbl_row WHERE ROW_cList = ? AND ROW_iStamp <= ?"),
                    {m_strID, m_machine.iOffered});
    while (good && !m_bMissing && query->next())
        m_bMissing = !m_rows.contains(query->value(0).toString());
    query->finish();
    return good;
}

// A machine gives rows that it loads a new time and sends them again: they must not be taken for changes, or they'd
// win against later ones. Without a row it holds a note that says nothing.
bool CSyncMerge::IsHeld(const SSyncRow &sent) const
{
    const auto held = m_held.constFind(sent.strKey);
    return m_place.bStampedAnew &&
           (held == m_held.constEnd() ? sent.strContent == SyncJson::NO_NOTE : held->contains(sent.strContent));
}

// The machine has changed the row to that, so no earlier offer of it can arrive any more. Of settings it only matters
// what a new machine has sent.
void CSyncMerge::Hold(const SSyncRow &sent, qint64 stamp)
{
    if (!m_place.bStampedAnew && !m_bAddsOnly)
        return;
    if (!m_place.bStampedAnew || m_held.contains(sent.strKey)) {
        m_dropped.insert(sent.strKey);
        m_holds.remove(sent.strKey);
    }
    m_holds[sent.strKey].insert(sent.strContent, {stamp, std::max<qint64>(sent.iTime, 1)});
}

// Whether what is here is what the machine itself has sent, so that it knew of it when it changed the row.
bool CSyncMerge::IsOwn(const SSyncRow &sent, const SRow &row) const
{
    const auto before = m_sentBefore.constFind(sent.strKey);
    return before != m_sentBefore.constEnd() && before->strContent == row.strContent;
}

// Whether the machine wouldn't have the row so any more if the last answer had reached it.
bool CSyncMerge::IsOverwritten(const SSyncRow &sent)
{
    const auto row = m_rows.constFind(sent.strKey);
    return row != m_rows.constEnd() && row->strContent != sent.strContent &&
           sent.iTime <= std::max(m_machine.iBase, m_machine.iOffered) && !IsEcho(sent, *row);
}

// A machine sends rows again that it has from here. Their time there is a stamp, maybe far beyond the change, so they
// must not be taken for changes, or they'd win against later ones.
bool CSyncMerge::IsEcho(const SSyncRow &sent, const SRow &row)
{
    if (sent.strContent == row.strContent && (sent.iTime == row.iStamp || sent.iTime == row.iChanged))
        return true;
    if (m_past.value(sent.strKey).contains({sent.strContent, sent.iTime}))
        return true;
    const bool echo =
        m_store.Execute(m_findPast, {m_strID, sent.strKey, sent.strContent, sent.iTime}) && m_findPast->next();
    m_findPast->finish();
    return echo;
}

void CSyncMerge::Take(const SSyncRow &sent)
{
    const SRow taken{sent.strContent, sent.iTime, sent.iTime > m_iNewest ? sent.iTime : m_iNewest + 1, true};
    const auto row = m_rows.find(sent.strKey);
    const bool held = IsHeld(sent);
    if (row == m_rows.end() && held)
        return;
    const bool own = row != m_rows.end() && IsOwn(sent, *row);
    const bool addsOnly = m_bAddsOnly && !own;
    if (!held && (row == m_rows.end() || !addsOnly || m_place.bStampedAnew))
        Hold(sent, taken.iStamp);
    if (row == m_rows.end()) {
        m_rows.insert(sent.strKey, taken);
        m_changed.insert(sent.strKey);
        return;
    }
    const bool alike = row->strContent == sent.strContent;
    row->bSent = alike;
    if (addsOnly || held || sent.iTime < row->iChanged || IsEcho(sent, *row)) {
        row->bLacked = !alike;
        return;
    }
    if (alike) {
        row->iChanged = sent.iTime; // made so again: what came in between doesn't win any more
    } else {
        Remember(sent.strKey, *row, taken.iStamp);
        *row = taken;
    }
    m_changed.insert(sent.strKey);
}

// The machine's newest time may now be beyond rows that it never got, since it had changes of its own. They get a
// stamp beyond it, or the machine would never ask for them. What an offer is known to have brought a new machine
// isn't sent again.
bool CSyncMerge::SendAgain()
{
    const qint64 had = m_machine.bCaughtUp ? m_machine.iBase : m_bArrived ? m_machine.iOffered : 0;
    if (!ReadOtherRows(had, m_list.iTime))
        return false;
    qint64 beyond = std::max(m_iNewest, m_list.iTime);
    for (const SRow &row : qAsConst(m_rows))
        beyond = std::max(beyond, row.iStamp);
    ++beyond;
    for (auto row = m_rows.begin(); row != m_rows.end(); ++row) {
        if (row->bSent || (row->iStamp <= had && !row->bLacked) || row->iStamp > m_list.iTime)
            continue;
        Remember(row.key(), *row, beyond);
        row->iStamp = beyond;
        m_changed.insert(row.key());
    }
    return true;
}

// What rows have been is of no use once all machines have the rows that came in its place.
bool CSyncMerge::Forget()
{
    CSyncStore::TQuery query;
    return m_store.Run(query,
                       QStringLiteral("DELETE FROM tbl_past WHERE PST_cList = ? AND PST_iUntil <= (SELECT MIN(CASE"
                                      " MAC_bMet WHEN 1 THEN MAC_iBase ELSE 0 END) FROM tbl_machine"
                                      " WHERE MAC_cList = ?)"),
                       {m_strID, m_strID});
}

void CSyncMerge::Remember(const QString &key, const SRow &row, qint64 until)
{
    m_past[key].insert({row.strContent, row.iStamp}, until);
    m_past[key].insert({row.strContent, row.iChanged}, until);
}

bool CSyncMerge::Store()
{
    QJsonArray rows;
    for (const QString &key : qAsConst(m_changed)) {
        const SRow row = m_rows.value(key);
        rows.append(QJsonArray{key, row.strContent, row.iChanged, row.iStamp});
    }
    QJsonArray past;
    for (auto key = m_past.cbegin(); key != m_past.cend(); ++key) {
        for (auto was = key->cbegin(); was != key->cend(); ++was)
            past.append(QJsonArray{key.key(), was.key().first, was.key().second, *was});
    }
    return StoreHeld() &&
           StoreAll(
               rows,
               QStringLiteral("INSERT INTO tbl_row SELECT ?, value ->> 0, value ->> 1, CAST(value ->> 2 AS BIGINT),"
                              " CAST(value ->> 3 AS BIGINT) FROM %rows(?) WHERE 1 = 1"
                              " ON CONFLICT (ROW_cList, ROW_cKey) DO UPDATE SET ROW_cContent ="
                              " excluded.ROW_cContent, ROW_iChanged = excluded.ROW_iChanged,"
                              " ROW_iStamp = excluded.ROW_iStamp"),
               {m_strID}) &&
           StoreAll(
               past,
               QStringLiteral("INSERT INTO tbl_past SELECT ?, value ->> 0, value ->> 1, CAST(value ->> 2 AS BIGINT),"
                              " CAST(value ->> 3 AS BIGINT) FROM %rows(?) WHERE 1 = 1"
                              " ON CONFLICT (PST_cList, PST_cKey, PST_iTime, %digest(PST_cContent)) DO UPDATE"
                              " SET PST_iUntil = excluded.PST_iUntil"),
               {m_strID});
}

bool CSyncMerge::StoreHeld()
{
    const CSyncStore::TQuery drop =
        m_store.Prepare(QStringLiteral("DELETE FROM tbl_held WHERE HLD_cList = ? AND HLD_cMachine = ?"
                                       " AND HLD_cKey = ?"));
    bool good = true;
    for (const QString &key : qAsConst(m_dropped))
        good = good && m_store.Execute(drop, {m_strID, m_place.strMachine, key});
    QJsonArray held;
    for (auto key = m_holds.cbegin(); key != m_holds.cend(); ++key) {
        for (auto content = key->cbegin(); content != key->cend(); ++content)
            held.append(QJsonArray{key.key(), content.key(), content->first, content->second});
    }
    return good &&
           StoreAll(held,
                    QStringLiteral("INSERT INTO tbl_held SELECT ?, ?, value ->> 0, value ->> 1,"
                                   " CAST(value ->> 2 AS BIGINT), 0, CAST(value ->> 3 AS BIGINT) FROM %rows(?)"
                                   " WHERE 1 = 1 ON CONFLICT (HLD_cList, HLD_cMachine, HLD_cKey,"
                                   " %digest(HLD_cContent)) DO UPDATE SET HLD_iOffer = excluded.HLD_iOffer,"
                                   " HLD_bEmpty = 0, HLD_iSent = excluded.HLD_iSent"),
                    {m_strID, m_place.strMachine});
}

// Does nothing if there are none.
bool CSyncMerge::StoreAll(const QJsonArray &rows, const QString &sql, QVariantList values)
{
    CSyncStore::TQuery query;
    values.append(ToText(rows));
    return rows.isEmpty() || m_store.Run(query, sql, values);
}
