#include "Town.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QSqlQuery>
#include <QTimer>
#include <QUrl>
#include <QUrlQuery>

#include <csignal>
#include <cstring>
#include <limits>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr qint64 NEVER = std::numeric_limits<qint64>::max();
constexpr qint64 USUAL_MS = 30; // of an answer
constexpr int ARRIVAL_MS = 10000;
constexpr int MOST_ROUNDS = 8;
constexpr qint64 ROUND_MS = 25000;    // for a request, what it leads to, and the request after that
constexpr qint64 RETRIES_MS = 40000;  // in which a file that can be used again is tried
constexpr qint64 UNWRITTEN_MS = 4000; // for which a change waits at most, and a bit
constexpr qint64 APART_MS = 2000;     // rows have their times in whole seconds

QByteArray ToAnswer(int status, const QByteArray &body, int missing = 0)
{
    return "HTTP/1.0 " + QByteArray::number(status) +
           " x\r\nContent-Length: " + QByteArray::number(body.size() + missing) + "\r\n\r\n" + body;
}

// A row's name without the user, and its content.
QPair<QString, QString> ToRow(const QString &key, const QString &content)
{
    const QJsonObject name = QJsonDocument::fromJson(key.toUtf8()).object();
    const QJsonObject value = QJsonDocument::fromJson(content.toUtf8()).object();
    if (name.contains("key"_s))
        return {"s/"_s + name.value("key"_s).toString(), value.value("value"_s).toString()};
    return {"p/"_s + name.value("nick"_s).toString(), "%1|%2|%3"_s.arg(value.value("note"_s).toString())
                                                          .arg(value.value("tag"_s).toInt())
                                                          .arg(value.value("flags"_s).toInt())};
}

// What a row is that isn't there.
QString GetNothing(const QString &row)
{
    return row.contains(" p/"_s) ? "|0|0"_s : QString();
}

} // namespace

CGround::CGround()
    : dir(QDir("/dev/shm"_s).exists() ? "/dev/shm/town-XXXXXX"_s : QDir::tempPath() + "/town-XXXXXX"_s)
{
    sockaddr_un here{};
    here.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(dir.filePath("socket"_s));
    std::strncpy(here.sun_path, path.constData(), sizeof here.sun_path - 1);
    m_iSocket = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    pStore = std::make_unique<CSyncStore>(dir.filePath("web.sqlite"_s));
    if (bind(m_iSocket, reinterpret_cast<sockaddr *>(&here), sizeof here) != 0 || listen(m_iSocket, 9) != 0 ||
        !server.listen(QHostAddress::LocalHost) || !pStore->Init())
        qFatal("no ground for a town");
    for (const char *pragma : {"PRAGMA journal_mode = MEMORY", "PRAGMA synchronous = OFF"})
        pStore->Exec(QString::fromLatin1(pragma)); // nobody kills it here
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_BIND_NOW"_s, "1"_s); // once, before it forks
    m_program.setProcessEnvironment(environment);
    m_program.setProcessChannelMode(QProcess::ForwardedChannels);
    const QStringList about{dir.filePath("socket"_s), "http://127.0.0.1:%1"_s.arg(server.serverPort())};
    m_program.start(QStringLiteral(MACHINE_PATH), about + CTown::GetPlayers());
}

CGround::~CGround()
{
    m_program.closeWriteChannel();
    m_program.waitForFinished();
    close(m_iSocket);
}

int CGround::Begin(const QString &folder, const QString &name, int &process)
{
    m_program.write(QFile::encodeName(folder) + ' ' + name.toUtf8() + '\n');
    m_program.waitForBytesWritten();
    const int machine = accept4(m_iSocket, nullptr, nullptr, SOCK_CLOEXEC);
    char greeting[32] = {};
    if (machine < 0 || recv(machine, greeting, sizeof greeting - 1, 0) <= 0)
        qFatal("a machine doesn't begin");
    process = std::atoi(greeting);
    return machine;
}

