#include "SyncMerge.h"

#include <QVariant>

#include <algorithm>

CSyncMerge::CSyncMerge(CSyncStore &store, const CSyncStore::SPlace &place, SSyncList &list, SMachine &machine)
    : m_store(store)
    , m_place(place)
    , m_strID(place.strList)
    , m_list(list)
    , m_machine(machine)
    , m_write(
          store.Prepare(QStringLiteral("INSERT INTO tbl_row VALUES (?, ?, ?, ?, ?) ON CONFLICT (ROW_cList, ROW_cKey)"
                                       " DO UPDATE SET ROW_cContent = excluded.ROW_cContent, ROW_iChanged ="
                                       " excluded.ROW_iChanged, ROW_iStamp = excluded.ROW_iStamp")))
    , m_remember(
          store.Prepare(QStringLiteral("INSERT INTO tbl_past VALUES (?, ?, ?, ?, ?) ON CONFLICT (PST_cList, PST_cKey,"
                                       " PST_iTime, %digest(PST_cContent)) DO UPDATE SET PST_iUntil ="
                                       " excluded.PST_iUntil")))
    , m_drop(store.Prepare(QStringLiteral("DELETE FROM tbl_held WHERE HLD_cList = ? AND HLD_cMachine = ?"
                                          " AND HLD_cKey = ?")))
    , m_hold(store.Prepare(QStringLiteral("INSERT INTO tbl_held VALUES (?, ?, ?, ?, ?, 0, ?) ON CONFLICT (HLD_cList,"
                                          " HLD_cMachine, HLD_cKey, %digest(HLD_cContent)) DO UPDATE SET HLD_iOffer ="
                                          " excluded.HLD_iOffer, HLD_bEmpty = 0, HLD_iSent = excluded.HLD_iSent")))
    , m_findPast(store.Prepare(QStringLiteral("SELECT 1 FROM tbl_past WHERE PST_cList = ? AND PST_cKey = ?"
                                              " AND PST_cContent = ? AND PST_iTime = ?")))
{
}

