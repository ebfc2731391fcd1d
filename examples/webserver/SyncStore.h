#pragma once

#include "StoreDatabase.h"
#include "SyncJson.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QSharedPointer>
#include <QSqlQuery>
#include <QVariant>

#include <functional>
#include <memory>

/// Whose request it is, and from where.
struct SOwner
{
    QString strUser;
    QString strMachine;
    qint64 iSession = 0; ///< Later sessions have greater numbers.
};

/// What the server knows of a list on one machine.
///
/// Rows are offered to a machine when an answer to it has them. Whether the answer arrives shows only later, by what
/// the machine asks for or sends next, or never.
///
/// A machine is new until it is known to have had the rows that were here before it. It is so again once its time has
/// gone back, for then it has lost its rows. In a request of an earlier session it hasn't: the request has come late.
struct SMachine
{
    /// The newest time that the machine is known to have had, with all of its rows here by then, and all from here
    /// there. While it is new only the first is so.
    qint64 iBase = 0;
    qint64 iOffered = 0;    ///< How far the last offer brings it.
    bool bCaughtUp = false; ///< It isn't new any more.
    bool bKnown = false;    ///< There is anything about it at all.
    qint64 iSession = 0;    ///< The latest by which it has asked or sent.
};

/// Keeps what is in step, and by which session whose machine speaks. All rows have two times: that of the user's
/// change, by which the later change wins, and a stamp, with which the row is sent and which lies beyond whatever a
/// machine may have had before, so that each machine's newest time tells which rows it lacks.
///
/// Any number of servers may have the same database, if it is one that they can share: each operation on a user's
/// rows sees all of those before it, in whatever server.
///
/// Every operation is false if the database fails it; nothing of it is stored then, but for a commit whose answer was
/// lost. What has failed by chance, or because the connection was lost, is tried again before. For the thread that
/// calls Init().
class CSyncStore
{
public:
    explicit CSyncStore(std::unique_ptr<CStoreDatabase> database);
    ~CSyncStore();
    Q_DISABLE_COPY_MOVE(CSyncStore)

    bool Init() { return m_pDatabase->Init(); }
    /// Why Init() has failed.
    QString GetError() const { return m_pDatabase->GetError(); }
    /// A query on the database, which has to be open.
    QSqlQuery GetQuery() { return m_pDatabase->GetQuery(); }
    /// Whether the database can be asked just now.
    bool IsReady();
    /// Whether the last operation was false because the database failed it, or couldn't be reached.
    bool HasFailed() const { return m_error.isValid(); }
    void ResetFailure() { m_error = QSqlError(); }
    /// How often an operation had to wait for another one of its user, or to be tried again after others.
    quint64 GetConflicts() const { return m_uiConflicts; }

    /// \a session gets a new one, which is good for ten minutes: a client gets one for each request.
    bool AddSession(const SOwner &owner, QString &session);
    /// Ends all sessions of the user on this machine, or on all if it has no name.
    bool EndSessions(const SOwner &owner);
    /// \a session may be its first half alone. False also if there is none, or it has expired.
    bool FindSession(const QString &session, SOwner &owner);

    /// From the newest times of a machine to what it lacks, and how far it is to take the server to be: whatever it
    /// has from there on it sends next.
    bool Fetch(const SOwner &owner, SyncJson::TLists &lists);
    /// Takes in what a machine sends. \a lists keeps nothing but the times.
    bool Merge(const SOwner &owner, SyncJson::TLists &lists);

private:
    friend class CSyncMerge;

    /// A list of rows, on one machine.
    struct SPlace
    {
        QString strList;
        QString strMachine;
        bool bStampedAnew; // by clients, whenever they load the rows
    };
    using TQuery = QSharedPointer<QSqlQuery>;
    using TOnList = std::function<bool(const SPlace &place, SMachine &machine, SSyncList &list)>;

    bool ForLists(const SOwner &owner, SyncJson::TLists &lists, bool asks, const TOnList &work);
    bool ForList(const SOwner &owner, const SPlace &place, SSyncList &list, bool asks, const TOnList &work);
    bool Transact(const QString &user, const std::function<bool()> &work);
    bool IsOpen();
    bool IsWorthRepeating(int tries);
    bool ReadMachine(const SOwner &owner, const SPlace &place, SMachine &machine);
    bool ForgetHeld(const SPlace &place);
    bool FetchList(const SPlace &place, SMachine &machine, SSyncList &list);
    bool Offer(const SPlace &place, const SMachine &machine, const SSyncList &list);
    bool Confirm(const SPlace &place, qint64 offer);
    TQuery Prepare(const QString &sql);
    bool Run(TQuery &query, const QString &sql, const QVariantList &values);
    bool Execute(const TQuery &query, const QVariantList &values);
    void NoteFailure(const TQuery &query);

    QHash<QString, TQuery> m_queries; ///< Prepared, by their SQL. They end after the database, which they'd speak to.
    const std::unique_ptr<CStoreDatabase> m_pDatabase;
    QDeadlineTimer m_sweep; ///< Until the sessions are looked through for those that have ended.
    QSqlError m_error;      ///< The first one of the operation.
    quint64 m_uiConflicts = 0;
    bool m_bTransaction = false;
};
