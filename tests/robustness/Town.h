#pragma once

#include "Ground.h"
#include "Ledger.h"
#include "UserRows.h"

#include <QMap>
#include <QSqlQuery>
#include <QUrl>
#include <QUrlQuery>

#include <csignal>
#include <limits>
#include <utility>

/// What a user does, or what happens to a machine.
struct SStep
{
    int machine = 0;
    QString strWhat;
    QString strName;
    QString strValue;
    qint64 iWait = 0; ///< After it.
};

/// Some machines of some users and the operator's web server, in one time that goes on from step to step.
class CTown
{
public:
    /// Of a machine's next request.
    enum EFate {
        Answered, ///< When the time has come. Before, the server doesn't know of it.
        Slow,     ///< The server takes it at once, and answers when the time has come.
        Twice,    ///< Both; the second answer arrives.
        Cut,      ///< The server takes it, and the answer breaks off.
        Lost,     ///< The server takes it, and no answer comes.
        Refused,
        FATES
    };

    CTown(CGround &ground, int machines, int users)
        : m_ground(ground)
        , m_iUsers(users)
        , m_machines(machines)
    {
        ++m_ground.iTowns;
        for (int user = 0; user < users; ++user) {
            for (const QString &row : GetRows())
                m_rows.append(GetUserName(user) + u' ' + row);
        }
        for (SMachine &at : m_machines) {
            at.number = int(&at - m_machines.data());
            at.strFolder = ground.dir.filePath("%1/%2"_s.arg(ground.iTowns).arg(at.number));
            QDir().mkpath(at.strFolder + "/Client"_s);
            QDir().mkpath(at.strFolder + "/Tmp"_s);
            Begin(at);
        }
    }
    ~CTown()
    {
        for (const SMachine &at : m_machines) {
            Unlock(at);
            ::kill(at.iProcess, SIGKILL);
            close(at.iSocket);
        }
        QDir(m_ground.dir.filePath(QString::number(m_ground.iTowns))).removeRecursively();
    }
    Q_DISABLE_COPY_MOVE(CTown)

    const QString &GetFault() const { return m_ledger.GetFault(); }

    void Do(const SStep &step)
    {
        SMachine &at = m_machines[size_t(step.machine)];
        const QString &what = step.strWhat;
        if (what == "fate"_s) {
            at.eFate = EFate(step.strName.toInt());
            at.iDelay = step.strValue.toInt();
        } else if (what == "lock"_s) {
            Lock(at, step.strName);
        } else if (what == "full"_s) {
            SetFull(at, true);
        } else if (what == "free"_s) {
            Free(at);
        } else if (what == "kill"_s) {
            Kill(at);
        } else if (what == "login"_s) {
            LogIn(at, GetUserName(step.strName.toInt()));
        } else if (what == "jump"_s) {
            Command(at, "jump "_s + step.strValue, at.strUser);
        } else if (at.strUser.isEmpty() == (what == "ghost"_s)) {
            DoOfUser(at, step);
        }
        Advance(step.iWait);
    }

    /// All exchange until nothing moves, and then hold the same.
    void Settle()
    {
        qint64 free = m_iNow;
        for (SMachine &at : m_machines) {
            at.eFate = Answered;
            at.iDelay = 0;
            Free(at);
            free = qMax(free, at.iHindered);
        }
        Advance(free - m_iNow);
        QString before;
        for (int round = 0; GetFault().isEmpty(); ++round) {
            Exchange();
            bool same = true;
            const QString now = Compare(same);
            if (now == before && same)
                break;
            if (round == MOST_ROUNDS)
                m_ledger.Fail("nothing comes to rest:\n"_s + now);
            before = now;
        }
        const QMap<QString, QString> served = GetServed();
        for (auto row = served.cbegin(); GetFault().isEmpty() && row != served.cend(); ++row)
            m_ledger.End(row.key(), *row);
    }

private:
    static constexpr qint64 NEVER = std::numeric_limits<qint64>::max();
    static constexpr qint64 USUAL_MS = 30; // of an answer
    static constexpr int MOST_ROUNDS = 8;
    static constexpr qint64 ROUND_MS = 25000;    // for a request, what it leads to, and the request after that
    static constexpr qint64 RETRIES_MS = 40000;  // in which a file that can be used again is tried
    static constexpr qint64 SETTING_MS = 1500;   // for which a change of a setting waits at most, and a bit
    static constexpr qint64 UNWRITTEN_MS = 4000; // and any other
    static constexpr qint64 APART_MS = 2000;     // rows have their times in whole seconds

