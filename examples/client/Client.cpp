#include "Client.h"

#include "Installation.h"
#include "Look.h"
#include "WebPages.h"

#include <common/Note.h>
#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Pathes.h>
#include <models/AutoTopUpModel.h>
#include <models/CasinoInfo.h>
#include <models/ChatModel.h>
#include <models/PlayerLists.h>
#include <models/PlayerTaggingModel.h>
#include <models/UserInfo.h>
#include <network/ApplicationProxy.h>
#include <network/NetworkAccessManager.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <settings/SettingsSync.h>
#include <sound/SoundManager.h>
#include <sound/SoundPlayer.h>
#include <time/CasinoTime.h>
#include <translation/Translation.h>
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>

#include <QCoreApplication>
#include <QTextStream>

namespace {

void PrintMessage(const CConsole::SConsoleMessage &message)
{
    QTextStream(stderr) << message.dtTimestamp.toString(Qt::ISODateWithMs) << ' ' << message.strMessage << '\n';
}

template <typename... Singletons>
void DestroyInstances()
{
    (Singletons::DestroyInstance(), ...);
}

} // namespace

//! [shared]
// The console is created first, so that it receives all messages that follow.
CClient::CShared::CShared()
{
    QObject::connect(CConsole::GetInstance(), &CConsole::signal_MessageAdded, &PrintMessage);
    Installation::MakeUserFolder();
    for (CLocalDB *database : Installation::GetDatabases())
        database->Init();
    CConfig::GetInstance();
    CUserInfo::GetInstance();
    CSettings::GetInstance();
    CTranslation::GetInstance();
    CCasinoTime::GetInstance();
    CCasinoInfo::GetInstance()->InitCasinoInfo();
    Globals::SetApplicationProxy();
    CNetworkAccessManager::GetInstance()->SetProxyCredentialsGuarded(true);
}

// Called when window and plugins are destroyed. Each object is destroyed before those that it uses. The settings
// would lose what isn't written yet.
CClient::CShared::~CShared()
{
    CSettings::GetInstance()->slot_SaveSettings(true);
    DestroyInstances<COptionsDialogManager, CMenuManager, CSoundManager>();
    CSoundPlayer::DestroyInstances();
    DestroyInstances<CChatModel, CAutoTopUpModel, CPlayerTaggingModel, CCasinoInfo, CSettingsSync, CCasinoTime>();
    DestroyInstances<CTranslation, CSettings, CUserInfo, CPlayerLists>();
    CPlayerModel::DestroyInstances();
    DestroyInstances<CNetworkAccessManager, CConfig>();
    DestroyInstances<CHandHistoryDB, CLobbyListDB, CPlayerInfoDB, CSettingsDB, CTranslationDB, CConfigDB>();
    CConsole::DestroyInstance();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
//! [shared]

CClient::CClient(const SServer &server)
    : m_host(server.strHost, server.usPort)
    , m_window(m_host)
{
    QString trustError;
    const CServerTrust trust = Installation::ReadTrust(server.strAuthority, &trustError);
    CNetworkAccessManager::GetInstance()->SetServerTrust(trust);
    m_host.SetTrust(trust, server.bPlain);
    QObject::connect(&m_host, &CHost::signal_PageRequested, &WebPages::Open);
    Look::Follow(&m_window);
    m_host.StartPlugins(Pathes::Plugins());
    m_window.CreateViews();
    const auto problems = Installation::FindProblems(m_host.GetPluginManager(), trustError);
    for (const Installation::SProblem &problem : problems)
        Note(problem.strText, CConsole::MC_General);
    const QStringList openFiles = Installation::FindOpenFiles();
    for (const QString &file : openFiles)
        Note(QStringLiteral("Other users of this machine can open %1").arg(file), CConsole::MC_Database);
    const auto open = [this] {
        m_window.show();
        m_host.OpenLink();
    };
    if (problems.isEmpty())
        open();
    else
        Installation::ShowProblems(problems, &m_window, open);
}

CClient::~CClient()
{
    m_host.Shutdown();
}
