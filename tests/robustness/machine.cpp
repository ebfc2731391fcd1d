// One of a user's machines: machine SOCKET ADDRESS. Each line "FOLDER NAME" on its input forks one, which connects to
// SOCKET, works in the client folder of an installation, and exchanges with the web server at ADDRESS.
//
// Its clocks stand still but for a command, "MILLISECONDS COMMAND [ARGUMENT...]", or for a sleep, which takes no time
// outside. When there is nothing left to do it answers a JSON object: "now" and "next", its time and that of its next
// timer, "requests", those under way, and, but for "run", what its user sees and what its files hold, by row.

#include "UserRows.h"

#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <models/PlayerLists.h>
#include <models/UserInfo.h>
#include <network/Download.h>
#include <settings/Config.h>
#include <settings/PlayerInfo.h>
#include <settings/Settings.h>
#include <settings/SettingsSync.h>
#include <time/CasinoTime.h>

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>
#include <QTimer>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <functional>
#include <iostream>
#include <map>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr qint64 MS = 1000000; // in nanoseconds
constexpr qint64 SECOND = 1000 * MS;
constexpr qint64 SERVER_TIME = 1700000000; // when the town begins
constexpr int SESSION_MS = 20, SEND_DELAY_MS = 1500, REGULAR_MS = 60000, PAUSE_MS = 10000;

std::atomic<qint64> now{SECOND}; // nanoseconds, on the monotonic clock
std::atomic<qint64> wall{0};     // seconds by which the machine's own clock is off
std::atomic<bool> isFull{false}; // its disk
thread_local bool isMainThread = false;
bool (*onIdle)(qint64 next) = nullptr; // whether it has gone on to that time

timespec ToTime(qint64 nanoseconds)
{
    return {time_t(nanoseconds / SECOND), long(nanoseconds % SECOND)};
}

qint64 GetWall()
{
    return now + (SERVER_TIME + wall) * SECOND;
}

} // namespace

// What Qt and SQLite would ask the system for, SQLite alone the last.
extern "C" {

int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)
        *time = ToTime(GetWall());
    else if (clock == CLOCK_MONOTONIC || clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_MONOTONIC_RAW)
        *time = ToTime(now);
    else
        return int(syscall(SYS_clock_gettime, clock, time));
    return 0;
}

int gettimeofday(timeval *time, void *) noexcept
{
    *time = {time_t(GetWall() / SECOND), long(GetWall() % SECOND / 1000)};
    return 0;
}

int usleep(useconds_t microseconds)
{
    now += qint64(microseconds) * 1000;
    return 0;
}

int nanosleep(const timespec *time, timespec *)
{
    now += time->tv_sec * SECOND + time->tv_nsec;
    return 0;
}

int ppoll(pollfd *files, nfds_t count, const timespec *timeout, const sigset_t *)
{
    timespec wait = timeout ? *timeout : timespec{};
    if (!isMainThread || !onIdle)
        return int(syscall(SYS_ppoll, files, count, timeout ? &wait : nullptr, nullptr, 8));
    timespec none{};
    const int ready = int(syscall(SYS_ppoll, files, count, &none, nullptr, 8));
    if (ready != 0 || (timeout && wait.tv_sec == 0 && wait.tv_nsec == 0))
        return ready;
    if (onIdle(timeout ? now + wait.tv_sec * SECOND + wait.tv_nsec : -1))
        return 0;
    return int(syscall(SYS_ppoll, files, count, nullptr, nullptr, 8));
}

ssize_t pwrite64(int file, const void *data, size_t size, off64_t offset)
{
    if (!isFull)
        return syscall(SYS_pwrite64, file, data, size, offset);
    errno = ENOSPC;
    return -1;
}

} // extern "C"

