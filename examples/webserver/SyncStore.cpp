#include "SyncStore.h"

#include "SyncMerge.h"

#include <QDateTime>
#include <QRandomGenerator>

#include <algorithm>

namespace {

constexpr int WORDS = 8; // of 32 bits, in a session
constexpr int ID_LENGTH = 32;
constexpr qint64 SESSION_SECONDS = qint64(24) * 60 * 60;

// A list is called by its user, in lower case since case tells no users apart, and by which it is. The past is what
// rows have been, until they got a later stamp. MAC_bMet is SMachine::bCaughtUp.
const QLatin1String SCHEMA[] = {
    QLatin1String("CREATE TABLE tbl_session (SES_cID TEXT PRIMARY KEY, SES_cRest TEXT, SES_cUser TEXT,\n"
                  "  SES_cMachine TEXT, SES_iExpiry INTEGER)"),
    QLatin1String("CREATE TABLE tbl_machine (MAC_cList TEXT, MAC_cMachine TEXT, MAC_iBase INTEGER,\n"
                  "  MAC_iOffered INTEGER, MAC_bMet INTEGER, PRIMARY KEY(MAC_cList, MAC_cMachine))"),
    QLatin1String("CREATE TABLE tbl_row (ROW_cList TEXT, ROW_cKey TEXT, ROW_cContent TEXT, ROW_iChanged INTEGER,\n"
                  "  ROW_iStamp INTEGER, PRIMARY KEY(ROW_cList, ROW_cKey))"),
    QLatin1String("CREATE INDEX idx_row_stamp ON tbl_row (ROW_cList, ROW_iStamp)"),
    QLatin1String("CREATE TABLE tbl_past (PST_cList TEXT, PST_cKey TEXT, PST_cContent TEXT, PST_iTime INTEGER,\n"
                  "  PST_iUntil INTEGER, PRIMARY KEY(PST_cList, PST_cKey, PST_iTime, PST_cContent))")};

// What a machine may hold of a row: what it has sent, and what it has been offered since, by how far the offer goes.
// In version 2 a row with an offer of 0 says that it may hold none yet.
const QLatin1String HELD_SCHEMA("CREATE TABLE tbl_held (HLD_cList TEXT, HLD_cMachine TEXT, HLD_cKey TEXT,\n"
                                "  HLD_cContent TEXT, HLD_iOffer INTEGER,\n"
                                "  PRIMARY KEY(HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent))");

// From version 3 on a flag says so, which halves what a new machine costs.
const QLatin1String FLAG_SCHEMA[] = {
    QLatin1String("ALTER TABLE tbl_held RENAME TO tbl_heldbefore"),
    QLatin1String("CREATE TABLE tbl_held (HLD_cList TEXT, HLD_cMachine TEXT, HLD_cKey TEXT, HLD_cContent TEXT,\n"
                  "  HLD_iOffer INTEGER, HLD_bEmpty INTEGER,\n"
                  "  PRIMARY KEY(HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent)) WITHOUT ROWID"),
    QLatin1String("INSERT INTO tbl_held SELECT HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent, HLD_iOffer,\n"
                  "  EXISTS (SELECT 1 FROM tbl_heldbefore AS empty WHERE empty.HLD_cList = held.HLD_cList\n"
                  "    AND empty.HLD_cMachine = held.HLD_cMachine AND empty.HLD_cKey = held.HLD_cKey\n"
                  "    AND empty.HLD_iOffer = 0)\n"
                  "  FROM tbl_heldbefore AS held WHERE HLD_iOffer > 0"),
    QLatin1String("DROP TABLE tbl_heldbefore")};

// From version 4 on the sessions are numbered, and what a machine has sent itself has the time with which it did.
const QLatin1String SESSION_SCHEMA[] = {
    QLatin1String("ALTER TABLE tbl_held ADD COLUMN HLD_iSent INTEGER DEFAULT 0"),
    QLatin1String("ALTER TABLE tbl_session RENAME TO tbl_sessionbefore"),
    QLatin1String("CREATE TABLE tbl_session (SES_iNumber INTEGER PRIMARY KEY AUTOINCREMENT, SES_cID TEXT UNIQUE,\n"
                  "  SES_cRest TEXT, SES_cUser TEXT, SES_cMachine TEXT, SES_iExpiry INTEGER)"),
    QLatin1String("INSERT INTO tbl_session SELECT NULL, SES_cID, SES_cRest, SES_cUser, SES_cMachine, SES_iExpiry\n"
                  "  FROM tbl_sessionbefore ORDER BY SES_iExpiry, rowid"),
    QLatin1String("DROP TABLE tbl_sessionbefore"),
    QLatin1String("ALTER TABLE tbl_machine ADD COLUMN MAC_iSession INTEGER DEFAULT 0")};

} // namespace

CSyncStore::CSyncStore(const QString &path)
    : CLocalDB(path, false, false)
{
}

