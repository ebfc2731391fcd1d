#include "SyncStore.h"

#include "SyncMerge.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr int WORDS = 8; // of 32 bits, in a session
constexpr int ID_LENGTH = 32;
constexpr qint64 SESSION_SECONDS = 600;
constexpr qint64 SWEEP_MS = 10000; // between deletions of those that have ended
constexpr int MOST_TRIES = 4;
const QSqlError CLOSED(QString(), QStringLiteral("the connection is closed"), QSqlError::ConnectionError);

} // namespace

CSyncStore::CSyncStore(std::unique_ptr<CStoreDatabase> database)
    : m_pDatabase(std::move(database))
{
}

CSyncStore::~CSyncStore() = default;

bool CSyncStore::IsReady()
{
    TQuery query;
    const bool good = Run(query, QStringLiteral("SELECT COUNT(*) FROM tbl_dbinfo"), {});
    if (good)
        query->finish();
    return good;
}

bool CSyncStore::AddSession(const SOwner &owner, QString &session)
{
    session.clear();
    for (int i = 0; i < WORDS; ++i)
        session += QStringLiteral("%1").arg(QRandomGenerator::system()->generate(), 8, 16, QLatin1Char('0'));
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    TQuery query;
    if (m_sweep.hasExpired()) {
        m_sweep.setRemainingTime(SWEEP_MS);
        Run(query, QStringLiteral("DELETE FROM tbl_session WHERE SES_iExpiry <= ?"), {now});
    }
    return Run(query,
               QStringLiteral("INSERT INTO tbl_session (SES_cID, SES_cRest, SES_cUser, SES_cMachine, SES_iExpiry)"
                              " VALUES (?, ?, ?, ?, ?)"),
               {session.left(ID_LENGTH), session.mid(ID_LENGTH), owner.strUser.toLower(), owner.strMachine,
                now + SESSION_SECONDS});
}

bool CSyncStore::EndSessions(const SOwner &owner)
{
    TQuery query;
    const QString user = owner.strUser.toLower();
    if (owner.strMachine.isEmpty())
        return Run(query, QStringLiteral("DELETE FROM tbl_session WHERE SES_cUser = ?"), {user});
    return Run(query, QStringLiteral("DELETE FROM tbl_session WHERE SES_cUser = ? AND SES_cMachine = ?"),
               {user, owner.strMachine});
}

