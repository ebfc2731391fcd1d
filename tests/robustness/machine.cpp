// One of a user's machines: machine SOCKET ADDRESS PLAYER... Each line "FOLDER NAME" on its input forks one, which
// connects to SOCKET, works in the client folder of an installation, and exchanges with the web server at ADDRESS.
//
// Its clocks stand still but for a command, "MILLISECONDS COMMAND [ARGUMENT...]", or for a sleep, which takes no time
// outside. When there is nothing left to do it answers "NOW NEXT REQUEST...\nJSON": its time, that of its next timer,
// the requests under way, and, but for "run", what its user sees of the players and what its files hold.

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
#include <QLibraryInfo>
#include <QSocketNotifier>
#include <QTimer>

#include <atomic>
#include <csignal>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <iostream>
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
constexpr int SEND_DELAY_MS = 1500, REGULAR_MS = 60000, PAUSE_MS = 10000, SESSION_MS = 20;
constexpr int SESSION_LENGTH = 64, ID_LENGTH = 32;

std::atomic<qint64> now{SECOND};       // nanoseconds, on the monotonic clock
std::atomic<qint64> wall{0};           // seconds by which the machine's own clock is off
bool (*onIdle)(qint64 next) = nullptr; // whether it has gone on to that time
QStringList players;

bool IsMainThread()
{
    return syscall(SYS_gettid) == getpid();
}

timespec ToTime(qint64 nanoseconds)
{
    return {time_t(nanoseconds / SECOND), long(nanoseconds % SECOND)};
}

qint64 GetWall()
{
    return now + (SERVER_TIME + wall) * SECOND;
}

} // namespace

// What Qt and SQLite would ask the system for.
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
    if (!IsMainThread() || !onIdle)
        return int(syscall(SYS_ppoll, files, count, timeout ? &wait : nullptr, nullptr, 8));
    timespec none{};
    const int ready = int(syscall(SYS_ppoll, files, count, &none, nullptr, 8));
    if (ready != 0 || (timeout && wait.tv_sec == 0 && wait.tv_nsec == 0))
        return ready;
    if (onIdle(timeout ? now + wait.tv_sec * SECOND + wait.tv_nsec : -1))
        return 0;
    return int(syscall(SYS_ppoll, files, count, nullptr, nullptr, 8));
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
    return CPlayerLists::GetInstance()->GetBuddyList()->count(player);
}

QString ToContent(const QString &note, unsigned int tag, unsigned int flags)
{
    return QStringLiteral("%1|%2|%3").arg(note).arg(tag).arg(flags);
}

// What the user sees, by what the rows are called: "p/PLAYER" and "s/KEY".
QJsonObject GetSeen()
{
    QJsonObject seen;
    for (const QString &nickname : qAsConst(players)) {
        CPlayerModel *player = GetPlayer(nickname);
        const bool buddy = CountListed(player) > 0;
        const unsigned int flags =
            (buddy ? 1 : 0) | (player->GetBuddyBlocked() ? 4 : 0) | (player->GetChatBlock() ? 8 : 0);
        seen.insert(QLatin1String("p/") + nickname, ToContent(player->GetNotes(), player->GetTagID(), flags));
        seen.insert(QLatin1String("r/") + nickname, player->GetRating());
        seen.insert(QLatin1String("b/") + nickname, CountListed(player));
    }
    seen.insert(QStringLiteral("s/volume"), QString::number(CSettings::GetInstance()->GetVolume()));
    seen.insert(QStringLiteral("s/themechips"), QString::number(CSettings::GetInstance()->GetThemeChips()));
    return seen;
}