namespace {

CPlayerModel *GetPlayer(const QString &nickname)
{
    return CPlayerLists::GetInstance()->GetPlayerModel(nickname);
}

QString GetUser()
{
    return CUserInfo::GetInstance()->GetNickname();
}

int CountListed(CPlayerModel *player)
{
    return int(CPlayerLists::GetInstance()->GetBuddyList()->count(player));
}

// Who is listed twice has a flag that nobody sets.
QString GetSeen(const QString &row)
{
    const QString name = row.mid(2);
    const CSettings *settings = CSettings::GetInstance();
    if (row.startsWith(u's'))
        return QString::number(name == "volume"_s ? settings->GetVolume() : settings->GetThemeChips());
    CPlayerModel *player = GetPlayer(name);
    const int blocked = (player->GetBuddyBlocked() ? 4 : 0) + (player->GetChatBlock() ? 8 : 0);
    return ToContent(player->GetNotes(), int(player->GetTagID()), CountListed(player) + blocked);
}

// What the files hold of all users: "USER p/PLAYER" and "USER s/KEY", users in lower case. The statements stay
// prepared, for it is asked often.
QJsonObject GetStored()
{
    static QSqlQuery notes = CPlayerInfoDB::GetInstance()->GetQuery();
    static QSqlQuery settings = CSettingsDB::GetInstance()->GetQuery();
    static const bool prepared =
        notes.prepare("SELECT lower(PIN_cUser) || ' p/' || PIN_cPlayer, PIN_cNote, PIN_iTagID, PIN_iPlayerFlags"
                      " FROM tbl_playerinfo"_s) &&
        settings.prepare("SELECT URS_cUser || ' s/' || URS_cKey, URS_cValue FROM tbl_settings WHERE URS_cUser != ''"
                         " AND URS_cKey IN ('%1')"_s.arg(SETTINGS.join("', '"_s)));
    QJsonObject rows;
    if (!prepared || !notes.exec() || !settings.exec())
        return rows;
    while (notes.next())
        rows.insert(notes.value(0).toString(),
                    ToContent(notes.value(1).toString(), notes.value(2).toInt(), notes.value(3).toInt()));
    while (settings.next())
        rows.insert(settings.value(0).toString(), settings.value(1).toString());
    return rows;
}

// What a user changes of a player, or which setting.
using TChange = void (*)(const QString &name, const QString &value);
const QHash<QString, TChange> CHANGES{
    {"note"_s, [](auto &name, auto &value) { GetPlayer(name)->SetNotes(value); }},
    {"tag"_s, [](auto &name, auto &value) { GetPlayer(name)->SetTagID(value.toUInt()); }},
    {"block"_s, [](auto &name, auto &) { GetPlayer(name)->SetBuddyBlocked(!GetPlayer(name)->GetBuddyBlocked()); }},
    {"chat"_s, [](auto &name, auto &) { GetPlayer(name)->SetChatBlock(!GetPlayer(name)->GetChatBlock()); }},
    {"buddy"_s,
     [](auto &name, auto &) {
         if (CountListed(GetPlayer(name)) == 0)
             CPlayerLists::GetInstance()->AddNewBuddy(GetPlayer(name));
         else
             CPlayerLists::GetInstance()->RemoveFromBuddyList(name);
     }},
    {"volume"_s, [](auto &, auto &value) { CSettings::GetInstance()->SetVolume(value.toInt()); }},
    {"themechips"_s, [](auto &, auto &value) { CSettings::GetInstance()->SetThemeChips(value.toInt()); }}};

// The host's part.
class CMachine : public QObject
{
public:
    CMachine(int socket, const QString &name, const QString &address)
        : m_iSocket(socket)
        , m_strName(name)
        , m_notifier(socket, QSocketNotifier::Read)
    {
        SetTime(now);
        CConfig::GetInstance()->SetConfigs({{"link_settingssync"_s, address}});
        if (!CSettingsDB::GetInstance()->Init() || !CPlayerInfoDB::GetInstance()->Init())
            m_answer.insert("fault"_s, "the files can't be opened"_s);
        QCoreApplication::setLibraryPaths({}); // nobody asks the system for its networks
        CSettings::GetInstance();
        for (QTimer *timer : {&m_syncTimer, &m_fetchTimer, &m_sendTimer})
            timer->setSingleShot(true);
        connect(&m_notifier, &QSocketNotifier::activated, this, &CMachine::OnCommand);
        connect(&m_syncTimer, &QTimer::timeout, this, [this] {
            CSettings::GetInstance()->slot_SaveSettings();
            BeginSync();
        });
        connect(&m_fetchTimer, &QTimer::timeout, this,
                [this] { CSettingsSync::GetInstance()->StartSync(m_strFetchSession); });
        connect(&m_sendTimer, &QTimer::timeout, this, [this] {
            if (CSettingsSync::GetInstance()->SyncToServer(m_strSendSession))
                m_syncTimer.start(PAUSE_MS);
        });
        connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, this,
                [this](bool in) { in ? void() : Leave(); });
        connect(CSettingsSync::GetInstance(), &CSettingsSync::signal_RequestSessionForSync, this,
                &CMachine::RequestSession);
        QCoreApplication::instance()->installEventFilter(this);
    }

