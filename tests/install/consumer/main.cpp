#include <Export.h>
#include <database/ConfigDB.h>
#include <database/DBValue.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/LocalDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Console.h>
#include <files/FileFunctions.h>
#include <files/FileHelpers.h>
#include <files/Pathes.h>
#include <plugin/ConnectionState.h>
#include <plugin/Event.h>
#include <plugin/GlobalDefines.h>
#include <plugin/PacketLayerWrapper.h>
#include <plugin/PluginInterface.h>
#include <plugin/WebLinks.h>
#include <settings/Config.h>
#include <settings/ConfigBase.h>
#include <settings/ConfigTable.h>

#include <QCoreApplication>
#include <QDir>

#include <cstdio>
#include <initializer_list>

namespace {

class CPlugin : public CPluginInterface
{
public:
    QString GetName() const override { return "consumer"; }
    QString GetVersion() const override { return "1.0"; }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override { OpenWebPage(WebLinks::Website, false); }
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }

    void ConnectionStateChanged(EConnectionState::type state) override { m_state = state; }

    EConnectionState::type m_state = EConnectionState::Disconnected;
};

int failures = 0;

void Check(bool done, const char *what)
{
    if (done)
        return;
    ++failures;
    std::fprintf(stderr, "%s doesn't work\n", what);
}

} // namespace

// Something of each public header.
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);

    CConsole::AddMessage("text", CConsole::MC_General, CConsole::ML_Info, "detail", 0);
    Check(CConsole::GetMessages().size() == 1, "Console");
    Check(FileFunctions::GetFilePaths(Pathes::Contents() + "/missing").isEmpty(), "FileFunctions");
    Check(Globals::GetMD5("abc") == "900150983cd24fb0d6963f7d28e17f72", "FileHelpers");
    Check(Pathes::Tmp().endsWith("/../Tmp"), "Pathes");
    Check(Globals::GetGameType("BADU") == GlobalDefines::GT_BADUGI, "GlobalDefines");

    CLocalDB database(QDir::tempPath() + "/there is no such file", true, false);
    Check(!database.Init() && !database.IsOpen(), "LocalDB");
    Check(CLocalDB::Escape("a'b") == "a''b", "Escape");
    Check(DBValue::ToTypeString(DBValue::DBT_Double) == "double", "DBValue");
    // None is open, and nothing on the disk is touched.
    for (CLocalDB *each : std::initializer_list<CLocalDB *>{
             CConfigDB::GetInstance(), CHandHistoryDB::GetInstance(), CLobbyListDB::GetInstance(),
             CPlayerInfoDB::GetInstance(), CSettingsDB::GetInstance(), CTranslationDB::GetInstance()})
        Check(!each->IsOpen(), "Database catalogue");
    CConfigBase config;
    config.SetConfigs({{"cashierswaptime", 7}});
    Check(config.GetCashierSwapTime() == 7, "ConfigBase");
    Check(CConfig::GetInstance()->GetCashierSwapTime() == 5, "Config");
    CConfig::DestroyInstance();

    CPacketLayerWrapper packet("ABCD", 1, 2);
    Check(packet.AddPacket("TAG1", 4) && packet.GetPayloadTag() == "TAG1", "PacketLayerWrapper");

    CPlugin plugin;
    CEvent sent;
    QObject::connect(&plugin, &CPluginInterface::signal_SendEvent, [&sent](const CEvent &e) { sent = e; });
    plugin.Start();
    Check(sent.HasTags("P2ME", "WLID"), "PluginInterface");
    CEvent event = CEvent::Create("M2PE", "SCOC");
    event.data = QByteArray("\2\0\0\0", 4);
    plugin.emit_ReceiveEvent(event);
    Check(plugin.m_state == EConnectionState::Connected, "Event");

    return failures;
}
