// Drives machines against web servers of the example, and tells how many exchanges a second they answer, how long
// each takes, and what went wrong. bench/load starts the servers and compares stores.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <httplib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <deque>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using TClock = std::chrono::steady_clock;

enum EKind { Login, Notes, Settings, Fresh, KindCount };
constexpr std::array<const char *, KindCount> NAMES{"logins", "notes", "settings", "fresh"};
constexpr std::array<int, KindCount> WEIGHTS{1, 5, 3, 1};

// A user's rows of each list, like those that bench/load fills a store with.
constexpr std::size_t ROWS = 10;
constexpr int NOTE_LENGTH = 40;
constexpr int SESSION_LENGTH = 64;
constexpr int SESSION_PART = 32; // of it, which is in an address
constexpr int TRIES = 3;
constexpr int ANSWER_SECONDS = 30;
const char FORM[] = "application/x-www-form-urlencoded";
const QString TIME = QStringLiteral("time");
const QString TIMES[] = {QStringLiteral("usersettingstime"), QStringLiteral("playerinfostime")};
const QString LISTS[] = {QStringLiteral("usersettings"), QStringLiteral("playerinfos")};
const QString ROW_KEYS[] = {QStringLiteral("key"), QStringLiteral("nick")};
const QString ROW_VALUES[] = {QStringLiteral("value"), QStringLiteral("note")};

struct SOptions
{
    QStringList servers;
    QString strKey;
    quint32 uiUsers = 0;
    quint32 uiMachines = 0;
    quint32 uiThreads = 0;
    quint32 uiSeconds = 0;
    quint32 uiWarmUp = 0;
    quint32 uiSeed = 0;
};

struct STaken
{
    EKind eKind;
    double ms;
};

// A machine in step with its user's rows, which nobody else changes. List 0 has the settings, list 1 the notes.
struct SMachine
{
    quint32 uiUser = 0;
    QString strSession;
    std::array<qint64, 2> times{};
    std::array<std::array<QString, ROWS>, 2> sent; // the values that have been acknowledged; null if unknown
};

QString RowKey(std::size_t list, std::size_t number)
{
    return (list == 0 ? QStringLiteral("key%1") : QStringLiteral("player%1")).arg(number + 1);
}

QJsonObject MakeRow(std::size_t list, std::size_t number, const QString &value, qint64 time)
{
    QJsonObject row{{ROW_KEYS[list], RowKey(list, number)}, {ROW_VALUES[list], value}, {TIME, QString::number(time)}};
    if (list == 0)
        row.insert(QStringLiteral("area"), QStringLiteral("bench"));
    else {
        row.insert(QStringLiteral("tag"), QStringLiteral("1"));
        row.insert(QStringLiteral("flags"), QStringLiteral("0"));
    }
    return row;
}

// A thread, which asks the servers in turn and waits for each answer, with some of the machines.
class CDriver
{
public:
    CDriver(const SOptions &options, const QString &run, quint32 number)
        : m_options(options)
        , m_strName(QStringLiteral("%1-%2").arg(run).arg(number))
        , m_random(options.uiSeed * 1000003U + number)
        , m_kinds(WEIGHTS.begin(), WEIGHTS.end())
        , m_uiNext(number)
    {
        for (const QString &server : options.servers) {
            m_servers.push_back(std::make_unique<httplib::Client>(server.toStdString()));
            m_servers.back()->set_connection_timeout(ANSWER_SECONDS);
            m_servers.back()->set_read_timeout(ANSWER_SECONDS);
        }
        // Over all of the users, so that no rows are nearer to each other than the users'.
        for (quint32 i = number; i < options.uiMachines; i += options.uiThreads) {
            m_machines.emplace_back();
            m_machines.back().uiUser = quint32(quint64(i) * options.uiUsers / options.uiMachines) + 1;
        }
    }

    void Prepare()
    {
        for (SMachine &machine : m_machines) {
            int tries = 1;
            for (; !BringInStep(machine) && tries < TRIES; ++tries)
                ++iRepeated;
            iUnready += tries == TRIES ? 1 : 0;
        }
    }

    // Exchanges count that end from \a from on, and none begins after \a until.
    void Run(TClock::time_point from, TClock::time_point until)
    {
        for (auto begin = TClock::now(); begin < until; begin = TClock::now()) {
            const EKind kind = DrawKind();
            const bool good = Exchange(kind);
            const auto end = TClock::now();
            if (!good)
                ++errors[kind];
            else if (end >= from && end <= until)
                taken.push_back({kind, std::chrono::duration<double, std::milli>(end - begin).count()});
        }
    }