    struct SRequest
    {
        SHttp http;
        SOwner owner;
        EFate eFate = Answered;
        qint64 iBegin = 0;
        bool bAtOnce = false; // the server takes it
        qint64 iRelease = 0;
        SyncJson::TLists lists; // of the answer
        bool bTaken = false;    // by a server, which has it
    };
    struct SMachine
    {
        int number = 0;
        QString strFolder;
        int iSocket = -1;
        int iProcess = 0;
        qint64 iNow = 0;
        qint64 iNext = -1;
        QMap<QString, SRequest> requests; // under way
        QString strUser;
        qint64 iLogin = 0;    // when
        qint64 iAnswered = 0; // when the latest of its answered requests began
        EFate eFate = Answered;
        qint64 iDelay = 0;
        qint64 iHindered = -1;         // until when something may wait for its file
        QHash<QString, qint64> chosen; // when its user last changed the row
        QJsonObject seen;              // what its user sees, by row without the user
        QJsonObject stored;            // what its files hold, by user and row
    };
    // What comes next: the request's, or else the machine's own.
    struct SEvent
    {
        qint64 iWhen = NEVER;
        SMachine *pMachine = nullptr;
        QString strRequest;
    };

    QString GetUserName(int user) const { return "t%1u%2"_s.arg(m_ground.iTowns).arg(user); }

    // What a row is that isn't there.
    static QString GetNothing(const QString &row) { return row.contains(" p/"_s) ? ToContent({}, 0, 0) : QString(); }

    // A row's name without the user, and its content.
    static QPair<QString, QString> ToRow(const QString &key, const QString &content)
    {
        const QJsonObject name = QJsonDocument::fromJson(key.toUtf8()).object();
        const QJsonObject value = QJsonDocument::fromJson(content.toUtf8()).object();
        if (name.contains("key"_s))
            return {"s/"_s + name.value("key"_s).toString(), value.value("value"_s).toString()};
        return {"p/"_s + name.value("nick"_s).toString(),
                ToContent(value.value("note"_s).toString(), value.value("tag"_s).toInt(),
                          value.value("flags"_s).toInt())};
    }

    void Begin(SMachine &at)
    {
        at.iSocket = m_ground.Begin(at.strFolder + "/Client"_s, "m%1"_s.arg(at.number), at.iProcess);
        at.strUser.clear();
        Tell(at, QString());
    }

    // Tells the machine what to do, and the ledger what it holds after it. Without a command it's new.
    void Tell(SMachine &at, const QString &command, const QString &row = QString())
    {
        if (m_ground.bTells && !command.startsWith("run "_s))
            qInfo("%lld: machine %d: %s", m_iNow, at.number, qPrintable(command));
        const QByteArray line = QByteArray::number(m_iNow) + ' ' + command.toUtf8();
        const QJsonObject answer = CGround::Ask(at.iSocket, command.isEmpty() ? QByteArray() : line);
        at.iNow = answer.value("now"_s).toInt();
        at.iNext = answer.value("next"_s).toInt(-1);
        if (answer.isEmpty())
            m_ledger.Fail("machine %1 has ended by itself at %2"_s.arg(at.number).arg(command));
        Follow(at, answer.value("requests"_s).toVariant().toStringList());
        if (command.startsWith("run "_s))
            return;
        if (!row.isEmpty())
            m_ledger.Choose(at.number, row, answer.value("before"_s).toString(), answer.value("after"_s).toString(),
                            m_iNow);
        Look(at, answer, command.isEmpty());
    }

    // Requests that have ended go, and new ones are waited for.
    void Follow(SMachine &at, const QStringList &underWay)
    {
        const QStringList known = at.requests.keys();
        for (const QString &id : known) {
            if (!underWay.contains(id))
                at.requests.remove(id);
        }
        for (const QString &id : underWay) {
            while (!at.requests.contains(id)) {
                const SHttp http = m_ground.Receive();
                if (!http.pSocket)
                    return m_ledger.Fail("no request %1"_s.arg(id));
                const QString session = QUrl(QString::fromUtf8(http.target)).path().mid(1);
                const EFate fate = std::exchange(at.eFate, Answered);
                const qint64 usual = at.iNow + USUAL_MS + std::exchange(at.iDelay, 0);
                at.requests.insert(session, {http,
                                             {session.section(u'.', 1, 1), session.section(u'.', 0, 0),
                                              session.section(u'.', 2).toLongLong()},
                                             fate,
                                             at.iNow,
                                             fate != Answered && fate != Refused,
                                             fate == Lost ? NEVER : usual,
                                             {},
                                             false});
            }
        }
    }

