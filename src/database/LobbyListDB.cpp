#include "LobbyListDB.h"

#include <Singleton_p.h>
#include <files/Pathes.h>

namespace {

// The versions of the file, each of which has a table more than the one before.
enum EVersion : unsigned int {
    VERSION_NONE,
    VERSION_TABLES,
    VERSION_SNGS,
    VERSION_TOURNS,
    VERSION_END // new versions go above this line
};

} // namespace

PLUGININTERFACE_DEFINE_SINGLETON(CLobbyListDB);

const QString CLobbyListDB::strTableNameTable = QStringLiteral("tbl_tablemaininfo");
const QString CLobbyListDB::strTableNameSNG = QStringLiteral("tbl_sngmaininfo");
const QString CLobbyListDB::strTableNameTourn = QStringLiteral("tbl_tournmaininfo");

CLobbyListDB::CLobbyListDB()
    : CLocalDB(Pathes::LobbyListDB(), false, false)
{
    UseWriteAheadLog();
}

unsigned int CLobbyListDB::GetMaxVersion()
{
    return VERSION_END - 1;
}

bool CLobbyListDB::CreateDBVersion(unsigned int version)
{
    switch (version) {
    case VERSION_TABLES:
        return CreateTableTable();
    case VERSION_SNGS:
        return CreateTableSNG();
    case VERSION_TOURNS:
        return CreateTableTourn();
    default:
        return false;
    }
}

bool CLobbyListDB::CreateTableTable()
{
    return CreateTable(QLatin1String("CREATE TABLE ") + strTableNameTable +
                           QLatin1String(" (\n"
                                         "  TMI_iID INTEGER PRIMARY KEY,\n"
                                         "  TMI_iTimestamp INTEGER,\n"
                                         "  TMI_cName TEXT,\n"
                                         "  TMI_cGameType CHAR(4),\n"
                                         "  TMI_cLimit CHAR(1),\n"
                                         "  TMI_cMoneyType CHAR(1),\n"
                                         "  TMI_iSmallBlind INTEGER,\n"
                                         "  TMI_iStakesLow INTEGER,\n"
                                         "  TMI_iStakesHigh INTEGER,\n"
                                         "  TMI_iMaxPlayers INTEGER\n"
                                         ")"),
                       strTableNameTable);
}

bool CLobbyListDB::CreateTableSNG()
{
    return CreateTable(QLatin1String("CREATE TABLE ") + strTableNameSNG +
                           QLatin1String(" (\n"
                                         "  SMI_iID INTEGER PRIMARY KEY,\n"
                                         "  SMI_iTimestamp INTEGER,\n"
                                         "  SMI_cName TEXT,\n"
                                         "  SMI_cGameType CHAR(4),\n"
                                         "  SMI_cLimit CHAR(1),\n"
                                         "  SMI_cMoneyType CHAR(1),\n"
                                         "  SMI_iBuyIn INTEGER,\n"
                                         "  SMI_iFee INTEGER,\n"
                                         "  SMI_iMaxPlayers INTEGER,\n"
                                         "  SMI_iConfigBits INTEGER\n"
                                         ")"),
                       strTableNameSNG);
}

bool CLobbyListDB::CreateTableTourn()
{
    return CreateTable(QLatin1String("CREATE TABLE ") + strTableNameTourn +
                           QLatin1String(" (\n"
                                         "  TRMI_iID INTEGER PRIMARY KEY,\n"
                                         "  TRMI_iTimestamp INTEGER,\n"
                                         "  TRMI_cName TEXT,\n"
                                         "  TRMI_cGameType CHAR(4),\n"
                                         "  TRMI_cLimit CHAR(1),\n"
                                         "  TRMI_cMoneyType CHAR(1),\n"
                                         "  TRMI_iBuyIn INTEGER,\n"
                                         "  TRMI_iFee INTEGER,\n"
                                         "  TRMI_iConfigBits INTEGER\n"
                                         ")"),
                       strTableNameTourn);
}