// What the files hold of all users: "USER p/PLAYER", users in lower case.
QJsonObject GetStored()
{
    QJsonObject rows;
    QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
    query.exec(QStringLiteral("SELECT lower(PIN_cUser) || ' p/' || PIN_cPlayer, PIN_cNote, PIN_iTagID,"
                              " PIN_iPlayerFlags FROM tbl_playerinfo"));
    while (query.next())
        rows.insert(query.value(0).toString(),
                    ToContent(query.value(1).toString(), query.value(2).toUInt(), query.value(3).toUInt()));
    query = CSettingsDB::GetInstance()->GetQuery();
    query.exec(QStringLiteral("SELECT URS_cUser || ' s/' || URS_cKey, URS_cValue FROM tbl_settings WHERE URS_cUser"
                              " != '' AND URS_cKey IN ('volume', 'themechips')"));
    while (query.next())
        rows.insert(query.value(0).toString(), query.value(1).toString());
    return rows;
}

// The host's part.
class CMachine : public QObject
{
public:
    CMachine(int socket, const QString &name, const QString &address);
    bool Answer(qint64 next);
    void Do();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    using TWork = void (CMachine::*)(const QString &, const QString &);

    void Login(const QString &user);
    void Load();
    void Leave();
    void Look();
    static void SetTime(qint64 time);
    void EndOwn();
    void Change(const QString &what, const QString &name, const QString &value);
    static void ChangePlayer(const QString &what, CPlayerModel *player, const QString &value);
    static void Limit(const QString &pages);
    void BeginSync();
    void RequestSession(WebLinks::id link);
    void UseSession(WebLinks::id link, const QString &session);
    QStringList GetRequests() const;

    const int m_iSocket;
    const QString m_strName;
    QSocketNotifier m_notifier;
    QTimer m_timer;
    QTimer m_sendTimer;
    WebLinks::id m_eAsked = WebLinks::NoPage;
    QString m_strSendSession;
    int m_iSessions = 0;
    int m_iLogins = 0;
    bool m_bOwes = true;  // an answer to the test
    bool m_bLooks = true; // before that
    qint64 m_iUntil = -1;
    QStringList m_requests; // at the last command
    bool m_bLoaded = false;
    QString m_strAwaited; // the request whose end it waits for
    QJsonObject m_data;
};

CMachine *machine = nullptr;

CMachine::CMachine(int socket, const QString &name, const QString &address)
    : m_iSocket(socket)
    , m_strName(name)
    , m_notifier(socket, QSocketNotifier::Read)
{
    CCasinoTime::GetInstance()->SetTimeUTCServer(SERVER_TIME);
    CConfig::GetInstance()->SetConfigs(
        {{QStringLiteral("link_settingssync"), address + QLatin1String("/%SESSION%")}});
    m_data = {{QStringLiteral("open"), CSettingsDB::GetInstance()->Init() && CPlayerInfoDB::GetInstance()->Init()}};
    QCoreApplication::setLibraryPaths({}); // nobody asks the system for its networks
    CSettings::GetInstance();
    m_timer.setSingleShot(true);
    m_sendTimer.setSingleShot(true);
    m_sendTimer.setInterval(SEND_DELAY_MS);
    connect(&m_notifier, &QSocketNotifier::activated, this, &CMachine::Do);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        CSettings::GetInstance()->slot_SaveSettings();
        BeginSync();
    });
    connect(&m_sendTimer, &QTimer::timeout, this, [this] {
        if (CSettingsSync::GetInstance()->SyncToServer(m_strSendSession))
            m_timer.start(PAUSE_MS);
    });
    connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, this,
            [this](bool in) { in ? Load() : Leave(); });
    connect(CSettingsSync::GetInstance(), &CSettingsSync::signal_RequestSessionForSync, this,
            &CMachine::RequestSession);
    QCoreApplication::instance()->installEventFilter(this);
}

// The tick of the clock and that of a progress are of no use here.
bool CMachine::eventFilter(QObject *object, QEvent *event)
{
    auto *timer = event->type() == QEvent::Timer ? qobject_cast<QTimer *>(object) : nullptr;
    if (timer && timer->interval() <= 1000 && !timer->isSingleShot())
        timer->stop();
    return false;
}