bool CSyncStore::CreateDBVersion(unsigned int version)
{
    const auto exec = [this](const auto &sql) { return Exec(sql); };
    if (version == 4)
        return std::all_of(std::begin(SESSION_SCHEMA), std::end(SESSION_SCHEMA), exec);
    if (version == 3)
        return std::all_of(std::begin(FLAG_SCHEMA), std::end(FLAG_SCHEMA), exec);
    if (version == 2)
        return Exec(HELD_SCHEMA);
    return std::all_of(std::begin(SCHEMA), std::end(SCHEMA), exec);
}

bool CSyncStore::AddSession(const SOwner &owner, QString &session)
{
    session.clear();
    for (int i = 0; i < WORDS; ++i)
        session += QStringLiteral("%1").arg(QRandomGenerator::system()->generate(), 8, 16, QLatin1Char('0'));
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    TQuery query;
    return Run(query, QStringLiteral("DELETE FROM tbl_session WHERE SES_iExpiry <= ?"), {now}) &&
           Run(query, QStringLiteral("INSERT INTO tbl_session VALUES (NULL, ?, ?, ?, ?, ?)"),
               {session.left(ID_LENGTH), session.mid(ID_LENGTH), owner.strUser, owner.strMachine,
                now + SESSION_SECONDS});
}

bool CSyncStore::EndSessions(const SOwner &owner)
{
    TQuery query;
    return Run(query, QStringLiteral("DELETE FROM tbl_session WHERE SES_cUser = ? AND SES_cMachine = ?"),
               {owner.strUser, owner.strMachine});
}

bool CSyncStore::FindSession(const QString &session, SOwner &owner)
{
    TQuery query;
    const QString rest = session.mid(ID_LENGTH);
    if (!Run(query,
             QStringLiteral("SELECT SES_cUser, SES_cMachine, SES_cRest, SES_iNumber FROM tbl_session"
                            " WHERE SES_cID = ? AND SES_iExpiry > ?"),
             {session.left(ID_LENGTH), QDateTime::currentSecsSinceEpoch()}) ||
        !query->next() || (!rest.isEmpty() && rest != query->value(2).toString()))
        return false;
    owner = {query->value(0).toString(), query->value(1).toString(), query->value(3).toLongLong()};
    query->finish();
    return true;
}

bool CSyncStore::Fetch(const SOwner &owner, SyncJson::TLists &lists)
{
    return ForLists(owner, lists, true,
                    [this](const auto &place, auto &machine, auto &list) { return FetchList(place, machine, list); });
}

bool CSyncStore::Merge(const SOwner &owner, SyncJson::TLists &lists)
{
    return ForLists(owner, lists, false, [this](const auto &place, auto &machine, auto &list) {
        return CSyncMerge(*this, place, list, machine).Run();
    });
}

// Both lists or none. A machine that asks with a time that has gone back has lost its rows and is new again, unless
// the request has come late. What it sends with one has come late, and all of it has come with something later.
bool CSyncStore::ForLists(const SOwner &owner, SyncJson::TLists &lists, bool asks, const TOnList &work)
{
    bool good = Exec(QStringLiteral("BEGIN IMMEDIATE"));
    for (std::size_t i = 0; good && i < lists.size(); ++i) {
        const QString id = owner.strUser.toLower() + QLatin1Char('/') + QLatin1String(SyncJson::LISTS[i]);
        const SPlace place{id, owner.strMachine, SyncJson::STAMPED_ANEW[i]};
        SMachine machine;
        good = ReadMachine(owner, place, machine);
        const bool back = machine.bKnown && lists[i].iTime < machine.iBase;
        if (good && back && (!asks || owner.iSession < machine.iSession)) {
            lists[i] = {machine.iBase, {}};
            continue;
        }
        const qint64 session = std::max(owner.iSession, machine.iSession);
        if (back)
            machine = SMachine();
        TQuery query;
        good = good && (machine.bKnown || ForgetHeld(place)) && work(place, machine, lists[i]) &&
               Run(query, QStringLiteral("INSERT OR REPLACE INTO tbl_machine VALUES (?, ?, ?, ?, ?, ?)"),
                   {id, owner.strMachine, machine.iBase, machine.iOffered, machine.bCaughtUp, session});
    }
    for (const TQuery &query : qAsConst(m_queries))
        query->finish(); // or it would go on reading beyond the transaction
    good = good && Exec(QStringLiteral("COMMIT"));
    if (!good)
        Exec(QStringLiteral("ROLLBACK"));
    return good;
}

bool CSyncStore::ReadMachine(const SOwner &owner, const SPlace &place, SMachine &machine)
{
    TQuery query;
    const bool good = Run(query,
                          QStringLiteral("SELECT MAC_iBase, MAC_iOffered, MAC_bMet, MAC_iSession FROM tbl_machine"
                                         " WHERE MAC_cList = ? AND MAC_cMachine = ?"),
                          {place.strList, owner.strMachine});
    if (good && query->next())
        machine = {query->value(0).toLongLong(), query->value(1).toLongLong(), query->value(2).toBool(), true,
                   query->value(3).toLongLong()};
    return good;
}

// It has lost what it held.
bool CSyncStore::ForgetHeld(const SPlace &place)
{
    TQuery query;
    return Run(query, QStringLiteral("DELETE FROM tbl_held WHERE HLD_cList = ? AND HLD_cMachine = ?"),
               {place.strList, place.strMachine});
}