    // Whether a new machine of the user gets what has been acknowledged.
    void Check()
    {
        for (const SMachine &machine : m_machines) {
            QString session;
            QJsonObject answer;
            if (!LogIn(machine.uiUser, session) || !Fetch(session, {}, answer)) {
                ++iUnchecked;
                continue;
            }
            for (std::size_t list = 0; list < 2; ++list) {
                for (std::size_t i = 0; i < ROWS; ++i)
                    iLost += machine.sent[list][i].isNull() || HasRow(answer, list, i, machine.sent[list][i]) ? 0 : 1;
            }
        }
    }

    std::vector<STaken> taken;
    std::array<int, KindCount> errors{};
    int iRepeated = 0;  // attempts of machines to get in step that failed, and were repeated as a new machine
    int iUnready = 0;   // machines that didn't get in step
    int iUnchecked = 0; // machines whose rows couldn't be fetched at the end
    int iLost = 0;      // rows that have been acknowledged, and weren't there
    QString strFault;   // the first one

private:
    int Draw(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }

    // A fresh machine needs a login. If there is none, the next one comes first, so the shares are as drawn.
    EKind DrawKind()
    {
        const auto kind = EKind(m_kinds(m_random));
        if (kind == Fresh && m_fresh.empty()) {
            ++m_iOwed;
            return Login;
        }
        if (kind == Login && m_iOwed > 0 && !m_fresh.empty()) {
            --m_iOwed;
            return Fresh;
        }
        return kind;
    }

    bool Exchange(EKind kind)
    {
        if (kind == Login) {
            QString session;
            const bool good = LogIn(quint32(Draw(int(m_options.uiUsers))) + 1, session);
            if (good)
                m_fresh.push_back(session);
            return good;
        }
        if (kind == Fresh) {
            const QString session = m_fresh.front();
            m_fresh.pop_front();
            QJsonObject answer;
            return Fetch(session, {}, answer);
        }
        return Change(m_machines[std::size_t(Draw(int(m_machines.size())))], kind == Settings ? 0 : 1);
    }

    // A new value for one of the rows.
    bool Change(SMachine &machine, std::size_t list)
    {
        const auto number = std::size_t(Draw(int(ROWS)));
        const QString value =
            QStringLiteral("%1-%2").arg(m_strName).arg(++m_iChanges).leftJustified(NOTE_LENGTH, u'.');
        QString &sent = machine.sent[list][number];
        sent = QString(); // either, unless it is acknowledged
        ++machine.times[list];
        if (!Send(machine, list, MakeRow(list, number, value, machine.times[list])))
            return false;
        sent = value;
        return true;
    }

    bool Send(const SMachine &machine, std::size_t list, const QJsonObject &row)
    {
        QJsonObject lists{{LISTS[list], QJsonArray{row}}};
        for (std::size_t i = 0; i < 2; ++i)
            lists.insert(TIMES[i], QString::number(machine.times[i]));
        const QByteArray body = "session=" + machine.strSession.toLatin1() +
                                "&json=" + QJsonDocument(lists).toJson(QJsonDocument::Compact);
        QJsonObject answer;
        return Read(GetServer().Post("/sync", body.toStdString(), FORM), answer) &&
               (answer.value(TIMES[list]).toDouble() >= double(machine.times[list]) ||
                Fail(QStringLiteral("a change isn't taken in")));
    }

    bool LogIn(quint32 user, QString &session)
    {
        const httplib::Params owner{{"key", m_options.strKey.toStdString()},
                                    {"nickname", "user" + std::to_string(user)},
                                    {"machine", (m_strName + QStringLiteral("-%1").arg(++m_iLogins)).toStdString()}};
        const httplib::Result answer = GetServer().Post("/sessions", owner);
        session = answer ? QString::fromStdString(answer->body) : QString();
        return IsGood(answer) && (session.size() == SESSION_LENGTH || Fail(QStringLiteral("that is no session")));
    }

    bool Fetch(const QString &session, const std::array<qint64, 2> &times, QJsonObject &answer)
    {
        const QString path = QStringLiteral("/sync?session=%1&usersettings=%2&playerinfos=%3")
                                 .arg(session.left(SESSION_PART))
                                 .arg(times[0])
                                 .arg(times[1]);
        return Read(GetServer().Get(path.toStdString()), answer);
    }