    // Whether it has gone on to the time of the next timer, which is negative if there is none.
    bool OnIdle(qint64 next)
    {
        const QStringList requests = GetRequests();
        if (!m_bOwes || requests.contains(m_strAwaited))
            return false;
        if (next >= 0 && next <= m_iUntil && requests == m_requests) {
            SetTime(next);
            return true;
        }
        if (m_bLooks) { // in a turn of the event loop, not while it waits
            m_bLooks = false;
            QMetaObject::invokeMethod(this, &CMachine::Look, Qt::QueuedConnection);
            return false;
        }
        m_bOwes = false;
        m_answer.insert("now"_s, now / MS);
        m_answer.insert("next"_s, next < 0 ? -1 : (next + MS - 1) / MS);
        m_answer.insert("requests"_s, QJsonArray::fromStringList(requests));
        const QByteArray answer = QJsonDocument(std::exchange(m_answer, {})).toJson(QJsonDocument::Compact);
        if (send(m_iSocket, answer.constData(), size_t(answer.size()), 0) < 0)
            _exit(1);
        return false;
    }

protected:
    // The tick of the clock and that of a progress are of no use here.
    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *timer = event->type() == QEvent::Timer ? qobject_cast<QTimer *>(object) : nullptr;
        if (timer && timer->interval() <= 1000 && !timer->isSingleShot())
            timer->stop();
        return false;
    }

private:
    // Those that haven't ended.
    static QStringList GetRequests()
    {
        QStringList requests;
        const QList<CDownload *> downloads = CSettingsSync::GetInstance()->findChildren<CDownload *>();
        for (const CDownload *download : downloads)
            requests.append(download->GetBaseUrl().path().mid(1));
        return requests;
    }

    static void SetTime(qint64 time)
    {
        now = qMax(now.load(), time);
        CCasinoTime::GetInstance()->SetTimeUTCServer(static_cast<unsigned int>(SERVER_TIME + now / SECOND));
    }

    void OnCommand()
    {
        char buffer[8192];
        const ssize_t size = recv(m_iSocket, buffer, sizeof buffer, 0);
        if (size <= 0)
            _exit(0);
        const QStringList words = QString::fromUtf8(buffer, int(size)).split(u' ');
        const QString &what = words.at(1);
        SetTime(words.at(0).toLongLong() * MS);
        m_bOwes = true;
        m_bLooks = what != "run"_s;
        m_iUntil = m_bLooks ? -1 : words.at(2).toLongLong() * MS;
        m_strAwaited = what == "await"_s ? words.at(2) : QString();
        m_requests = GetRequests();
        Do(what, words.value(2), words.value(3));
    }

    void Do(const QString &what, const QString &name, const QString &value)
    {
        CUserInfo *user = CUserInfo::GetInstance();
        const std::map<QString, std::function<void()>> deeds{
            {"login"_s, [&] { Login(name); }},
            {"logout"_s, [&] { user->SetLoggedIn(QString()); }},
            {"reset"_s, [&] { static_cast<CUserInfoDataModel *>(user)->Reset(); }},
            {"end"_s, [&] { EndOwn(); }},
            {"sync"_s, [&] { BeginSync(); }},
            {"ghost"_s, [&] { GetPlayer("ghost"_s)->SetNotes(name); }},
            {"rate"_s, [&] { Rate(name, value.toInt()); }},
            {"jump"_s, [&] { wall += name.toLongLong(); }},
            {"full"_s, [&] { isFull = name == "on"_s; }}};
        const auto deed = deeds.find(what);
        if (deed != deeds.end())
            deed->second();
        const TChange change = CHANGES.value(what == "set"_s ? name : what);
        if (!change)
            return;
        const QString row = (what == "set"_s ? "s/"_s : "p/"_s) + name;
        m_answer.insert("before"_s, GetSeen(row));
        change(name, value);
        m_answer.insert("after"_s, GetSeen(row));
    }

    void Look()
    {
        QJsonObject seen;
        for (const QString &row : GetRows())
            seen.insert(row, GetSeen(row));
        for (auto rating = m_ratings.cbegin(); rating != m_ratings.cend(); ++rating) {
            const QString name = rating.key().section(u' ', 1);
            if (rating.key().section(u' ', 0, 0) == GetUser() && GetPlayer(name)->GetRating() != *rating)
                m_answer.insert("fault"_s, "the rating of %1 is gone"_s.arg(rating.key()));
        }
        m_answer.insert("user"_s, GetUser());
        m_answer.insert("seen"_s, seen);
        m_answer.insert("stored"_s, GetStored());
    }

    void Login(const QString &user)
    {
        const bool again = user == GetUser();
        CUserInfo::GetInstance()->SetLoggedIn(user);
        if (!again)
            PlayerInfo::LoadInfo();
        BeginSync();
    }

    void Leave()
    {
        for (QTimer *timer : {&m_syncTimer, &m_fetchTimer, &m_sendTimer})
            timer->stop();
        CPlayerLists::GetInstance()->ResetBuddyList();
        if (GetUser().isEmpty())
            CPlayerModel::DestroyInstances();
    }

    void EndOwn()
    {
        CPlayerModel::DestroyInstance(GetUser());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Leave();
    }

    // It stays on the machine, and so it is remembered here.
    void Rate(const QString &player, int rating)
    {
        GetPlayer(player)->SetRating(static_cast<unsigned char>(rating));
        m_ratings.insert(GetUser() + u' ' + player, static_cast<unsigned char>(rating));
    }

    void BeginSync()
    {
        m_syncTimer.start(REGULAR_MS);
        CSettingsSync::GetInstance()->InitiateSync();
    }

    // The game server gives it to whoever is logged in when it is asked.
    void RequestSession(WebLinks::id link)
    {
        const bool fetch = link == WebLinks::SettingsSyncFetch;
        m_iSessions = qMax(m_iSessions + 1, now / MS); // beyond those from before a kill, too
        (fetch ? m_strFetchSession : m_strSendSession) = "%1.%2.%3"_s.arg(m_strName, GetUser()).arg(m_iSessions);
        (fetch ? m_fetchTimer : m_sendTimer).start(fetch ? SESSION_MS : SESSION_MS + SEND_DELAY_MS);
    }

    const int m_iSocket;
    const QString m_strName;
    QSocketNotifier m_notifier;
    QTimer m_syncTimer;
    QTimer m_fetchTimer;
    QTimer m_sendTimer;
    QString m_strFetchSession;
    QString m_strSendSession;
    qint64 m_iSessions = 0;
    bool m_bOwes = true;  // an answer to the test
    bool m_bLooks = true; // before that
    qint64 m_iUntil = -1;
    QStringList m_requests;        // at the last command
    QString m_strAwaited;          // the request whose end it waits for
    QHash<QString, int> m_ratings; // that a user has given, by "USER PLAYER"
    QJsonObject m_answer;
};