QStringList CMachine::GetRequests() const
{
    QStringList requests;
    const QList<CDownload *> downloads = CSettingsSync::GetInstance()->findChildren<CDownload *>();
    for (CDownload *download : downloads) {
        if (!download->property("running").isValid()) {
            download->setProperty("running", true);
            connect(download, &CDownload::signal_Finished, [download] { download->setProperty("running", false); });
        }
        if (download->property("running").toBool())
            requests.append(download->GetBaseUrl().path().mid(1));
    }
    return requests;
}

bool CMachine::Answer(qint64 next)
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
        QMetaObject::invokeMethod(
            this, [this] { Look(); }, Qt::QueuedConnection);
        return false;
    }
    m_bOwes = false;
    const QString header = QStringLiteral("%1 %2 %3\n")
                               .arg(now / MS)
                               .arg(next < 0 ? -1 : (next + MS - 1) / MS)
                               .arg(requests.join(QLatin1Char(' ')));
    const QByteArray answer = header.toUtf8() + QJsonDocument(m_data).toJson(QJsonDocument::Compact);
    m_data = QJsonObject();
    if (send(m_iSocket, answer.constData(), size_t(answer.size()), 0) < 0)
        _exit(1);
    return false;
}

void CMachine::SetTime(qint64 time)
{
    now = qMax(now.load(), time);
    CCasinoTime::GetInstance()->SetTimeUTCServer(static_cast<unsigned int>(SERVER_TIME + now / SECOND));
}

void CMachine::Do()
{
    char buffer[8192];
    const ssize_t size = recv(m_iSocket, buffer, sizeof buffer, 0);
    if (size <= 0)
        _exit(0);
    const QStringList words = QString::fromUtf8(buffer, int(size)).split(QLatin1Char(' '));
    SetTime(words.at(0).toLongLong() * MS);
    m_bOwes = true;
    m_strAwaited.clear();
    const QString &what = words.at(1);
    m_bLooks = what != QLatin1String("run");
    m_iUntil = m_bLooks ? -1 : words.at(2).toLongLong() * MS;
    m_requests = GetRequests();
    if (what == QLatin1String("login"))
        Login(words.at(2));
    else if (what == QLatin1String("logout"))
        CUserInfo::GetInstance()->SetLoggedIn(QString());
    else if (what == QLatin1String("reset"))
        static_cast<CUserInfoDataModel *>(CUserInfo::GetInstance())->Reset();
    else if (what == QLatin1String("end"))
        EndOwn();
    else if (what == QLatin1String("sync"))
        BeginSync();
    else if (what == QLatin1String("await"))
        m_strAwaited = words.at(2);
    else if (what == QLatin1String("jump"))
        wall += words.at(2).toLongLong();
    else if (what == QLatin1String("full"))
        Limit(words.at(2));
    else if (what != QLatin1String("run") && what != QLatin1String("look"))
        Change(what, words.at(2), words.value(3));
}

void CMachine::Look()
{
    m_data.insert(QStringLiteral("user"), GetUser());
    m_data.insert(QStringLiteral("seen"), GetSeen());
    m_data.insert(QStringLiteral("stored"), GetStored());
}

void CMachine::Login(const QString &user)
{
    CUserInfo::GetInstance()->SetLoggedIn(user);
    if (!m_bLoaded)
        Load(); // the state hasn't changed, as at the end of the own player
    BeginSync();
}

void CMachine::Load()
{
    Leave();
    m_bLoaded = true;
    PlayerInfo::LoadInfo();
}

void CMachine::Leave()
{
    ++m_iLogins;
    m_bLoaded = false;
    m_eAsked = WebLinks::NoPage;
    m_timer.stop();
    m_sendTimer.stop();
    CPlayerLists::GetInstance()->ResetBuddyList();
    if (GetUser().isEmpty())
        CPlayerModel::DestroyInstances();
}

void CMachine::EndOwn()
{
    CPlayerModel::DestroyInstance(GetUser());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Leave();
}