bool CSyncStore::FetchList(const SPlace &place, SMachine &machine, SSyncList &list)
{
    const qint64 time = list.iTime;
    if (!machine.bKnown)
        machine.iBase = time;
    else if (!place.bStampedAnew && time == machine.iOffered && (machine.bCaughtUp || machine.iBase == 0)) {
        // What was offered has arrived. Of notes the time alone doesn't tell, for a user may have changed one in that
        // second; the machine sends the newest of them back.
        machine.iBase = time;
        machine.bCaughtUp = true;
    }
    if (time != machine.iBase) {
        // It has what the server hasn't seen, be it in the same second as the base. To send it rows now would
        // overwrite that, so it sends first and gets the rest with its next request.
        list.iTime = machine.bCaughtUp ? std::max<qint64>(machine.iBase - 1, 0) : 0;
        return true;
    }
    TQuery query;
    const bool good = Run(query,
                          QStringLiteral("SELECT ROW_cKey, ROW_cContent, ROW_iStamp FROM tbl_row"
                                         " WHERE ROW_cList = ? AND ROW_iStamp > ? ORDER BY ROW_iStamp"),
                          {place.strList, machine.bCaughtUp ? time : 0});
    while (good && query->next())
        list.rows.append({query->value(0).toString(), query->value(1).toString(), query->value(2).toLongLong()});
    if (!machine.bCaughtUp && list.rows.isEmpty()) {
        machine = {0, 0, true, true}; // there is nothing to catch up with; it sends all that it has
        list.iTime = 0;
        return good;
    }
    // A new machine with rows is to send all that it has. A machine that has been offered the same before may hold it
    // already, for a setting that is alike keeps its older time there: by its own time it counts as in step.
    const qint64 offered = list.rows.isEmpty() ? time : list.rows.last().iTime;
    const bool again = offered == machine.iOffered;
    list.iTime = !machine.bCaughtUp && time > 0 ? 0 : again ? time : offered;
    if (place.bStampedAnew && list.iTime > 0 && !list.rows.isEmpty())
        list.iTime = offered - 1; // so that it sends the newest of them back, which tells that it has them
    machine.iOffered = offered;
    return good && Offer(place, machine, list);
}

// The machine may hold the rows from now on, or still what it had.
bool CSyncStore::Offer(const SPlace &place, const SMachine &machine, const SSyncList &list)
{
    if (!place.bStampedAnew || list.rows.isEmpty())
        return true;
    const qint64 oldest = list.rows.first().iTime; // all from there on are offered
    TQuery query;
    return Run(query,
               QStringLiteral("INSERT INTO tbl_held SELECT ROW_cList, ?, ROW_cKey, ROW_cContent, ?, NOT EXISTS"
                              " (SELECT 1 FROM tbl_held WHERE HLD_cList = ROW_cList AND HLD_cMachine = ?"
                              " AND HLD_cKey = ROW_cKey), 0 FROM tbl_row WHERE ROW_cList = ? AND ROW_iStamp >= ?"
                              " ON CONFLICT DO UPDATE SET HLD_iOffer = excluded.HLD_iOffer"),
               {place.strMachine, machine.iOffered, place.strMachine, place.strList, oldest});
}

// The offer has arrived, and a machine stores all rows of an answer or none. So of the keys in it the machine holds
// nothing from before.
bool CSyncStore::Confirm(const SPlace &place, qint64 offer)
{
    const QString ofMachine = QStringLiteral(" WHERE HLD_cList = ? AND HLD_cMachine = ?");
    const QString inOffer =
        QStringLiteral(" AND (HLD_iOffer = ? OR EXISTS (SELECT 1 FROM tbl_held AS other"
                       " WHERE other.HLD_cList = tbl_held.HLD_cList AND other.HLD_cMachine = tbl_held.HLD_cMachine"
                       " AND other.HLD_cKey = tbl_held.HLD_cKey AND other.HLD_iOffer = ?))");
    TQuery query;
    return Run(query,
               QStringLiteral("DELETE FROM tbl_held") + ofMachine + QStringLiteral(" AND HLD_iOffer < ?") + inOffer,
               {place.strList, place.strMachine, offer, offer, offer}) &&
           Run(query,
               QStringLiteral("UPDATE tbl_held SET HLD_bEmpty = 0") + ofMachine + QStringLiteral(" AND HLD_bEmpty") +
                   inOffer,
               {place.strList, place.strMachine, offer, offer});
}

// Each statement once, for it takes longer to prepare than to run.
CSyncStore::TQuery CSyncStore::Prepare(const QString &sql)
{
    TQuery &query = m_queries[sql];
    if (!query) {
        query = TQuery::create(GetQuery());
        query->prepare(sql);
    }
    return query;
}

bool CSyncStore::Run(TQuery &query, const QString &sql, const QVariantList &values)
{
    query = Prepare(sql);
    return Execute(query, values);
}

bool CSyncStore::Execute(const TQuery &query, const QVariantList &values)
{
    for (int i = 0; i < values.size(); ++i)
        query->bindValue(i, values.at(i));
    return query->exec();
}
