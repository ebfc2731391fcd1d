#include "Tour.h"
#include "VisibleTexts.h"

#include "WatchedApplication.h"

#include <database/ConfigDB.h>
#include <database/TranslationDB.h>
#include <files/Pathes.h>

#include <QAbstractItemModel>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QNetworkProxy>
#include <QTableView>
#include <QTextStream>
#include <QtTest>

#include <algorithm>
#include <optional>

namespace {

constexpr int STEP_LIMIT_MS = 15000;
// Of the synchronisation. The library keeps its own pauses.
constexpr int SYNC_PAUSE_MS = 1000;
constexpr int SYNC_REGULAR_MS = 2000;
constexpr int MIN_TABLES = 200;
// Three frames of a screen: whoever waits longer sees it.
constexpr double LONGEST_EVENT_MS = 50;

// How many times as long all may take: 1, but for a build that sanitizers slow down and that says so. The second
// machine's client hears of it too.
int Patience()
{
    return std::max(1, qEnvironmentVariableIntValue("TOUR_PATIENCE"));
}

// Nobody is there: what goes to this machine itself has to go direct.
const QString PROXY = QStringLiteral(R"({"host": "127.0.0.1", "port": 9, "type": "http", "user": "operator"})");

// The front of a packet that says it has 300 bytes.
const QByteArray HALF_PACKET("LOBB\x01\x00\x00\x00\x00\x2c\x01\x21\x01TB", 15);
const QByteArray GARBAGE(64, '\xff');

QString Describe(const CEvent &event)
{
    CPacketStream stream;
    CPacketLayerWrapper packet;
    stream.Append(event.data);
    if (!stream.TakePacket(packet) || !packet.GetNext())
        return QStringLiteral("no packet");
    return QStringLiteral("%1 %2 in a packet of %3 bytes")
        .arg(packet.GetGroup(), packet.GetPayloadTag())
        .arg(packet.GetPacketSize());
}

QString SeeLanguages()
{
    QList<QHash<QString, QVariant>> languages;
    CTranslationDB::GetInstance()->SelectAll(languages, CTranslationDB::strTableNameAvailLanguages, {}, {}, 0);
    QStringList names;
    for (const auto &language : qAsConst(languages))
        names.append(language.value(QStringLiteral("AVL_cLong")).toString());
    return names.join(QLatin1String(", "));
}

QString DescribeLongestEvent()
{
    const CWatchedApplication *application = CWatchedApplication::Get();
    return QStringLiteral("at most %1 ms, with %2")
        .arg(application->GetLongestMs(), 0, 'f', 1)
        .arg(application->GetLongestName());
}

QString SeeUserDatabases()
{
    QStringList versions;
    for (const QString &path :
         {Pathes::SettingsDB(), Pathes::PlayerInfoDB(), Pathes::LobbyListDB(), Pathes::HandHistoryDB()}) {
        const QStringList version = QueryDatabase(path, QStringLiteral("SELECT DBI_cValue FROM tbl_dbinfo"));
        if (version.isEmpty())
            return QString();
        versions.append(QFileInfo(path).fileName() + QLatin1String(" version ") + version.constFirst());
    }
    return versions.join(QLatin1String(", "));
}

} // namespace