    void Look(SMachine &at, const QJsonObject &data, bool killed)
    {
        if (data.contains("fault"_s))
            m_ledger.Fail("machine %1: %2"_s.arg(at.number).arg(data.value("fault"_s).toString()));
        if (data.value("user"_s).toString() != at.strUser)
            m_ledger.Fail("machine %1 is not of %2"_s.arg(at.number).arg(at.strUser));
        at.stored = data.value("stored"_s).toObject();
        for (auto row = at.stored.constBegin(); row != at.stored.constEnd(); ++row)
            m_ledger.Store(at.number, row.key(), row->toString());
        for (const QString &row : killed ? m_rows : QStringList()) {
            const qint64 delay = row.contains(" s/"_s) ? SETTING_MS : UNWRITTEN_MS;
            const bool due = at.iHindered < m_iNow && m_iNow - m_changed.value(row).second >= delay;
            m_ledger.Kill(at.number, row, at.stored.value(row).toString(GetNothing(row)), due);
        }
        at.seen = data.value("seen"_s).toObject();
        for (auto row = at.seen.constBegin(); !at.strUser.isEmpty() && row != at.seen.constEnd(); ++row) {
            const QString name = at.strUser + u' ' + row.key();
            if (row.key().startsWith(u'p') || at.stored.contains(name)) // or it's what the last user has left
                m_ledger.See(at.number, name, row->toString());
        }
    }

    SEvent GetNext()
    {
        SEvent next;
        for (SMachine &at : m_machines) {
            for (auto request = at.requests.cbegin(); request != at.requests.cend(); ++request) {
                const qint64 due = request->bAtOnce ? request->iBegin : qMax(request->iRelease, at.iNow);
                if (due < next.iWhen)
                    next = {due, &at, request.key()};
            }
        }
        for (SMachine &at : m_machines) {
            if (at.iNext >= 0 && qMax(at.iNext, at.iNow) < next.iWhen)
                next = {qMax(at.iNext, at.iNow), &at, QString()};
        }
        return next;
    }

    void Advance(qint64 ms)
    {
        const qint64 end = m_iNow + ms;
        for (SEvent next = GetNext(); GetFault().isEmpty() && next.iWhen <= end; next = GetNext()) {
            m_iNow = qMax(m_iNow, next.iWhen);
            if (next.strRequest.isEmpty())
                Run(*next.pMachine, end);
            else if (next.pMachine->requests[next.strRequest].bAtOnce)
                Serve(next.pMachine->requests[next.strRequest]);
            else
                Release(*next.pMachine, next.strRequest);
        }
        m_iNow = end;
    }

    // What its timers do, up to its next request or answer. Nobody but the server hears of it.
    void Run(SMachine &at, qint64 end)
    {
        for (const SRequest &request : qAsConst(at.requests))
            end = qMin(end, request.iRelease - 1);
        Tell(at, "run %1"_s.arg(end));
    }

    // At the machine's own time.
    void Command(SMachine &at, const QString &command, const QString &userAfter)
    {
        Advance(qMax<qint64>(0, at.iNow - m_iNow));
        at.strUser = userAfter;
        Tell(at, command);
    }

    void LogIn(SMachine &at, const QString &user)
    {
        if (!at.strUser.isEmpty() && at.strUser != user)
            Command(at, "logout"_s, QString());
        Command(at, "login "_s + user, user);
        at.iLogin = m_iNow;
        // Who has no row of a setting is given that of whoever was there last.
        for (const QString &key : SETTINGS) {
            const QString row = user + " s/"_s + key;
            if (!at.stored.contains(row))
                m_ledger.Give(at.number, row, at.seen.value("s/"_s + key).toString(), m_iNow);
        }
    }

    // A change, or another command of whoever is logged in, or, with a ghost, of nobody.
    void DoOfUser(SMachine &at, const SStep &step)
    {
        const QString &what = step.strWhat;
        if (what == "logout"_s || what == "reset"_s || what == "end"_s)
            return Command(at, what, QString());
        if (what == "sync"_s || what == "ghost"_s)
            return Command(at, what + u' ' + step.strValue, at.strUser);
        const QString row = at.strUser + (what == "set"_s ? " s/"_s : " p/"_s) + step.strName;
        Advance(qMax<qint64>(0, at.iNow - m_iNow));
        const auto last = m_changed.value(row, {at.number, 0});
        if (last.first != at.number && m_iNow - last.second < APART_MS)
            Advance(APART_MS);
        if (what != "rate"_s || m_iNow - at.chosen.value(row, -UNWRITTEN_MS) < UNWRITTEN_MS)
            at.chosen.insert(row, m_iNow); // a rating puts off the writing of what isn't written yet
        m_changed.insert(row, {at.number, m_iNow});
        Tell(at, what + u' ' + step.strName + u' ' + step.strValue, row);
    }