CTown::CTown(CGround &ground, int machines, int users)
    : m_ground(ground)
    , m_machines(machines)
    , m_iUsers(users)
{
    ++m_ground.iTowns;
    connect(&ground.server, &QTcpServer::newConnection, this, &CTown::OnConnection);
    for (int machine = 0; machine < machines; ++machine) {
        const QString folder = ground.dir.filePath("%1/%2/Client"_s.arg(ground.iTowns).arg(machine));
        QDir().mkpath(folder);
        QDir().mkpath(folder + "/../Tmp"_s);
        m_machines[machine].strFolder = folder;
        Begin(machine);
    }
}

CTown::~CTown()
{
    Calm();
    for (const SMachine &machine : qAsConst(m_machines)) {
        ::kill(machine.iProcess, SIGKILL);
        close(machine.iSocket);
    }
    qDeleteAll(m_ground.server.findChildren<QTcpSocket *>());
    QDir(m_ground.dir.filePath(QString::number(m_ground.iTowns))).removeRecursively();
}

void CTown::Begin(int machine)
{
    SMachine &to = m_machines[machine];
    to.iSocket = m_ground.Begin(to.strFolder, "m%1"_s.arg(machine), to.iProcess);
    to.iNow = 0;
    to.requests.clear();
    to.strUser.clear();
    to.ratings.clear();
    const QJsonObject first = Tell(machine, QString());
    if (!first.value("open"_s).toBool())
        m_ledger.Fail("machine %1 can't open its files"_s.arg(machine));
    Look(machine, first, true);
}

// An empty command waits for the answer that comes by itself.
QJsonObject CTown::Tell(int machine, const QString &command)
{
    SMachine &to = m_machines[machine];
    const QByteArray line = QByteArray::number(m_iNow) + ' ' + command.toUtf8();
    static std::array<char, (1 << 18)> buffer;
    if (!command.isEmpty() && send(to.iSocket, line.constData(), size_t(line.size()), MSG_NOSIGNAL) < 0)
        m_ledger.Fail("machine %1 has ended"_s.arg(machine));
    if (m_ground.bTells && !command.startsWith("run "_s) && command != "look"_s)
        qInfo("%lld: machine %d: %s", m_iNow, machine, qPrintable(command));
    const ssize_t size = recv(to.iSocket, buffer.data(), buffer.size(), 0);
    if (size <= 0) {
        m_ledger.Fail("machine %1 has ended by itself at %2"_s.arg(machine).arg(command));
        to.iNext = -1;
        return {};
    }
    const QByteArray answer = QByteArray::fromRawData(buffer.data(), int(size));
    const QStringList header = QString::fromUtf8(answer.left(answer.indexOf('\n'))).split(u' ', Qt::SkipEmptyParts);
    to.iNow = header.at(0).toLongLong();
    to.iNext = header.at(1).toLongLong();
    to.requests = header.mid(2);
    const QStringList known = m_requests.keys();
    for (const QString &id : known) {
        if (m_requests.value(id).machine == machine && !to.requests.contains(id))
            m_requests.remove(id);
    }
    for (const QString &id : qAsConst(to.requests))
        Await(id);
    return QJsonDocument::fromJson(answer.mid(answer.indexOf('\n') + 1)).object();
}