bool CSyncStore::FindSession(const QString &session, SOwner &owner)
{
    // Not all databases take any text.
    static const QRegularExpression form(QStringLiteral("\\A(?:[0-9a-f]{32}){1,2}\\z"));
    TQuery query;
    if (!form.match(session).hasMatch() ||
        !Run(query,
             QStringLiteral("SELECT SES_cUser, SES_cMachine, SES_cRest, SES_iNumber FROM tbl_session"
                            " WHERE SES_cID = ? AND SES_iExpiry > ?"),
             {session.left(ID_LENGTH), QDateTime::currentSecsSinceEpoch()}))
        return false;
    const QString rest = session.mid(ID_LENGTH);
    const bool found = query->next() && (rest.isEmpty() || rest == query->value(2).toString());
    if (found)
        owner = {query->value(0).toString(), query->value(1).toString(), query->value(3).toLongLong()};
    query->finish();
    return found;
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

// Both lists or none.
bool CSyncStore::ForLists(const SOwner &owner, SyncJson::TLists &lists, bool asks, const TOnList &work)
{
    const QString user = owner.strUser.toLower();
    const SyncJson::TLists asked = lists;
    return Transact(user, [&] {
        lists = asked;
        bool good = true;
        for (std::size_t i = 0; good && i < lists.size(); ++i) {
            const QString id = user + QLatin1Char('/') + QLatin1String(SyncJson::LISTS[i]);
            good = ForList(owner, {id, owner.strMachine, SyncJson::STAMPED_ANEW[i]}, lists[i], asks, work);
        }
        return good;
    });
}

// A machine that asks with a time that has gone back has lost its rows and is new again, unless the request has come
// late. What it sends with one has come late, and all of it has come with something later.
bool CSyncStore::ForList(const SOwner &owner, const SPlace &place, SSyncList &list, bool asks, const TOnList &work)
{
    SMachine machine;
    if (!ReadMachine(owner, place, machine))
        return false;
    const bool back = machine.bKnown && list.iTime < machine.iBase;
    if (back && (!asks || owner.iSession < machine.iSession)) {
        list = {machine.iBase, {}};
        return true;
    }
    const qint64 session = std::max(owner.iSession, machine.iSession);
    if (back)
        machine = SMachine();
    TQuery query;
    return (machine.bKnown || ForgetHeld(place)) && work(place, machine, list) &&
           Run(query,
               QStringLiteral("INSERT INTO tbl_machine VALUES (?, ?, ?, ?, ?, ?)"
                              " ON CONFLICT (MAC_cList, MAC_cMachine) DO UPDATE SET MAC_iBase = excluded.MAC_iBase,"
                              " MAC_iOffered = excluded.MAC_iOffered, MAC_bMet = excluded.MAC_bMet,"
                              " MAC_iSession = excluded.MAC_iSession"),
               {place.strList, owner.strMachine, machine.iBase, machine.iOffered, int(machine.bCaughtUp), session});
}

// Whatever fails for no fault of the work is tried again, for requests may come twice anyway: so a commit whose
// answer has been lost does no harm.
bool CSyncStore::Transact(const QString &user, const std::function<bool()> &work)
{
    for (int tries = 1;; ++tries) {
        bool waited = false;
        bool good = IsOpen() && m_pDatabase->Begin(user, waited, m_error);
        m_uiConflicts += waited ? 1 : 0;
        if (good) {
            m_bTransaction = true;
            good = work() && !m_error.isValid();
            for (const TQuery &query : qAsConst(m_queries))
                query->finish(); // or it would go on reading beyond the transaction
            m_bTransaction = false;
            QSqlError error;
            const bool ended = m_pDatabase->End(good, error);
            if (good && !ended)
                m_error = error.isValid() ? error : CLOSED;
            good = ended;
        }
        if (good || !IsWorthRepeating(tries))
            return good;
    }
}

// For a new operation, which has no error yet.
bool CSyncStore::IsOpen()
{
    const bool open = m_pDatabase->IsOpen();
    m_error = open ? QSqlError() : CLOSED;
    return open;
}

// Whether what has failed with the last error may succeed now.
bool CSyncStore::IsWorthRepeating(int tries)
{
    const auto failure = m_error.isValid() ? m_pDatabase->GetFailure(m_error) : CStoreDatabase::EFailure::Final;
    if (tries == MOST_TRIES || failure == CStoreDatabase::EFailure::Final)
        return false;
    if (failure == CStoreDatabase::EFailure::Repeat) {
        ++m_uiConflicts;
        return true;
    }
    const bool open = m_pDatabase->Reopen();
    m_queries.clear();
    return open;
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
               QStringLiteral("INSERT INTO tbl_held SELECT ROW_cList, ?, ROW_cKey, ROW_cContent, CAST(? AS BIGINT),"
                              " CASE WHEN EXISTS (SELECT 1 FROM tbl_held WHERE HLD_cList = ROW_cList"
                              " AND HLD_cMachine = ? AND HLD_cKey = ROW_cKey) THEN 0 ELSE 1 END, 0"
                              " FROM tbl_row WHERE ROW_cList = ? AND ROW_iStamp >= ?"
                              " ON CONFLICT (HLD_cList, HLD_cMachine, HLD_cKey, %digest(HLD_cContent))"
                              " DO UPDATE SET HLD_iOffer = excluded.HLD_iOffer"),
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
               QStringLiteral("UPDATE tbl_held SET HLD_bEmpty = 0") + ofMachine +
                   QStringLiteral(" AND HLD_bEmpty = 1") + inOffer,
               {place.strList, place.strMachine, offer, offer});
}

// Each statement once, for it takes longer to prepare than to run. One that can't be prepared fails when it is run.
CSyncStore::TQuery CSyncStore::Prepare(const QString &sql)
{
    TQuery query = m_queries.value(sql);
    if (query)
        return query;
    query = TQuery::create(m_pDatabase->GetQuery());
    if (query->prepare(m_pDatabase->Adapt(sql)))
        m_queries.insert(sql, query);
    else
        NoteFailure(query);
    return query;
}

bool CSyncStore::Run(TQuery &query, const QString &sql, const QVariantList &values)
{
    if (m_bTransaction) {
        query = Prepare(sql);
        return Execute(query, values);
    }
    for (int tries = 1;; ++tries) {
        if (IsOpen()) {
            query = Prepare(sql);
            if (Execute(query, values))
                return true;
            query.reset();
        }
        if (!IsWorthRepeating(tries))
            return false;
    }
}

bool CSyncStore::Execute(const TQuery &query, const QVariantList &values)
{
    for (int i = 0; i < values.size(); ++i)
        query->bindValue(i, values.at(i));
    const bool good = !m_error.isValid() && query->exec();
    if (!good)
        NoteFailure(query);
    return good;
}

// The first one tells why; those that follow in the transaction only that it is no good any more.
void CSyncStore::NoteFailure(const TQuery &query)
{
    if (!m_error.isValid())
        m_error = query->lastError().isValid() ? query->lastError() : CLOSED;
}
