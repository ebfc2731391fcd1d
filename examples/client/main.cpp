#include "MainWindow.h"

#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Console.h>
#include <files/Pathes.h>
#include <models/AutoTopUpModel.h>
#include <models/CasinoInfo.h>
#include <models/ChatModel.h>
#include <models/PlayerLists.h>
#include <models/PlayerTaggingModel.h>
#include <models/UserInfo.h>
#include <network/NetworkAccessManager.h>
#include <plugin/GlobalDefines.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <settings/SettingsSync.h>
#include <sound/SoundManager.h>
#include <sound/SoundPlayer.h>
#include <time/CasinoTime.h>
#include <tour/Tour.h>
#include <translation/Translation.h>
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>
#include <ui/StyleSheet.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDesktopServices>
#include <QDir>
#include <QTextStream>

#include <optional>

namespace {

const QString STYLE_SHEET = QStringLiteral("client/client.css"); // a resource

struct SOptions
{
    QString strServer;
    quint16 usPort = 0;
    std::optional<STourOptions> tour;
};

SOptions ParseCommandLine(const QApplication &application)
{
    const QCommandLineOption server(QStringLiteral("server"), QStringLiteral("Address of the game server."),
                                    QStringLiteral("host:port"), QStringLiteral("127.0.0.1:17171"));
    const QCommandLineOption tour(QStringLiteral("tour"),
                                  QStringLiteral("Show everything by itself and leave screenshots in a folder."),
                                  QStringLiteral("folder"));
    const QCommandLineOption gameServer(QStringLiteral("game-server"),
                                        QStringLiteral("Program that the tour starts as game server."),
                                        QStringLiteral("program"));
    const QCommandLineOption tables(QStringLiteral("tables"), QStringLiteral("Tables of that game server."),
                                    QStringLiteral("file"));
    const QCommandLineOption accounts(QStringLiteral("accounts"), QStringLiteral("Accounts of that game server."),
                                      QStringLiteral("file"));
    const QCommandLineOption webServer(QStringLiteral("web-server"),
                                       QStringLiteral("Program that the tour starts as web server."),
                                       QStringLiteral("program"));
    const QCommandLineOption pictures(QStringLiteral("pictures"), QStringLiteral("Avatars of that web server."),
                                      QStringLiteral("folder"));
    const QCommandLineOption second(QStringLiteral("second-machine"),
                                    QStringLiteral("The tour started by that of another client."));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Example client: a host for the plugins of its installation."));
    parser.addHelpOption();
    parser.addOptions({server, tour, gameServer, tables, accounts, webServer, pictures, second});
    parser.process(application);

    SOptions options;
    const QUrl address(QLatin1String("tcp://") + parser.value(server), QUrl::StrictMode);
    options.strServer = address.host();
    options.usPort = static_cast<quint16>(address.port(0));
    if (options.strServer.isEmpty() || options.usPort == 0) {
        QTextStream(stderr) << "--server wants host:port, not \"" << parser.value(server) << "\"\n";
        parser.showHelp(2);
    }
    if (parser.isSet(tour)) {
        const auto path = [&](const QCommandLineOption &option) {
            return QDir().absoluteFilePath(parser.value(option));
        };
        const bool isSecond = parser.isSet(second);
        options.tour = STourOptions{path(tour),      path(gameServer), path(tables),          path(accounts),
                                    path(webServer), path(pictures),   CTour::FindFreePort(), CTour::FindFreePort(),
                                    isSecond};
        options.usPort = isSecond ? options.usPort : options.tour->usPort;
    }
    return options;
}

void PrintMessage(const CConsole::SConsoleMessage &message)
{
    QTextStream(stderr) << message.dtTimestamp.toString(Qt::ISODateWithMs) << ' ' << message.strMessage << '\n';
}

// A database that can't be opened is missed by what it would hold, and by nothing else.
void InitDatabases()
{
    QDir().mkpath(Pathes::Tmp());
    const std::pair<CLocalDB *, QString> databases[] = {
        {CConfigDB::GetInstance(), Pathes::ConfigDB()},
        {CTranslationDB::GetInstance(), Pathes::LanguageDB()},
        {CSettingsDB::GetInstance(), Pathes::SettingsDB()},
        {CPlayerInfoDB::GetInstance(), Pathes::PlayerInfoDB()},
        {CLobbyListDB::GetInstance(), Pathes::LobbyListDB()},
        {CHandHistoryDB::GetInstance(), Pathes::HandHistoryDB()},
    };
    for (const auto &[database, path] : databases) {
        if (!database->Init())
            CConsole::AddMessage(QStringLiteral("%1 can't be used").arg(QDir::cleanPath(path)), CConsole::MC_Database,
                                 CConsole::ML_Warning, QString(), 0);
    }
}

void CreateSingletons()
{
    CConfig::GetInstance();
    CUserInfo::GetInstance();
    CSettings::GetInstance();
    CTranslation::GetInstance();
    CCasinoTime::GetInstance();
    CCasinoInfo::GetInstance()->InitCasinoInfo();
}

void ApplyBrand(QApplication &application)
{
    QString styleSheet;
    if (Globals::GetCssContents(Pathes::ToCommonRes(STYLE_SHEET, false), styleSheet))
        application.setStyleSheet(styleSheet);
    else
        CConsole::AddMessage(QStringLiteral("The brand's style sheet %1 can't be read").arg(STYLE_SHEET),
                             CConsole::MC_General, CConsole::ML_Warning, QString(), 0);
}

// When there is neither window nor plugin any more, and none before those that use it. The settings would take what
// isn't written yet with them.
void DestroySingletons()
{
    CSettings::GetInstance()->slot_SaveSettings(true);
    COptionsDialogManager::DestroyInstance();
    CMenuManager::DestroyInstance();
    CSoundManager::DestroyInstance();
    CSoundPlayer::DestroyInstances();
    CChatModel::DestroyInstance();
    CAutoTopUpModel::DestroyInstance();
    CPlayerTaggingModel::DestroyInstance();
    CCasinoInfo::DestroyInstance();
    CSettingsSync::DestroyInstance();
    CCasinoTime::DestroyInstance();
    CTranslation::DestroyInstance();
    CSettings::DestroyInstance();
    CUserInfo::DestroyInstance();
    CPlayerLists::DestroyInstance();
    CPlayerModel::DestroyInstances();
    CNetworkAccessManager::DestroyInstance();
    CConfig::DestroyInstance();
    CHandHistoryDB::DestroyInstance();
    CLobbyListDB::DestroyInstance();
    CPlayerInfoDB::DestroyInstance();
    CSettingsDB::DestroyInstance();
    CTranslationDB::DestroyInstance();
    CConfigDB::DestroyInstance();
    CConsole::DestroyInstance();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication application(argc, argv);
    const SOptions options = ParseCommandLine(application);
    // The installation is the one that the program lies in, wherever it was started from.
    QDir::setCurrent(QApplication::applicationDirPath());
    if (options.tour && !options.tour->bSecondMachine)
        CTour::MakeInstallation(options.tour->strOutput, options.tour->usWebPort);
    if (options.tour)
        CTour::EnterInstallation(options.tour->strOutput);

    GlobalDefines::RegisterQML();
    QObject::connect(CConsole::GetInstance(), &CConsole::signal_MessageAdded, &PrintMessage);

    InitDatabases();
    CreateSingletons();
    ApplyBrand(application);

    int result = 0;
    {
        CHost host(options.strServer, options.usPort);
        QObject::connect(&host, &CHost::signal_PageRequested, &QDesktopServices::openUrl);
        CMainWindow window(host); // before the plugins, which may ask for something at once
        host.StartPlugins(Pathes::Plugins());
        window.CreateViews();
        window.show();
        host.OpenLink();
        result = options.tour ? CTour(*options.tour, host, window).Run() : QApplication::exec();
        host.Shutdown();
    }
    DestroySingletons();
    return result;
}
