#include <database/ConfigDB.h>
#include <files/FileHelpers.h>
#include <files/Pathes.h>
#include <models/PlayerModel.h>
#include <money/MoneySpinner.h>
#include <money/MoneyStrings.h>
#include <network/Download.h>
#include <settings/Config.h>
#include <settings/Settings.h>
#include <sound/SoundManager.h>
#include <time/CasinoTime.h>
#include <translation/TranslationObject.h>
#include <ui/StyleSheet.h>

#include <QCoreApplication>

// Something of each folder but plugin/, which the host in README uses; what doesn't work ends the program.
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const auto require = [](bool works, const char *what) {
        if (!works)
            qFatal("%s doesn't work", what);
    };
    require(!CConfigDB::GetInstance()->IsOpen(), "database");
    require(Globals::GetMD5("abc") == "900150983cd24fb0d6963f7d28e17f72" && Pathes::Tmp().endsWith("/../Tmp"),
            "files");
    require(CConfig::GetInstance()->GetCashierSwapTime() == 5, "settings");
    require(CDownload::FormatBytes(1536) == "1.5 kB", "network");
    require(CSettings::GetInstance()->GetVolume() == 70 && CCasinoTime::GetInstance()->GetTimeUTCServer() == 0,
            "time");
    CPlayerModel player("Ann");
    player.setProperty("strNotes", "careful");
    require(player.GetNotes() == "careful", "models");

    CTranslationObject text;
    require(text.SetText("#n# days") && text.SetPlaceholder("#n#", 2) && text.GetTranslatedText() == "2 days",
            "translation");
    require(CMoneySpinner().GetC2() == "0" && Globals::ExchangeMoneyTo(100, 12500) == 125, "money");
    require(Globals::ReplaceStylePath("./a", "b") == "b./a", "ui");
    require(CSoundManager::GetInstance()->metaObject()->inherits(&QObject::staticMetaObject), "sound");
}
