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
#include <models/AutoTopUpModel.h>
#include <models/CasinoInfo.h>
#include <models/ChatModel.h>
#include <models/DataModel.h>
#include <models/PlayerDataModel.h>
#include <models/PlayerDataTable.h>
#include <models/PlayerLists.h>
#include <models/PlayerModel.h>
#include <models/PlayerTaggingModel.h>
#include <models/UserInfo.h>
#include <models/UserInfoDataModel.h>
#include <models/UserInfoDataTable.h>
#include <money/MoneySpinner.h>
#include <money/MoneySpinnerDataModel.h>
#include <money/MoneySpinnerDataTable.h>
#include <money/MoneySpinnerWidget.h>
#include <money/MoneyStrings.h>
#include <network/ApplicationProxy.h>
#include <network/Download.h>
#include <network/NetworkAccessManager.h>
#include <network/WebRequest.h>
#include <plugin/ConnectionState.h>
#include <plugin/Event.h>
#include <plugin/GlobalDefines.h>
#include <plugin/PacketLayerWrapper.h>
#include <plugin/PluginInterface.h>
#include <plugin/WebLinks.h>
#include <settings/Config.h>
#include <settings/ConfigBase.h>
#include <settings/ConfigTable.h>
#include <settings/PlayerInfo.h>
#include <settings/Settings.h>
#include <settings/SettingsBase.h>
#include <settings/SettingsSync.h>
#include <settings/SettingsTable.h>
#include <sound/SoundManager.h>
#include <sound/SoundPlayer.h>
#include <time/CasinoTime.h>
#include <time/CountDown.h>
#include <translation/Translation.h>
#include <translation/TranslationItem.h>
#include <translation/TranslationObject.h>
#include <ui/Action.h>
#include <ui/Menu.h>
#include <ui/MenuManager.h>
#include <ui/OptionsDialogManager.h>
#include <ui/OptionsPage.h>
#include <ui/ScreenPlacement.h>
#include <ui/StyleSheet.h>
#include <ui/TableView.h>
#include <ui/TextColor.h>

#include <QCoreApplication>

// Something of each folder; what doesn't work ends the program.
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const auto require = [](bool works, const char *what) {
        if (!works)
            qFatal("%s doesn't work", what);
    };
    require(!CConfigDB::GetInstance()->IsOpen() && CLocalDB::Escape("a'b") == "a''b", "database");
    require(Globals::GetMD5("abc") == "900150983cd24fb0d6963f7d28e17f72" && Pathes::Tmp().endsWith("/../Tmp"),
            "files");
    require(CConfig::GetInstance()->GetCashierSwapTime() == 5, "settings");
    require(CDownload::FormatBytes(1536) == "1.5 kB" && !Globals::SetApplicationProxy(), "network");
    require(CSettings::GetInstance()->GetVolume() == 70 && CCasinoTime::GetInstance()->GetTimeUTCServer() == 0,
            "time");
    CPlayerModel player("Ann");
    player.setProperty("strNotes", "careful");
    require(player.GetNotes() == "careful" && !CUserInfo::GetInstance()->IsLoggedIn(), "models");

    CTranslationObject text;
    require(text.SetText("#n# days") && text.SetPlaceholder("#n#", 2) && text.GetTranslatedText() == "2 days",
            "translation");
    require(CMoneySpinner().GetC2() == "0" && Globals::ExchangeMoneyTo(100, 12500) == 125, "money");

    CPacketLayerWrapper packet("ABCD", 1, 2);
    require(packet.AddPacket("TAG1", 4) && packet.GetPayloadTag() == "TAG1", "plugin");
    require(CEvent::Create("M2PE", "SCOC").HasTags("M2PE", "SCOC"), "CEvent");
    require(Globals::GetGameType("BADU") == GlobalDefines::GT_BADUGI, "GlobalDefines");
    require(CPluginInterface::staticMetaObject.inherits(&QObject::staticMetaObject), "CPluginInterface");
}