// Until the request has arrived.
void CTown::Await(const QString &id)
{
    QTimer limit; // which ends the wait as well
    limit.setSingleShot(true);
    if (!m_requests.contains(id))
        limit.start(ARRIVAL_MS);
    while (!m_requests.contains(id) && limit.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (!m_requests.contains(id))
        m_ledger.Fail("no request %1"_s.arg(id));
}

// When the server takes it, or answers.
qint64 CTown::GetDue(const SRequest &request) const
{
    return request.bAtOnce ? request.iBegin : qMax(request.iRelease, m_machines.at(request.machine).iNow);
}

QString CTown::GetNextRequest() const
{
    QString next;
    qint64 when = NEVER;
    for (auto request = m_requests.cbegin(); request != m_requests.cend(); ++request) {
        const qint64 due = GetDue(*request);
        if (due < when || (due == when && request.key() < next)) {
            next = request.key();
            when = due;
        }
    }
    return next;
}

int CTown::GetNextMachine() const
{
    int next = -1;
    for (int machine = 0; machine < m_machines.size(); ++machine) {
        if (m_machines.at(machine).iNext >= 0 &&
            (next < 0 || m_machines.at(machine).iNext < m_machines.at(next).iNext))
            next = machine;
    }
    return next;
}

void CTown::Advance(qint64 ms)
{
    const qint64 end = m_iNow + ms;
    while (m_ledger.GetFault().isEmpty()) {
        const QString request = GetNextRequest();
        const int machine = GetNextMachine();
        const qint64 answer = request.isEmpty() ? NEVER : GetDue(m_requests.value(request));
        const qint64 timer = machine < 0 ? NEVER : qMax(m_machines.at(machine).iNext, m_machines.at(machine).iNow);
        if (qMin(answer, timer) > end)
            break;
        m_iNow = qMax(m_iNow, qMin(answer, timer));
        if (answer > timer)
            Run(machine, end);
        else if (m_requests.value(request).bAtOnce)
            Serve(m_requests[request]);
        else
            Release(request);
    }
    m_iNow = end;
}

// What its timers do, up to its next request or answer. Nobody but the server hears of it.
void CTown::Run(int machine, qint64 end)
{
    for (const SRequest &request : qAsConst(m_requests)) {
        if (request.machine == machine)
            end = qMin(end, request.iRelease - 1);
    }
    Tell(machine, "run %1"_s.arg(end));
}

void CTown::Do(int machine, const QString &command)
{
    Advance(qMax<qint64>(0, m_machines.at(machine).iNow - m_iNow));
    const QJsonObject data = Tell(machine, command);
    m_machines[machine].strUser = command.startsWith("login"_s) ? command.section(u' ', 1)
                                  : command == "logout"_s || command == "reset"_s || command == "end"_s
                                      ? QString()
                                      : m_machines.at(machine).strUser;
    Look(machine, data);
    if (!command.startsWith("login"_s))
        return;
    // Who has no row of a setting is given that of whoever was there last.
    for (const QString &key : GetSettings()) {
        const QString row = GetUser(machine) + " s/"_s + key;
        if (!m_machines.at(machine).stored.contains(row))
            m_ledger.Give(machine, row, m_machines.at(machine).seen.value("s/"_s + key).toString(), m_iNow);
    }
}

void CTown::Change(int machine, const QString &what, const QString &name, const QString &value)
{
    const QString user = GetUser(machine);
    const QString row = user + (what == "set"_s ? " s/"_s : " p/"_s) + name;
    if (user.isEmpty() || m_ledger.IsFull(row))
        return;
    Advance(qMax<qint64>(0, m_machines.at(machine).iNow - m_iNow));
    const auto last = m_changed.value(row, {machine, 0});
    if (last.first != machine && m_iNow - last.second < APART_MS)
        Advance(APART_MS);
    const QJsonObject answer = Tell(machine, what + u' ' + name + u' ' + value);
    if (what == "rate"_s)
        m_machines[machine].ratings.insert(user + u' ' + name, value.toInt());
    else
        m_machines[machine].chosen.insert(row, m_iNow);
    m_changed.insert(row, {machine, m_iNow});
    m_ledger.Choose(machine, row, answer.value("before"_s).toString(), answer.value("after"_s).toString(), m_iNow);
    Look(machine, answer);
}

QStringList CTown::GetRows(int user) const
{
    QStringList rows;
    for (const QString &player : GetPlayers())
        rows += GetUserName(user) + " p/"_s + player;
    for (const QString &key : GetSettings())
        rows += GetUserName(user) + " s/"_s + key;
    return rows;
}

// What it holds goes to the ledger.
void CTown::Look(int machine, const QJsonObject &data, bool killed)
{
    SMachine &at = m_machines[machine];
    if (data.value("user"_s).toString() != at.strUser)
        m_ledger.Fail("machine %1 is of %2, not %3"_s.arg(machine).arg(data.value("user"_s).toString(), at.strUser));
    at.stored = data.value("stored"_s).toObject();
    for (auto row = at.stored.constBegin(); row != at.stored.constEnd(); ++row)
        m_ledger.Store(machine, row.key(), row->toString());
    for (int user = 0; killed && user < m_iUsers; ++user) {
        for (const QString &row : GetRows(user)) {
            const qint64 delay = row.contains(" s/"_s) ? 1500 : 4000; // of a write, and a bit
            const bool due = at.iHindered < m_iNow && m_iNow - m_changed.value(row).second >= delay;
            m_ledger.Kill(machine, row, at.stored.value(row).toString(GetNothing(row)), due);
        }
    }
    at.seen = data.value("seen"_s).toObject();
    const QJsonObject seen = at.strUser.isEmpty() ? QJsonObject() : at.seen;
    for (auto row = seen.constBegin(); row != seen.constEnd(); ++row) {
        const QString name = at.strUser + u' ' + row.key();
        const QString player = at.strUser + u' ' + row.key().mid(2);
        if (row.key().startsWith(u'b'))
            row->toInt() > 1 ? m_ledger.Fail("%1 is a buddy twice on %2"_s.arg(player).arg(machine)) : void();
        else if (row.key().startsWith(u'r'))
            at.ratings.value(player, row->toInt()) != row->toInt()
                ? m_ledger.Fail("the rating of %1 is gone on %2"_s.arg(player).arg(machine))
                : void();
        else
            m_ledger.See(machine, name, row->toString());
    }
}

void CTown::Kill(int machine)
{
    SMachine &to = m_machines[machine];
    ::kill(to.iProcess, SIGKILL);
    char rest[1024];
    while (recv(to.iSocket, rest, sizeof rest, 0) > 0) {
    }
    close(to.iSocket);
    const QStringList known = m_requests.keys();
    for (const QString &id : known) {
        if (m_requests.value(id).machine == machine)
            m_requests.remove(id);
    }
    Begin(machine);
}

void CTown::SetFate(int machine, EFate fate, qint64 ms)
{
    m_machines[machine].eFate = fate;
    m_machines[machine].iDelay = ms;
}

void CTown::Lock(int machine, const QString &file)
{
    const QString name = "%1 %2"_s.arg(machine).arg(file);
    if (QSqlDatabase::contains(name))
        return;
    m_machines[machine].iHindered = NEVER;
    QSqlDatabase lock = QSqlDatabase::addDatabase("QSQLITE"_s, name);
    lock.setDatabaseName(m_machines.at(machine).strFolder + "/../Tmp/"_s + file + ".sqlite"_s);
    if (!lock.open() || lock.exec("BEGIN IMMEDIATE"_s).lastError().isValid())
        m_ledger.Fail("can't lock the %1 of machine %2"_s.arg(file).arg(machine));
}

void CTown::SetFull(int machine, bool full)
{
    m_machines[machine].iHindered = full ? NEVER : m_iNow + RETRIES_MS;
    Do(machine, full ? "full 1"_s : "full 1000000000"_s);
}

void CTown::Free(int machine)
{
    if (m_machines.at(machine).iHindered != NEVER)
        return;
    for (const QString &file : {"playerinfo"_s, "settings"_s})
        QSqlDatabase::removeDatabase("%1 %2"_s.arg(machine).arg(file));
    SetFull(machine, false);
}

void CTown::Calm()
{
    for (int machine = 0; machine < m_machines.size(); ++machine) {
        SetFate(machine, Answered, 0);
        Free(machine);
    }
}

void CTown::OnConnection()
{
    while (QTcpSocket *socket = m_ground.server.nextPendingConnection()) {
        const auto data = std::make_shared<QByteArray>();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket, data] { OnData(socket, *data); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void CTown::OnData(QTcpSocket *socket, QByteArray &data)
{
    data += socket->readAll();
    const int header = data.indexOf("\r\n\r\n");
    if (header < 0)
        return;
    const int length = data.toLower().indexOf("content-length:");
    const int size =
        length < 0 || length > header ? 0 : data.mid(length + 15, 12).split('\r').first().trimmed().toInt();
    if (data.size() < header + 4 + size)
        return;
    const QByteArray line = data.left(data.indexOf("\r\n"));
    const QByteArray body = data.mid(header + 4, size);
    data.clear();
    const QUrl url(QString::fromUtf8(line.split(' ').value(1)));
    const QString id = url.path().mid(1);
    const int machine = id.section(u'.', 0, 0).mid(1).toInt();
    SMachine &from = m_machines[machine];
    SRequest request{machine, socket,      id.section(u'.', 1, 1), line, body, from.eFate, from.iNow, false,
                     0,       QByteArray()};
    request.bAtOnce = from.eFate != Answered && from.eFate != Refused;
    request.iRelease = from.eFate == Lost ? NEVER : from.iNow + USUAL_MS + from.iDelay;
    from.eFate = Answered;
    from.iDelay = 0;
    m_requests.insert(id, request);
}

void CTown::Serve(SRequest &request)
{
    request.bAtOnce = false;
    const SOwner owner{request.strUser, "m%1"_s.arg(request.machine)};
    const int json = request.body.indexOf("&json=");
    SyncJson::TLists lists;
    bool good = true;
    if (json < 0) {
        const QUrlQuery query(QUrl(QString::fromUtf8(request.line.split(' ').value(1))));
        for (std::size_t i = 0; i < lists.size(); ++i)
            good &= SyncJson::ReadTime(query.queryItemValue(QLatin1String(SyncJson::LISTS[i])), lists[i].iTime);
        good = good && m_ground.pStore->Fetch(owner, lists);
    } else {
        good = SyncJson::ReadLists(request.body.mid(json + 6), lists);
        for (const SSyncList &list : lists) {
            for (const SSyncRow &sent : list.rows) {
                const auto row = ToRow(sent.strKey, sent.strContent);
                if (row.first.startsWith(u'p') || GetSettings().contains(row.first.mid(2)))
                    m_ledger.Keep(request.machine, request.strUser + u' ' + row.first, row.second);
            }
        }
        good = good && m_ground.pStore->Merge(owner, lists);
    }
    if (!good)
        m_ledger.Fail("the server refuses %1"_s.arg(QString::fromUtf8(request.line)));
    request.answer = SyncJson::WriteLists(lists);
    if (m_ground.bTells)
        qInfo("%lld: %s%s -> %s", m_iNow, request.line.constData(), request.body.mid(json).constData(),
              request.answer.constData());
}

void CTown::Release(const QString &id)
{
    SRequest request = m_requests.take(id);
    if (request.eFate == Answered || request.eFate == Twice)
        Serve(request);
    QTcpSocket *socket = request.pSocket;
    if (!socket) {
        m_ledger.Fail("request %1 is gone"_s.arg(id));
        return;
    }
    socket->write(request.eFate == Refused ? ToAnswer(500, "no")
                  : request.eFate == Cut   ? ToAnswer(200, request.answer.left(request.answer.size() / 2), 1)
                                           : ToAnswer(200, request.answer));
    while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten(1000)) {
    }
    socket->disconnectFromHost();
    Look(request.machine, Tell(request.machine, "await "_s + id));
    if (request.eFate != Refused && request.eFate != Cut && request.body.isEmpty())
        CheckTaken(request);
}

// What an answer brings is in effect, but for what the user has changed since, or just before.
void CTown::CheckTaken(const SRequest &request)
{
    const SMachine &to = m_machines.at(request.machine);
    SyncJson::TLists lists;
    if (to.strUser != request.strUser || to.iHindered >= request.iBegin ||
        !SyncJson::ReadLists(request.answer, lists))
        return;
    for (const SSyncList &list : lists) {
        for (const SSyncRow &sent : list.rows) {
            const auto row = ToRow(sent.strKey, sent.strContent);
            const qint64 chosen = to.chosen.value(to.strUser + u' ' + row.first, -UNWRITTEN_MS);
            const QString seen = to.seen.value(row.first).toString(row.second);
            if (request.iBegin - chosen >= UNWRITTEN_MS && seen != row.second)
                m_ledger.Fail("machine %1 hasn't taken %2 = %3, but has %4"_s.arg(request.machine)
                                  .arg(row.first, row.second, seen));
        }
    }
}

QHash<QString, QString> CTown::GetServed(const QString &user)
{
    QHash<QString, QString> rows;
    QSqlQuery query = m_ground.pStore->GetQuery();
    query.prepare("SELECT ROW_cKey, ROW_cContent FROM tbl_row WHERE ROW_cList IN (?, ?)"_s);
    query.addBindValue(user + u'/' + QLatin1String(SyncJson::LISTS[0]));
    query.addBindValue(user + u'/' + QLatin1String(SyncJson::LISTS[1]));
    query.exec();
    while (query.next()) {
        const auto row = ToRow(query.value(0).toString(), query.value(1).toString());
        rows.insert(user + u' ' + row.first, row.second);
    }
    return rows;
}

// All rows as the server has them, and where somebody has another.
QString CTown::Compare(bool &same)
{
    QString all;
    for (int user = 0; user < m_iUsers; ++user) {
        const QHash<QString, QString> served = GetServed(GetUserName(user));
        for (const QString &row : GetRows(user)) {
            const QString nothing = GetNothing(row);
            const QString content = served.value(row, nothing);
            all += row + u'=' + content;
            for (int machine = 0; machine < m_machines.size(); ++machine) {
                const QString own = m_machines.at(machine).stored.value(row).toString(nothing);
                if (own == content)
                    continue;
                same = false;
                all += ", on %1 %2"_s.arg(machine).arg(own);
            }
            all += u'\n';
        }
    }
    return all;
}

void CTown::Settle()
{
    Calm();
    qint64 free = m_iNow;
    for (const SMachine &machine : qAsConst(m_machines))
        free = qMax(free, machine.iHindered);
    Advance(free - m_iNow);
    QString before;
    for (int round = 0; m_ledger.GetFault().isEmpty(); ++round) {
        for (int user = 0; user < m_iUsers; ++user) {
            for (int machine = 0; machine < m_machines.size(); ++machine) {
                if (!GetUser(machine).isEmpty())
                    Do(machine, "logout"_s);
                Do(machine, "login "_s + GetUserName(user));
            }
            Advance(ROUND_MS);
        }
        for (int machine = 0; machine < m_machines.size(); ++machine)
            Look(machine, Tell(machine, "look"_s));
        bool same = true;
        const QString now = Compare(same);
        if (now == before && same)
            break;
        if (round == MOST_ROUNDS)
            m_ledger.Fail("nothing comes to rest:\n"_s + now);
        before = now;
    }
    for (int user = 0; user < m_iUsers && m_ledger.GetFault().isEmpty(); ++user) {
        const QHash<QString, QString> served = GetServed(GetUserName(user));
        for (const QString &row : GetRows(user))
            m_ledger.End(row, served.value(row, GetNothing(row)));
    }
}