    bool Read(const httplib::Result &result, QJsonObject &answer)
    {
        if (!IsGood(result))
            return false;
        answer = QJsonDocument::fromJson(QByteArray::fromStdString(result->body)).object();
        return (answer.contains(TIMES[0]) && answer.contains(TIMES[1])) ||
               Fail(QStringLiteral("an answer has no times"));
    }

    bool IsGood(const httplib::Result &result)
    {
        if (!result)
            return Fail(
                QStringLiteral("no answer: %1").arg(QString::fromStdString(httplib::to_string(result.error()))));
        return result->status == 200 || Fail(QStringLiteral("status %1").arg(result->status));
    }

    bool Fail(const QString &fault)
    {
        if (strFault.isEmpty())
            strFault = fault;
        return false;
    }

    // It takes all rows, whereupon the server has the settings in step, and sends the newest note back.
    bool BringInStep(SMachine &machine)
    {
        QJsonObject answer;
        bool good = LogIn(machine.uiUser, machine.strSession) && Fetch(machine.strSession, {}, answer);
        QJsonObject newest;
        for (std::size_t list = 0; good && list < 2; ++list) {
            const QJsonArray rows = answer.value(LISTS[list]).toArray();
            newest = rows.isEmpty() ? QJsonObject() : rows.last().toObject();
            machine.times[list] = qint64(newest.value(TIME).toDouble());
        }
        if (good && !newest.isEmpty()) {
            for (auto field = newest.begin(); field != newest.end(); ++field)
                *field = field->toVariant().toString();
            good = Fetch(machine.strSession, machine.times, answer) && Send(machine, 1, newest);
        }
        good = good && Fetch(machine.strSession, machine.times, answer);
        for (std::size_t list = 0; list < 2; ++list)
            good = good && answer.value(LISTS[list]).toArray().isEmpty() &&
                   qint64(answer.value(TIMES[list]).toDouble()) == machine.times[list];
        return good || Fail(QStringLiteral("a machine isn't in step"));
    }

    static bool HasRow(const QJsonObject &answer, std::size_t list, std::size_t number, const QString &value)
    {
        const QJsonArray rows = answer.value(LISTS[list]).toArray();
        return std::any_of(rows.begin(), rows.end(), [&](const QJsonValue &row) {
            return row.toObject().value(ROW_KEYS[list]).toString() == RowKey(list, number) &&
                   row.toObject().value(ROW_VALUES[list]).toString() == value;
        });
    }

    httplib::Client &GetServer() { return *m_servers[m_uiNext++ % m_servers.size()]; }

    const SOptions &m_options;
    const QString m_strName;
    std::mt19937 m_random;
    std::discrete_distribution<int> m_kinds;
    std::size_t m_uiNext; // of the servers
    std::vector<std::unique_ptr<httplib::Client>> m_servers;
    std::vector<SMachine> m_machines;
    std::deque<QString> m_fresh; // sessions of machines that haven't fetched anything
    int m_iOwed = 0;             // logins that came before their turn
    int m_iLogins = 0;
    int m_iChanges = 0;
};

double GetPercentile(const std::vector<double> &sorted, int percent)
{
    if (sorted.empty())
        return 0;
    return sorted[std::size_t(std::ceil(double(sorted.size()) * percent / 100)) - 1];
}

void PrintLine(const char *name, std::vector<double> times, quint32 seconds, int errors)
{
    std::sort(times.begin(), times.end());
    std::printf("%-9s %9zu %9.1f %8.2f %8.2f %8.2f %7d\n", name, times.size(), double(times.size()) / seconds,
                GetPercentile(times, 50), GetPercentile(times, 95), GetPercentile(times, 99), errors);
}

template <typename Work>
void RunAll(std::vector<std::unique_ptr<CDriver>> &drivers, const Work &work)
{
    std::vector<std::thread> threads;
    threads.reserve(drivers.size());
    for (const auto &driver : drivers)
        threads.emplace_back([&work, &driver] { work(*driver); });
    for (std::thread &thread : threads)
        thread.join();
}