CMachine *machine = nullptr;

int Live(const std::string &path, const QString &folder, const QString &name, const QString &address)
{
    sockaddr_un there{};
    there.sun_family = AF_UNIX;
    std::strncpy(there.sun_path, path.c_str(), sizeof there.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
    // The last one that the system closes when the machine is killed, so that the files are closed by then.
    const int last = fcntl(socket, F_DUPFD, 500);
    close(socket);
    if (connect(last, reinterpret_cast<sockaddr *>(&there), sizeof there) != 0 || !QDir::setCurrent(folder))
        return 1;
    const int process = getpid();
    send(last, &process, sizeof process, 0);
    char program[] = "machine";
    char *arguments[] = {program, nullptr};
    int count = 1;
    const QCoreApplication application(count, arguments);
    machine = new CMachine(last, name, address);
    onIdle = [](qint64 next) { return machine->OnIdle(next); };
    return QCoreApplication::exec();
}

} // namespace

int main(int count, char **arguments)
{
    if (count != 3)
        return 1;
    isMainThread = true;
    setenv("QT_NO_GLIB", "1", 1); // whose loop has a clock of its own
    const QStringList plugins = QCoreApplication::libraryPaths();
    for (const QString &folder : plugins) // once, if it is there
        dlopen(QFile::encodeName(folder + "/sqldrivers/libqsqlite.so"_s).constData(), RTLD_NOW);
    std::signal(SIGCHLD, SIG_IGN);
    std::string folder, name;
    while (std::cin >> folder >> name) {
        if (fork() == 0) {
            close(STDIN_FILENO);
            _exit(Live(arguments[1], QString::fromStdString(folder), QString::fromStdString(name),
                       QString::fromUtf8(arguments[2])));
        }
    }
    return 0;
}