    void Kill(SMachine &at)
    {
        ::kill(at.iProcess, SIGKILL);
        char rest[1024];
        while (recv(at.iSocket, rest, sizeof rest, 0) > 0) {
        }
        close(at.iSocket);
        at.requests.clear();
        Begin(at);
    }

    static QString GetLock(const SMachine &at, const QString &file) { return "%1 %2"_s.arg(at.number).arg(file); }

    void Lock(SMachine &at, const QString &file)
    {
        if (QSqlDatabase::contains(GetLock(at, file)))
            return;
        at.iHindered = NEVER;
        QSqlDatabase lock = QSqlDatabase::addDatabase("QSQLITE"_s, GetLock(at, file));
        lock.setDatabaseName(at.strFolder + "/Tmp/"_s + file + ".sqlite"_s);
        if (!lock.open() || lock.exec("BEGIN IMMEDIATE"_s).lastError().isValid())
            m_ledger.Fail("can't lock the %1 of machine %2"_s.arg(file).arg(at.number));
    }

    static void Unlock(const SMachine &at)
    {
        for (const QString &file : {"playerinfo"_s, "settings"_s})
            QSqlDatabase::removeDatabase(GetLock(at, file));
    }

    void SetFull(SMachine &at, bool full)
    {
        at.iHindered = full ? NEVER : m_iNow + RETRIES_MS;
        Command(at, full ? "full on"_s : "full off"_s, at.strUser);
    }

    // The end of locks and of a full disk.
    void Free(SMachine &at)
    {
        if (at.iHindered != NEVER)
            return;
        Unlock(at);
        SetFull(at, false);
    }

    // With another one of the user under way, if there is one and a second server.
    void Serve(SRequest &request)
    {
        SRequest *other = m_ground.servers.AreTwo() ? FindOther(request) : nullptr;
        const auto work = Take(request);
        const bool good = other ? m_ground.servers.Do(work, Take(*other)) : m_ground.servers.Do(work);
        TellTaken(request);
        if (other)
            TellTaken(*other);
        if (!good)
            m_ledger.Fail("a server refuses %1"_s.arg(QString::fromUtf8(request.http.target)));
    }

    void TellTaken(const SRequest &request) const
    {
        const QByteArray &body = request.http.body;
        if (m_ground.bTells)
            qInfo("%lld: %s%s -> %s", m_iNow, request.http.target.constData(),
                  body.mid(body.indexOf("&json=")).constData(), SyncJson::WriteLists(request.lists).constData());
    }

    // That a server may take now.
    SRequest *FindOther(const SRequest &request)
    {
        for (SMachine &at : m_machines) {
            for (SRequest &other : at.requests) {
                if (&other != &request && other.owner.strUser == request.owner.strUser && other.iBegin <= m_iNow &&
                    (other.bAtOnce || (other.eFate == Answered && !other.bTaken)))
                    return &other;
            }
        }
        return nullptr;
    }

    // What a server does with it.
    CServers::TWork Take(SRequest &request)
    {
        request.bAtOnce = false;
        request.bTaken = true;
        request.lists = {};
        const SHttp &http = request.http;
        const auto json = http.body.indexOf("&json=");
        SyncJson::TLists &lists = request.lists;
        bool good = true;
        if (json < 0) {
            const QUrlQuery query(QUrl(QString::fromUtf8(http.target)));
            for (std::size_t i = 0; i < lists.size(); ++i)
                good &= SyncJson::ReadTime(query.queryItemValue(QLatin1String(SyncJson::LISTS[i])), lists[i].iTime);
        } else {
            good = SyncJson::ReadLists(http.body.mid(json + 6), lists);
            Keep(request.owner, lists);
        }
        return [&request, good, json](CSyncStore &store) {
            return good &&
                   (json < 0 ? store.Fetch(request.owner, request.lists) : store.Merge(request.owner, request.lists));
        };
    }

