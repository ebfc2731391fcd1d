#include "Client.h"

#include "Look.h"
#include "WebPages.h"

#include <common/Note.h>
#include <common/Texts.h>
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
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>

#include <QCoreApplication>
#include <QDir>
#include <QSqlDatabase>
#include <QTextStream>

#include <algorithm>
#include <tuple>

namespace {

void PrintMessage(const CConsole::SConsoleMessage &message)
{
    QTextStream(stderr) << message.dtTimestamp.toString(Qt::ISODateWithMs) << ' ' << message.strMessage << '\n';
}

// Returns each database with its file and the message for the case that it can't be opened: the key of a text, and
// plain English in case there are no texts. The configuration is first, because the settings need it.
const QVector<std::tuple<CLocalDB *, QString, const char *, const char *>> GetDatabases()
{
    const char *noConfig = "#file# is missing: the client works with its defaults.";
    const char *noTexts = "#file# is missing: texts are shown by their names.";
    const char *notStored = "#file# can't be used: what you do now will be forgotten.";
    return {{CConfigDB::GetInstance(), Pathes::ConfigDB(), "PROBLEM_CONFIG", noConfig},
            {CTranslationDB::GetInstance(), Pathes::LanguageDB(), "", noTexts},
            {CSettingsDB::GetInstance(), Pathes::SettingsDB(), "PROBLEM_USER_FILE", notStored},
            {CPlayerInfoDB::GetInstance(), Pathes::PlayerInfoDB(), "PROBLEM_USER_FILE", notStored},
            {CLobbyListDB::GetInstance(), Pathes::LobbyListDB(), "PROBLEM_USER_FILE", notStored},
            {CHandHistoryDB::GetInstance(), Pathes::HandHistoryDB(), "PROBLEM_USER_FILE", notStored}};
}

QString GetText(const char *key, const char *english)
{
    return CTranslationDB::GetInstance()->IsOpen() ? Texts::Get(key) : QString::fromLatin1(english);
}

// Returns whether Qt has plugins of a kind, without loading them.
bool HasQtPlugins(const QString &kind)
{
    const QStringList folders = QCoreApplication::libraryPaths();
    return std::any_of(folders.begin(), folders.end(), [&](const QString &folder) {
        return !QDir(folder + QLatin1Char('/') + kind).isEmpty(QDir::Files);
    });
}

// Plugins of Qt come first: the linker doesn't notice when they are missing.
QStringList FindProblems()
{
    const char *silent = "Qt's multimedia plugins aren't installed: nothing is heard.";
    const char *forgetful = "Qt's SQLite driver isn't installed: texts are shown by their names, and what you do now "
                            "will be forgotten.";
    QStringList problems;
    if (!HasQtPlugins(QStringLiteral("mediaservice")) && !HasQtPlugins(QStringLiteral("multimedia"))) // 5, and 6
        problems.append(GetText("PROBLEM_SOUND", silent));
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE")))
        return problems << QString::fromLatin1(forgetful);
    for (const auto &[database, file, key, english] : GetDatabases()) {
        if (database->IsOpen())
            continue;
        QString text = GetText(key, english);
        const QString path = QDir::cleanPath(QDir().absoluteFilePath(file));
        problems.append(text.replace(QLatin1String("#file#"), QDir::toNativeSeparators(path)));
    }
    return problems;
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
    QDir().mkpath(Pathes::Tmp());
    for (const auto &entry : GetDatabases())
        std::get<CLocalDB *>(entry)->Init();
    CConfig::GetInstance();
    CUserInfo::GetInstance();
    CSettings::GetInstance();
    CTranslation::GetInstance();
    CCasinoTime::GetInstance();
    CCasinoInfo::GetInstance()->InitCasinoInfo();
    Globals::SetApplicationProxy();
    // Transfers connect directly, so any server that asks for the proxy's password isn't the proxy.
    CNetworkAccessManager *manager = CNetworkAccessManager::GetInstance();
    QObject::disconnect(manager, &QNetworkAccessManager::proxyAuthenticationRequired, manager, nullptr);
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

CClient::CClient(const QString &server, quint16 port)
    : m_host(server, port)
    , m_window(m_host)
{
    QObject::connect(&m_host, &CHost::signal_PageRequested, &WebPages::Open);
    Look::Follow(&m_window);
    m_host.StartPlugins(Pathes::Plugins());
    m_window.CreateViews();
    const QStringList problems = FindProblems();
    for (const QString &problem : problems)
        Note(problem, CConsole::MC_Database);
    m_window.ShowProblems(problems);
    m_window.show();
    m_host.OpenLink();
}

CClient::~CClient()
{
    m_host.Shutdown();
}
