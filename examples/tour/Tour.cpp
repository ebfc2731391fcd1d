#include "Tour.h"
#include "VisibleTexts.h"

#include <common/Texts.h>
#include <database/ConfigDB.h>
#include <files/Pathes.h>

#include <QAbstractItemModel>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QNetworkProxy>
#include <QPushButton>
#include <QTableView>
#include <QTcpServer>
#include <QTextStream>
#include <QtTest>

#include <algorithm>

namespace {

constexpr int STEP_LIMIT_MS = 15000;
constexpr int ACTIVE_LIMIT_MS = 10000;
// Of the synchronisation. The library keeps its own pauses.
constexpr int SYNC_PAUSE_MS = 1000;
constexpr int SYNC_REGULAR_MS = 2000;
constexpr int MIN_TABLES = 200;
// Three frames of a screen: whoever waits longer sees it.
constexpr double LONGEST_EVENT_MS = 50;

// Nobody is there: what goes to this machine itself has to go direct.
const QString PROXY = QStringLiteral(R"({"host": "127.0.0.1", "port": 9, "type": "http", "user": "operator"})");

} // namespace

int Patience()
{
    return std::max(1, qEnvironmentVariableIntValue("TOUR_PATIENCE"));
}

QString Describe(const CWatchedApplication::SEvent &event)
{
    return "at most %1 ms, %2 ms of them busy, with %3"_s.arg(event.ms, 0, 'f', 1)
        .arg(event.busyMs, 0, 'f', 1)
        .arg(event.strName);
}

