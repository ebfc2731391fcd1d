#include "PlayerInfoDB.h"

#include <Singleton_p.h>
#include <files/Pathes.h>

PLUGININTERFACE_DEFINE_SINGLETON(CPlayerInfoDB);

const QString CPlayerInfoDB::strTableNameInfo = QStringLiteral("tbl_playerinfo");
const QString CPlayerInfoDB::strTableNameTags = QStringLiteral("tbl_playertags");

CPlayerInfoDB::CPlayerInfoDB()
    : CLocalDB(Pathes::PlayerInfoDB(), false, false)
{
    UseWriteAheadLog();
}

unsigned int CPlayerInfoDB::GetMaxVersion()
{
    return 2;
}

bool CPlayerInfoDB::CreateDBVersion(unsigned int version)
{
    switch (version) {
    case 1:
        return CreateTablePlayerInfo();
    case 2:
        return CreateTablePlayerTags();
    default:
        return false;
    }
}

bool CPlayerInfoDB::CreateTablePlayerInfo()
{
    return CreateTable(QLatin1String("CREATE TABLE ") + strTableNameInfo +
                           QLatin1String(" (\n"
                                         "  PIN_cUser CHAR(32), -- the nick of the player which created the info\n"
                                         "  PIN_cPlayer CHAR(32), -- nick of the player to which the info belongs\n"
                                         "  PIN_cNote CHAR(60), -- note about the player\n"
                                         "  PIN_iTagID INTEGER DEFAULT 0, -- foreign key to tag\n"
                                         "  PIN_iPlayerFlags INTEGER DEFAULT 0, -- flags about the player\n"
                                         "  PIN_iRating INTEGER DEFAULT 0, -- player's rating\n"
                                         "  PIN_iCustomAvatar INTEGER DEFAULT 0, -- player's custom avatar id\n"
                                         "  PIN_iLastOnline INTEGER, -- the player's last online time\n"
                                         "  PIN_iTimestamp INTEGER, -- timestamp of last change\n"
                                         "  PRIMARY KEY(PIN_cUser, PIN_cPlayer) -- primary key\n"
                                         ")"),
                       strTableNameInfo);
}

bool CPlayerInfoDB::CreateTablePlayerTags()
{
    return CreateTable(QLatin1String("CREATE TABLE ") + strTableNameTags +
                           QLatin1String(" (\n"
                                         "  PTG_iID INTEGER PRIMARY KEY, -- the primary key\n"
                                         "  PTG_cUser CHAR(32), -- nick of the user which created the tag\n"
                                         "  PTG_cTagName CHAR(30), -- name of the tag\n"
                                         "  PTG_cColor CHAR(6), -- color as hex string\n"
                                         "  PTG_iTimestamp INTEGER -- timestamp of last change\n"
                                         ")"),
                       strTableNameTags);
}