void CMachine::Change(const QString &what, const QString &name, const QString &value)
{
    const bool setting = what == QLatin1String("set");
    const QString row = (setting ? QLatin1String("s/") : QLatin1String("p/")) + name;
    m_data.insert(QStringLiteral("before"), GetSeen().value(row));
    if (setting && name == QLatin1String("volume"))
        CSettings::GetInstance()->SetVolume(value.toInt());
    else if (setting)
        CSettings::GetInstance()->SetThemeChips(value.toInt());
    else
        ChangePlayer(what, GetPlayer(name), value);
    m_data.insert(QStringLiteral("after"), GetSeen().value(row));
}

void CMachine::ChangePlayer(const QString &what, CPlayerModel *player, const QString &value)
{
    if (what == QLatin1String("note"))
        player->SetNotes(value);
    else if (what == QLatin1String("tag"))
        player->SetTagID(value.toUInt());
    else if (what == QLatin1String("rate"))
        player->SetRating(static_cast<unsigned char>(value.toUInt()));
    else if (what == QLatin1String("block"))
        player->SetBuddyBlocked(!player->GetBuddyBlocked());
    else if (what == QLatin1String("chat"))
        player->SetChatBlock(!player->GetChatBlock());
    else if (CountListed(player) == 0)
        CPlayerLists::GetInstance()->AddNewBuddy(player);
    else
        CPlayerLists::GetInstance()->RemoveFromBuddyList(player->GetNickname());
}

// A full disk: the files don't grow.
void CMachine::Limit(const QString &pages)
{
    for (CLocalDB *database :
         {static_cast<CLocalDB *>(CSettingsDB::GetInstance()), static_cast<CLocalDB *>(CPlayerInfoDB::GetInstance())})
        database->Exec(QLatin1String("PRAGMA max_page_count = ") + pages);
}

void CMachine::BeginSync()
{
    m_timer.start(REGULAR_MS);
    CSettingsSync::GetInstance()->InitiateSync();
}

// The game server gives it to whoever is logged in when it is asked.
void CMachine::RequestSession(WebLinks::id link)
{
    m_eAsked = link;
    const QString session = QStringLiteral("%1.%2.%3.").arg(m_strName, GetUser()).arg(++m_iSessions);
    QTimer::singleShot(SESSION_MS, this, [this, link, session, login = m_iLogins] {
        if (login == m_iLogins)
            UseSession(link, session);
    });
}

void CMachine::UseSession(WebLinks::id link, const QString &session)
{
    if (link != m_eAsked)
        return;
    m_eAsked = WebLinks::NoPage;
    const QString whole =
        session.leftJustified(ID_LENGTH, QLatin1Char('x')).leftJustified(SESSION_LENGTH, QLatin1Char('y'));
    if (link == WebLinks::SettingsSyncFetch) {
        CSettingsSync::GetInstance()->StartSync(whole);
    } else {
        m_strSendSession = whole;
        m_sendTimer.start();
    }
}

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
    const std::string greeting = std::to_string(getpid());
    send(last, greeting.data(), greeting.size(), 0);
    char program[] = "machine";
    char *arguments[] = {program, nullptr};
    int count = 1;
    const QCoreApplication application(count, arguments);
    machine = new CMachine(last, name, address);
    onIdle = [](qint64 next) { return machine->Answer(next); };
    return QCoreApplication::exec();
}

} // namespace

int main(int count, char **arguments)
{
    if (count < 4)
        return 1;
    for (int player = 3; player < count; ++player)
        players.append(QString::fromUtf8(arguments[player]));
    setenv("QT_NO_GLIB", "1", 1); // whose loop has a clock of its own
    const QString driver =
        QLibraryInfo::location(QLibraryInfo::PluginsPath) + QLatin1String("/sqldrivers/libqsqlite.so");
    dlopen(QFile::encodeName(driver).constData(), RTLD_NOW); // once, if it is there
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