QStringList QueryDatabase(const QString &file, const QString &sql)
{
    QProcess sqlite;
    sqlite.start("sqlite3"_s, {"-readonly"_s, file, sql});
    if (!sqlite.waitForFinished() || sqlite.exitCode() != 0)
        return QStringList();
    return QString::fromUtf8(sqlite.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

CTour::CTour(const STourOptions &options, CHost &host, QMainWindow &window)
    : m_options(options)
    , m_host(host)
    , m_window(window)
{
}

int CTour::Run()
{
    QDir().mkpath(m_options.strOutput);
    m_host.GetSynchronisation().SetIntervals(SYNC_PAUSE_MS, SYNC_REGULAR_MS);
    QWidget *first = m_window.isVisible() ? &m_window : Find<QWidget>("problems");
    m_bFailed = !first || !QTest::qWaitForWindowExposed(first);
    CWatchedApplication::Get()->Forget(); // the start is over
    if (m_options.bSecondMachine)
        return RunSecondMachine();
    if (m_options.bBigLobbyOnly)
        ShowBigLobby();
    else
        ShowAll();
    See("Nothing has held up the client for longer than %1 ms"_s.arg(LONGEST_EVENT_MS * Patience()),
        [] { return Describe(CWatchedApplication::Get()->GetLongest()); });
    QTextStream(stdout) << (m_bFailed ? "The tour failed.\n"_s : "All %1 steps happened.\n"_s.arg(m_iSteps));
    return m_bFailed ? 1 : 0;
}

void CTour::ShowAll()
{
    ShowStart();
    ShowLobby();
    ShowConsole();
    ShowClock();
    ShowCancelledLogin();
    ShowLogin();
    ShowTable();
    ShowRunningNumbers();
    ShowLanguages();
    ShowTimezones();
    ShowSettings();
    ShowSecondUser();
    ShowFirstUserAgain();
    ShowOptions();
    ShowQml();
    ShowNotes();
    ShowTransfers();
    ShowKeyboard();
    ShowLooks();
    ShowBareStart();
    ShowLostServer();
    ShowBigLobby();
    ShowReturn();
}

void CTour::MakeInstallation(const QString &folder, quint16 webPort, const QString &keys)
{
    const QDir client(GetClientFolder(folder));
    QDir(QDir::cleanPath(client.filePath(".."_s))).removeRecursively();
    const QDir resources(client.filePath("../Resources"_s));
    QDir().mkpath(client.path());
    QDir().mkpath(resources.path());
    QFile::link(QDir(Pathes::Plugins()).canonicalPath(), client.filePath("Plugins"_s));
    const QFileInfoList shared = QDir(Pathes::Resources()).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QFileInfo &file : shared)
        QFile::link(file.canonicalFilePath(), resources.filePath(file.fileName()));
    QFile::copy(keys + "/authority.pem"_s, resources.filePath("authority.pem"_s));
    const QString config = resources.filePath(QFileInfo(Pathes::ConfigDB()).fileName());
    QFile::remove(config);
    QFile::copy(Pathes::ConfigDB(), config);
    const QString change =
        "UPDATE tbl_config SET COV_cValue = replace(COV_cValue, ':17174/', ':%1/'); "
        "INSERT OR REPLACE INTO tbl_config (COV_cKey, COV_cValue) VALUES ('proxysettings', '%2')"_s;
    QProcess::execute("sqlite3"_s, {config, change.arg(webPort).arg(PROXY)});
}

void CTour::EnterInstallation(const QString &folder)
{
    QDir::setCurrent(GetClientFolder(folder));
    qputenv("HOME", QFile::encodeName(folder));
}

QString CTour::GetClientFolder(const QString &folder)
{
    return folder + QLatin1String("/installation/Contents/Client");
}

quint16 CTour::FindFreePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

void CTour::Step(const QString &text, const TAction &action, const TLook &look)
{
    if (m_bFailed)
        return;
    m_strFault.clear();
    action();
    QString seen;
    m_bFailed = !QTest::qWaitFor([&] { return !(seen = look()).isEmpty(); }, STEP_LIMIT_MS * Patience());
    const CWatchedApplication::SEvent &longest = CWatchedApplication::Get()->GetLongest();
    if (longest.ms > LONGEST_EVENT_MS * Patience()) {
        m_strFault = Describe(longest);
        m_bFailed = true;
    }
    QTextStream(stdout) << (m_bFailed ? "FAILED " : "ok     ") << ++m_iSteps << ". " << text << ": "
                        << (m_bFailed ? QLatin1String("not seen ") + m_strFault : seen) << Qt::endl;
}

void CTour::See(const QString &text, const TLook &look)
{
    Step(
        text, [] {}, look);
}

void CTour::PressInFront(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    const auto activate = [this] {
        m_window.activateWindow();
        return m_window.isActiveWindow();
    };
    if (QTest::qWaitFor(activate, ACTIVE_LIMIT_MS * Patience()))
        QTest::keyClick(&m_window, key, modifiers);
}

void CTour::TakePicture(QWidget &widget, const QString &name)
{
    See("A picture of that"_s, [&] { return SaveScreenshot(widget, name); });
}

void CTour::ShowInLanguages(const QString &text, const std::function<QString(const QString &language)> &look)
{
    for (const QString &language : LANGUAGES) {
        Step(
            text.arg(language), [&] { SetLanguage(language); }, [&] { return look(language); });
    }
}

void CTour::ShowStart()
{
    See("The operator's configuration is in force"_s,
        [this] { return CConfigDB::GetInstance()->IsOpen() ? m_window.windowTitle() : QString(); });
    See("So is the operator's proxy"_s, [] {
        const QNetworkProxy proxy = QNetworkProxy::applicationProxy();
        return proxy.user() == "operator"_s ? proxy.hostName() : QString();
    });
    Step(
        "A plugin asks for a page of the operator's, which the browser gets"_s,
        [this] {
            QDesktopServices::setUrlHandler("https"_s, qApp, "OpenPage");
            m_host.GetPluginManager().GetPlugins().constFirst()->OpenWebPage(WebLinks::Faq, false);
        },
        [] { return CWatchedApplication::Get()->GetPage().toString(); });
    QDesktopServices::unsetUrlHandler("https"_s);
    ChooseLanguage("English"_s, {});
    See("Without a game server the client waits"_s, [this] { return SeeState(EConnectionState::Reconnecting); });
}

void CTour::ShowLobby()
{
    Step(
        "The game server starts after the client"_s, [this] { StartGameServer(); },
        [this] { return m_strServerLine; });
    See("The client connects"_s, [this] { return SeeState(EConnectionState::Connected); });
    See("Nobody else can read the connection"_s, [this] { return m_host.GetServerLink().GetEncryption(); });
    See("Its tables fill the lobby, and the keyboard is the filter's"_s,
        [this] { return Find<QLineEdit>("lobbyFilter")->hasFocus() ? SeeFilledLobby() : QString(); });
    Step(
        "A filter that no table matches says so"_s, [this] { TypeFilter("no such table"_s); },
        [this] {
            return Find<QPushButton>("clearFilter")->isVisible() ? SaveScreenshot(m_window, "no-match"_s) : QString();
        });
    Step(
        "And a button removes it"_s, [this] { Find<QPushButton>("clearFilter")->click(); },
        [this] { return Find<QLineEdit>("lobbyFilter")->text().isEmpty() ? SeeFilledLobby() : QString(); });
    TakePicture(m_window, "lobby"_s);
}

void CTour::ShowLostServer()
{
    Step(
        "The game server is killed"_s, [this] { m_gameServer.Kill(); },
        [this] {
            return Find<QWidget>("offline")->isVisible() ? SeeState(EConnectionState::Reconnecting) : QString();
        });
    TakePicture(m_window, "lobby-offline"_s);
    Step(
        "A server in its place that can't prove who it is gets nothing, and the user is told"_s,
        [this] { StartGameServer(GetKeyArguments("/impostor"_s)); },
        [this] {
            const QString text = Find<QLabel>("offlineText")->text();
            return text == Texts::Get("IMPOSTOR") ? text : QString();
        });
    TakePicture(m_window, "lobby-impostor"_s);
    m_gameServer.Kill();
}

void CTour::ShowReturn()
{
    Step(
        "The game server is back, and so is the client, at the press of a button"_s,
        [this] {
            StartGameServer();
            Find<QPushButton>("reconnect")->click();
        },
        [this] { return Find<QWidget>("offline")->isVisible() ? QString() : SeeState(EConnectionState::Connected); });
    Step(
        "The server knows the user again"_s, [this] { ChooseTable(); }, [this] { return SeeSeat(FIRST_NICKNAME); });
    LogOut();
    Step(
        "The window closes"_s, [this] { m_window.close(); },
        [this] { return m_window.isVisible() ? QString() : "no window"_s; });
}

QStringList CTour::GetKeyArguments(const QString &folder) const
{
    const QString keys = m_options.strKeys + folder;
    return {"--certificate"_s, keys + "/server.pem"_s, "--private-key"_s, keys + "/server.key"_s};
}

void CTour::StartGameServer(const QStringList &further)
{
    const QStringList arguments{"--data"_s,       m_options.strTables,
                                "--accounts"_s,   m_options.strAccounts,
                                "--port"_s,       QString::number(m_options.usPort),
                                "--web-server"_s, "https://127.0.0.1:%1"_s.arg(m_options.usWebPort),
                                "--web-key"_s,    WEB_KEY,
                                "--tokens"_s,     GetFolder("tokens.sqlite"_s),
                                "--authority"_s,  m_options.strKeys + "/authority.pem"_s};
    m_strServerLine =
        m_gameServer.Start(m_options.strGameServer,
                           arguments + (further.contains("--certificate"_s) ? further : GetKeyArguments() + further));
}

QString CTour::SeeState(EConnectionState::type state) const
{
    return m_host.GetServerLink().GetState() == state ? Find<QLabel>("connectionState")->text() : QString();
}

QString CTour::SeeFilledLobby() const
{
    const auto *table = Find<QTableView>("lobbyTable");
    if (!table || table->model()->rowCount() < MIN_TABLES)
        return QString();
    return "%1 tables, the first one is %2"_s.arg(table->model()->rowCount())
        .arg(table->model()->index(0, 0).data().toString());
}

QString CTour::SaveScreenshot(QWidget &widget, const QString &name)
{
    m_strFault = FindNamelessControl(widget);
    if (!m_strFault.isEmpty())
        return QString();
    const QPixmap picture = widget.grab();
    const QString file = m_options.strOutput + QLatin1Char('/') + name + QLatin1String(".png");
    if (!picture.save(file))
        return QString();
    return "%1.png, %2 by %3 pixels"_s.arg(name).arg(picture.width()).arg(picture.height());
}