// False if anything has gone wrong.
bool Report(const std::vector<std::unique_ptr<CDriver>> &drivers, const SOptions &options)
{
    std::printf("%-9s %9s %9s %8s %8s %8s %7s\n", "kind", "exchanges", "a second", "50% ms", "95% ms", "99% ms",
                "errors");
    std::vector<double> all;
    int errors = 0;
    for (int kind = 0; kind < KindCount; ++kind) {
        std::vector<double> times;
        int faults = 0;
        for (const auto &driver : drivers) {
            faults += driver->errors[std::size_t(kind)];
            for (const STaken &taken : driver->taken) {
                if (taken.eKind == kind)
                    times.push_back(taken.ms);
            }
        }
        all.insert(all.end(), times.begin(), times.end());
        errors += faults;
        PrintLine(NAMES[std::size_t(kind)], std::move(times), options.uiSeconds, faults);
    }
    const bool any = !all.empty();
    PrintLine("all", std::move(all), options.uiSeconds, errors);
    int repeated = 0;
    int unready = 0;
    int unchecked = 0;
    int lost = 0;
    QString fault;
    for (const auto &driver : drivers) {
        repeated += driver->iRepeated;
        unready += driver->iUnready;
        unchecked += driver->iUnchecked;
        lost += driver->iLost;
        fault = fault.isEmpty() ? driver->strFault : fault;
    }
    std::printf("beforehand: attempts repeated %d, machines not in step %d; afterwards: machines not checked %d,"
                " acknowledged rows lost %d\n",
                repeated, unready, unchecked, lost);
    if (!fault.isEmpty())
        std::fprintf(stderr, "bench_load: %s\n", qUtf8Printable(fault));
    return any && errors == 0 && unready == 0 && unchecked == 0 && lost == 0;
}

QCommandLineOption Option(const char *name, const char *meaning, const char *value, const char *byDefault = "")
{
    return {QString::fromLatin1(name), QString::fromLatin1(meaning), QString::fromLatin1(value),
            QString::fromLatin1(byDefault)};
}

bool ReadOptions(const QCoreApplication &application, SOptions &options)
{
    struct SNumber
    {
        QCommandLineOption option;
        quint32 &number;
        quint32 least;
    };
    const auto server =
        Option("server", "Address of a web server, http://HOST:PORT; any number, asked in turn.", "address");
    const auto key = Option("key", "The servers' secret.", "text");
    const SNumber numbers[] = {
        {Option("users", "In the store: user1, user2 and so on; default 1000.", "number", "1000"), options.uiUsers,
         1},
        {Option("machines", "Each of another user; default 100.", "number", "100"), options.uiMachines, 1},
        {Option("threads", "That ask at a time; default 16.", "number", "16"), options.uiThreads, 1},
        {Option("seconds", "That count; default 10.", "number", "10"), options.uiSeconds, 1},
        {Option("warm-up", "Seconds before them; default 2.", "number", "2"), options.uiWarmUp, 0},
        {Option("seed", "Of what is drawn; default 1.", "number", "1"), options.uiSeed, 0}};
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Drives machines against web servers of the example, with logins, notes, settings and fetches of\n"
        "fresh machines as 1 to 5 to 3 to 1, and prints exchanges a second and their times.\n"
        "The exit code is 1 if an exchange has failed, or what was acknowledged isn't there at the "
        "end."));
    parser.addHelpOption();
    parser.addOptions({server, key});
    for (const SNumber &number : numbers)
        parser.addOption(number.option);
    parser.process(application);
    options.servers = parser.values(server);
    options.strKey = parser.value(key);
    bool good = !options.servers.isEmpty() && !options.strKey.isEmpty() && parser.positionalArguments().isEmpty();
    for (const SNumber &number : numbers) {
        bool isNumber = false;
        number.number = parser.value(number.option).toUInt(&isNumber);
        good = good && isNumber && number.number >= number.least &&
               number.number <= quint32(std::numeric_limits<int>::max());
    }
    // Two machines of one user would send each other rows, and a thread without a machine couldn't change any.
    return good && options.uiMachines <= options.uiUsers && options.uiThreads <= options.uiMachines;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    SOptions options;
    if (!ReadOptions(application, options)) {
        std::fputs(
            "bench_load: it needs --server, --key, numbers, and no more threads than machines, nor machines than"
            " users; see --help\n",
            stderr);
        return 1;
    }
    const QString run = QUuid::createUuid().toString(QUuid::WithoutBraces).left(8); // no other run's machines
    std::vector<std::unique_ptr<CDriver>> drivers;
    for (quint32 i = 0; i < options.uiThreads; ++i)
        drivers.push_back(std::make_unique<CDriver>(options, run, i));
    RunAll(drivers, [](CDriver &driver) { driver.Prepare(); });
    const auto from = TClock::now() + std::chrono::seconds(options.uiWarmUp);
    const auto until = from + std::chrono::seconds(options.uiSeconds);
    RunAll(drivers, [=](CDriver &driver) { driver.Run(from, until); });
    RunAll(drivers, [](CDriver &driver) { driver.Check(); });
    return Report(drivers, options) ? 0 : 1;
}