QStringList QueryDatabase(const QString &file, const QString &sql)
{
    QProcess sqlite;
    sqlite.start(QStringLiteral("sqlite3"), {QStringLiteral("-readonly"), file, sql});
    if (!sqlite.waitForFinished() || sqlite.exitCode() != 0)
        return QStringList();
    return QString::fromUtf8(sqlite.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

CTour::CTour(const STourOptions &options, CHost &host, QMainWindow &window)
    : m_options(options)
    , m_host(host)
    , m_window(window)
{
    const auto &plugins = host.GetPluginManager().GetPlugins();
    for (CPluginInterface *plugin : plugins) {
        QObject::connect(plugin, &CPluginInterface::signal_SendEvent, &window, [this](const CEvent &event) {
            if (event.HasTags("P2ME", "RSRV"))
                m_strLastRequest = Describe(event);
        });
    }
}

int CTour::Run()
{
    QDir().mkpath(m_options.strOutput);
    m_host.GetSynchronisation().SetIntervals(SYNC_PAUSE_MS, SYNC_REGULAR_MS);
    m_bFailed = !QTest::qWaitForWindowExposed(&m_window);
    CWatchedApplication::Get()->Forget(); // the start is over
    if (m_options.bSecondMachine)
        return RunSecondMachine();
    if (m_options.iSoakMinutes > 0)
        return RunSoak();
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
    ShowPluginMenu();
    ShowOptions();
    ShowColumns();
    ShowQml();
    ShowReopenedClient();
    ShowNotes();
    ShowTransfers();
    ShowKeyboard();
    ShowLooks();
    ShowBareStart();
    ShowLostServer();
    ShowBadServers();
    ShowReturn();
    Step(
        QStringLiteral("Nothing has held up the client for longer than %1 ms").arg(LONGEST_EVENT_MS * Patience()),
        [] {}, [] { return DescribeLongestEvent(); });
    QTextStream(stdout) << (m_bFailed ? QStringLiteral("The tour failed.\n")
                                      : QStringLiteral("All %1 steps happened.\n").arg(m_iSteps));
    return m_bFailed ? 1 : 0;
}

void CTour::MakeInstallation(const QString &folder, quint16 webPort)
{
    const QDir client(GetClientFolder(folder));
    QDir(QDir::cleanPath(client.filePath(QStringLiteral("..")))).removeRecursively();
    const QDir resources(client.filePath(QStringLiteral("../Resources")));
    QDir().mkpath(client.path());
    QDir().mkpath(resources.path());
    QFile::link(QDir(Pathes::Plugins()).canonicalPath(), client.filePath(QStringLiteral("Plugins")));
    const QFileInfoList shared = QDir(Pathes::Resources()).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QFileInfo &file : shared)
        QFile::link(file.canonicalFilePath(), resources.filePath(file.fileName()));
    const QString config = resources.filePath(QFileInfo(Pathes::ConfigDB()).fileName());
    QFile::remove(config);
    QFile::copy(Pathes::ConfigDB(), config);
    const QString change =
        QStringLiteral("UPDATE tbl_config SET COV_cValue = replace(COV_cValue, ':17174/', ':%1/'); "
                       "INSERT OR REPLACE INTO tbl_config (COV_cKey, COV_cValue) VALUES ('proxysettings', '%2')");
    QProcess::execute(QStringLiteral("sqlite3"), {config, change.arg(webPort).arg(PROXY)});
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
    if (CWatchedApplication::Get()->GetLongestMs() > LONGEST_EVENT_MS * Patience()) {
        m_strFault = DescribeLongestEvent();
        m_bFailed = true;
    }
    QTextStream(stdout) << (m_bFailed ? "FAILED " : "ok     ") << ++m_iSteps << ". " << text << ": "
                        << (m_bFailed ? QLatin1String("not seen ") + m_strFault : seen) << Qt::endl;
}

void CTour::ShowStart()
{
    const auto nothing = [] {};
    Step(QStringLiteral("The host has loaded a plugin from a shared object"), nothing, [this] {
        const auto &plugins = m_host.GetPluginManager().GetPlugins();
        return plugins.isEmpty() ? QString()
                                 : plugins.first()->GetName() + QLatin1Char(' ') + plugins.first()->GetVersion();
    });
    Step(QStringLiteral("The operator's configuration is in force"), nothing,
         [this] { return CConfigDB::GetInstance()->IsOpen() ? m_window.windowTitle() : QString(); });
    Step(QStringLiteral("So is the operator's proxy"), nothing, [] {
        const QNetworkProxy proxy = QNetworkProxy::applicationProxy();
        return proxy.user() == QLatin1String("operator") ? proxy.hostName() : QString();
    });
    Step(
        QStringLiteral("A plugin asks for a page of the operator's, which the browser gets"),
        [this] {
            QDesktopServices::setUrlHandler(QStringLiteral("https"), qApp, "OpenPage");
            m_host.GetPluginManager().GetPlugins().constFirst()->OpenWebPage(WebLinks::Faq, false);
        },
        [] { return CWatchedApplication::Get()->GetPage().toString(); });
    Step(QStringLiteral("The installation brings its languages"), nothing, [] { return SeeLanguages(); });
    ChooseLanguage(QStringLiteral("English"), {});
    Step(QStringLiteral("Another program reads the user's new databases"), nothing,
         [] { return SeeUserDatabases(); });
    Step(QStringLiteral("Without a game server the client waits"), nothing,
         [this] { return SeeState(EConnectionState::Reconnecting); });
}

void CTour::ShowLobby()
{
    const auto nothing = [] {};
    Step(
        QStringLiteral("The game server starts behind the client"), [this] { StartGameServer(); },
        [this] { return m_strServerLine; });
    Step(QStringLiteral("The client connects"), nothing, [this] { return SeeState(EConnectionState::Connected); });
    Step(QStringLiteral("The plugin asks for the tables"), nothing, [this] { return m_strLastRequest; });
    Step(QStringLiteral("The answer fills the lobby"), nothing, [this] { return SeeFilledLobby(); });
    Step(
        QStringLiteral("Player counts change by themselves"),
        [this] {
            QObject::connect(Find<QTableView>("lobbyTable")->model(), &QAbstractItemModel::dataChanged, &m_window,
                             [this] { ++m_iCountChanges; });
        },
        [this] { return m_iCountChanges > 0 ? QStringLiteral("%1 changes").arg(m_iCountChanges) : QString(); });
    Step(QStringLiteral("A picture of the lobby"), nothing,
         [this] { return SaveScreenshot(m_window, QStringLiteral("lobby")); });
    Step(
        QStringLiteral("A filter shortens the list"),
        [this] { QTest::keyClicks(Find<QLineEdit>("lobbyFilter"), QStringLiteral("omaha")); },
        [this] {
            const int rows = Find<QTableView>("lobbyTable")->model()->rowCount();
            return rows > 0 && rows < MIN_TABLES ? QStringLiteral("%1 tables").arg(rows) : QString();
        });
    Step(
        QStringLiteral("Without it the list is whole again"), [this] { Find<QLineEdit>("lobbyFilter")->clear(); },
        [this] { return SeeFilledLobby(); });
}

void CTour::ShowLostServer()
{
    Step(
        QStringLiteral("The game server is killed"), [this] { m_gameServer.Kill(); },
        [this] { return SeeState(EConnectionState::Reconnecting); });
    Step(
        QStringLiteral("A picture without the server"), [] {},
        [this] { return SaveScreenshot(m_window, QStringLiteral("lobby-offline")); });
}

void CTour::ShowBadServers()
{
    const auto isBad = [this](const QString &text, const QByteArray &bytes, bool hangUp) {
        std::optional<CBadServer> server;
        // The second link shows that the client has survived the first one and come back.
        Step(
            text, [&] { server.emplace(m_options.usPort, bytes, hangUp); },
            [&] { return server->GetLinkCount() > 1 ? QStringLiteral("the client came back") : QString(); });
    };
    isBad(QStringLiteral("A server sends half a packet and is gone"), HALF_PACKET, true);
    isBad(QStringLiteral("A server sends what is no packet"), GARBAGE, false);
}

void CTour::ShowReturn()
{
    Step(
        QStringLiteral("The game server is back, and so is the client"),
        [this] {
            m_strLastRequest.clear();
            StartGameServer();
        },
        [this] { return SeeState(EConnectionState::Connected); });
    Step(
        QStringLiteral("The plugin asks anew"), [] {}, [this] { return m_strLastRequest; });
    Step(
        QStringLiteral("The lobby is filled"), [] {}, [this] { return SeeFilledLobby(); });
    Step(
        QStringLiteral("The server knows the user again"), [this] { ChooseTable(); },
        [this] { return SeeSeat(FIRST_NICKNAME); });
    LogOut();
    Step(
        QStringLiteral("The window closes"), [this] { m_window.close(); },
        [this] { return m_window.isVisible() ? QString() : QStringLiteral("no window"); });
}

void CTour::StartGameServer()
{
    m_strServerLine = m_gameServer.Start(
        m_options.strGameServer,
        {QStringLiteral("--data"), m_options.strTables, QStringLiteral("--accounts"), m_options.strAccounts,
         QStringLiteral("--port"), QString::number(m_options.usPort), QStringLiteral("--web-server"),
         QStringLiteral("127.0.0.1:%1").arg(m_options.usWebPort), QStringLiteral("--web-key"), WEB_KEY});
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
    return QStringLiteral("%1 tables, the first one is %2")
        .arg(table->model()->rowCount())
        .arg(table->model()->index(0, 0).data().toString());
}

QString CTour::SaveScreenshot(QWidget &widget, const QString &name) const
{
    FinishLayout();
    const QPixmap picture = widget.grab();
    const QString file = m_options.strOutput + QLatin1Char('/') + name + QLatin1String(".png");
    if (!picture.save(file))
        return QString();
    return QStringLiteral("%1.png, %2 by %3 pixels").arg(name).arg(picture.width()).arg(picture.height());
}