bool CSyncMerge::Run()
{
    if (!ReadNewest() || !ReadSentRows() || !ReadHeld() || !ReadMissing())
        return false;
    // A new machine's rows are defaults, or older than what it has lost. It isn't new any more if it has been offered
    // what is here and shows nothing that would have been overwritten by that.
    const bool offered = m_machine.bCaughtUp || m_machine.iOffered > 0 || m_bEmpty;
    m_bAddsOnly =
        !offered || (!m_machine.bCaughtUp && std::any_of(m_list.rows.begin(), m_list.rows.end(),
                                                         [this](const auto &row) { return IsOverwritten(row); }));
    for (const SSyncRow &sent : qAsConst(m_list.rows)) {
        if (!Take(sent))
            return false;
    }
    const bool good = m_bAddsOnly || SendAgain();
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
    CSyncStore::TQuery query =
        m_store.Prepare(QStringLiteral("SELECT ROW_cContent, ROW_iChanged, ROW_iStamp FROM tbl_row"
                                       " WHERE ROW_cList = ? AND ROW_cKey = ?"));
    bool good = true;
    for (auto sent = m_list.rows.cbegin(); good && sent != m_list.rows.cend(); ++sent) {
        good = m_store.Execute(query, {m_strID, sent->strKey});
        if (good && query->next())
            m_rows.insert(sent->strKey,
                          {query->value(0).toString(), query->value(1).toLongLong(), query->value(2).toLongLong()});
    }
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
    CSyncStore::TQuery query =
        m_store.Prepare(QStringLiteral("SELECT HLD_cContent, HLD_iSent FROM tbl_held WHERE HLD_cList = ?"
                                       " AND HLD_cMachine = ? AND HLD_cKey = ? AND HLD_iSent > 0"));
    bool good = true;
    for (const SSyncRow &sent : qAsConst(m_list.rows)) {
        good = good && m_store.Execute(query, {m_strID, m_place.strMachine, sent.strKey});
        if (good && query->next())
            m_sentBefore.insert(sent.strKey, {query->value(0).toString(), query->value(1).toLongLong()});
    }
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
    bool good = ReadSentBefore() && ReadArrival();
    CSyncStore::TQuery query =
        m_store.Prepare(QStringLiteral("SELECT HLD_cContent, HLD_bEmpty FROM tbl_held WHERE HLD_cList = ?"
                                       " AND HLD_cMachine = ? AND HLD_cKey = ?"));
    const CSyncStore::TQuery fill =
        m_store.Prepare(QStringLiteral("UPDATE tbl_held SET HLD_bEmpty = 0 WHERE HLD_cList = ? AND HLD_cMachine = ?"
                                       " AND HLD_cKey = ?"));
    for (const SSyncRow &sent : qAsConst(m_list.rows)) {
        const QVariantList place{m_strID, m_place.strMachine, sent.strKey};
        bool empty = false;
        good = good && m_store.Execute(query, place);
        while (good && query->next()) {
            m_held[sent.strKey].insert(query->value(0).toString());
            empty |= query->value(1).toBool();
        }
        if (empty && sent.strContent == SyncJson::NO_NOTE)
            m_held[sent.strKey].insert(SyncJson::NO_NOTE);
        else if (empty)
            good = good && m_store.Execute(fill, place);
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
bool CSyncMerge::Hold(const SSyncRow &sent, qint64 stamp)
{
    const QVariantList place{m_strID, m_place.strMachine, sent.strKey};
    if (!m_place.bStampedAnew && !m_bAddsOnly)
        return true;
    const bool drops = !m_place.bStampedAnew || m_held.contains(sent.strKey);
    return (!drops || m_store.Execute(m_drop, place)) &&
           m_store.Execute(m_hold, place + QVariantList{sent.strContent, stamp, std::max<qint64>(sent.iTime, 1)});
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
    const bool echo =
        m_store.Execute(m_findPast, {m_strID, sent.strKey, sent.strContent, sent.iTime}) && m_findPast->next();
    m_findPast->finish();
    return echo;
}

bool CSyncMerge::Take(const SSyncRow &sent)
{
    const SRow taken{sent.strContent, sent.iTime, sent.iTime > m_iNewest ? sent.iTime : m_iNewest + 1, true};
    const auto row = m_rows.find(sent.strKey);
    const bool held = IsHeld(sent);
    if (row == m_rows.end() && held)
        return true;
    const bool own = row != m_rows.end() && IsOwn(sent, *row);
    const bool addsOnly = m_bAddsOnly && !own;
    if (!held && (row == m_rows.end() || !addsOnly || m_place.bStampedAnew) && !Hold(sent, taken.iStamp))
        return false;
    if (row == m_rows.end()) {
        m_rows.insert(sent.strKey, taken);
        return Write(sent.strKey, taken);
    }
    const bool alike = row->strContent == sent.strContent;
    row->bSent = alike;
    if (addsOnly || held || sent.iTime < row->iChanged || IsEcho(sent, *row)) {
        row->bLacked = !alike;
        return true;
    }
    if (alike)
        row->iChanged = sent.iTime; // made so again: what came in between doesn't win any more
    else if (Remember(sent.strKey, *row, taken.iStamp))
        *row = taken;
    else
        return false;
    return Write(sent.strKey, *row);
}

// The machine's newest time may now be beyond rows that it never got, since it had changes of its own. They get a
// stamp beyond it, or the machine would never ask for them. What an offer is known to have brought a new machine
// isn't sent again.
bool CSyncMerge::SendAgain()
{
    const qint64 had = m_machine.bCaughtUp ? m_machine.iBase : m_bArrived ? m_machine.iOffered : 0;
    bool good = ReadOtherRows(had, m_list.iTime);
    qint64 beyond = std::max(m_iNewest, m_list.iTime);
    for (const SRow &row : qAsConst(m_rows))
        beyond = std::max(beyond, row.iStamp);
    ++beyond;
    for (auto row = m_rows.begin(); good && row != m_rows.end(); ++row) {
        if (row->bSent || (row->iStamp <= had && !row->bLacked) || row->iStamp > m_list.iTime)
            continue;
        good = Remember(row.key(), *row, beyond);
        row->iStamp = beyond;
        good = good && Write(row.key(), *row);
    }
    return good && Forget();
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

bool CSyncMerge::Write(const QString &key, const SRow &row)
{
    return m_store.Execute(m_write, {m_strID, key, row.strContent, row.iChanged, row.iStamp});
}

bool CSyncMerge::Remember(const QString &key, const SRow &row, qint64 until)
{
    return m_store.Execute(m_remember, {m_strID, key, row.strContent, row.iStamp, until}) &&
           (row.iChanged == row.iStamp ||
            m_store.Execute(m_remember, {m_strID, key, row.strContent, row.iChanged, until}));
}
