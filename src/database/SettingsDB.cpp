#include "SettingsDB.h"

#include <Singleton_p.h>
#include <files/Pathes.h>

PLUGININTERFACE_DEFINE_SINGLETON(CSettingsDB);

const QString CSettingsDB::strTableName = QStringLiteral("tbl_settings");

CSettingsDB::CSettingsDB()
    : CLocalDB(Pathes::SettingsDB(), false, false)
{
    UseWriteAheadLog();
}

unsigned int CSettingsDB::GetMaxVersion()
{
    return 1;
}

bool CSettingsDB::CreateDBVersion(unsigned int version)
{
    switch (version) {
    case 1:
        return CreateTableSettings();
    default:
        return false;
    }
}

bool CSettingsDB::CreateTableSettings()
{
    return CreateTable(QLatin1String("CREATE TABLE ") + strTableName +
                           QLatin1String(" (\n"
                                         "  URS_cUser CHAR(32),\n"
                                         "  URS_cArea CHAR(64),\n"
                                         "  URS_cKey CHAR(128),\n"
                                         "  URS_cValue TEXT,\n"
                                         "  URS_iType INTEGER, URS_iTimestamp INTEGER DEFAULT 0,\n"
                                         "  PRIMARY KEY(URS_cUser, URS_cArea, URS_cKey)\n"
                                         ")"),
                       strTableName);
}