    // What a machine has sent won't die with it.
    void Keep(const SOwner &owner, const SyncJson::TLists &lists)
    {
        for (const SSyncList &list : lists) {
            for (const SSyncRow &sent : list.rows) {
                const auto row = ToRow(sent.strKey, sent.strContent);
                if (row.first.startsWith(u'p') || SETTINGS.contains(row.first.mid(2)))
                    m_ledger.Keep(owner.strMachine.mid(1).toInt(), owner.strUser + u' ' + row.first, row.second);
            }
        }
    }

    void Release(SMachine &at, const QString &id)
    {
        SRequest request = at.requests.take(id);
        if ((request.eFate == Answered && !request.bTaken) || request.eFate == Twice)
            Serve(request);
        const QByteArray body = request.eFate == Refused ? "no" : SyncJson::WriteLists(request.lists);
        QTcpSocket &socket = *request.http.pSocket;
        socket.write("HTTP/1.0 " + QByteArray(request.eFate == Refused ? "500" : "200") +
                     " x\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
                     body.left(request.eFate == Cut ? body.size() / 2 : body.size()));
        while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(1000)) {
        }
        socket.disconnectFromHost();
        Tell(at, "await "_s + id);
        if (request.eFate != Refused && request.eFate != Cut && request.http.body.isEmpty())
            CheckTaken(at, request);
    }

    // What an answer brings is in effect, but for what the user has changed since, or just before.
    void CheckTaken(SMachine &at, const SRequest &request)
    {
        const qint64 former = std::exchange(at.iAnswered, qMax(at.iAnswered, request.iBegin));
        if (at.strUser != request.owner.strUser || qMax(at.iLogin, at.iHindered) >= request.iBegin ||
            former > request.iBegin)
            return; // it belongs to a login that has ended, or the answer to a later request came before
        for (const SSyncList &list : request.lists) {
            for (const SSyncRow &sent : list.rows) {
                const auto row = ToRow(sent.strKey, sent.strContent);
                const qint64 chosen = at.chosen.value(at.strUser + u' ' + row.first, -UNWRITTEN_MS);
                const QString seen = at.seen.value(row.first).toString(row.second);
                if (request.iBegin - chosen >= UNWRITTEN_MS && seen != row.second)
                    m_ledger.Fail("machine %1 hasn't taken %2 = %3, but has %4"_s.arg(at.number).arg(
                        row.first, row.second, seen));
            }
        }
    }

    // Each user is on all machines for a while.
    void Exchange()
    {
        for (int user = 0; user < m_iUsers; ++user) {
            for (SMachine &at : m_machines) {
                if (!at.strUser.isEmpty())
                    Command(at, "logout"_s, QString());
                LogIn(at, GetUserName(user));
            }
            Advance(ROUND_MS);
        }
        for (SMachine &at : m_machines)
            Tell(at, "look"_s);
    }

    // All rows as the server has them.
    QMap<QString, QString> GetServed()
    {
        QMap<QString, QString> rows;
        for (const QString &row : m_rows)
            rows.insert(row, GetNothing(row));
        QSqlQuery query = m_ground.servers.GetQuery();
        query.exec("SELECT ROW_cList, ROW_cKey, ROW_cContent FROM tbl_row"
                   " WHERE ROW_cList > 't%1u' AND ROW_cList < 't%1v'"_s.arg(m_ground.iTowns));
        while (query.next()) {
            const auto row = ToRow(query.value(1).toString(), query.value(2).toString());
            const QString name = query.value(0).toString().section(u'/', 0, 0) + u' ' + row.first;
            if (rows.contains(name)) // it isn't another setting
                rows.insert(name, row.second);
        }
        return rows;
    }

    // All rows as the server has them, and where somebody has another.
    QString Compare(bool &same)
    {
        QString all;
        const QMap<QString, QString> served = GetServed();
        for (auto row = served.cbegin(); row != served.cend(); ++row) {
            all += row.key() + u'=' + *row;
            for (const SMachine &at : m_machines) {
                const QString own = at.stored.value(row.key()).toString(GetNothing(row.key()));
                if (own == *row)
                    continue;
                same = false;
                all += ", on %1 %2"_s.arg(at.number).arg(own);
            }
            all += u'\n';
        }
        return all;
    }

    CGround &m_ground;
    CLedger m_ledger;
    const int m_iUsers;
    std::vector<SMachine> m_machines;
    QStringList m_rows;                           // of all users
    qint64 m_iNow = 1000;                         // milliseconds
    QHash<QString, QPair<int, qint64>> m_changed; // machine and time of each row's last change
};
