#include "HandHistoryDB.h"

#include <Singleton_p.h>
#include <files/Pathes.h>

PLUGININTERFACE_DEFINE_SINGLETON(CHandHistoryDB);

const QString CHandHistoryDB::strTableName = QStringLiteral("tbl_pokertablehandhistory");

CHandHistoryDB::CHandHistoryDB()
    : CLocalDB(Pathes::HandHistoryDB(), false, false)
{
    UseWriteAheadLog();
}

unsigned int CHandHistoryDB::GetMaxVersion()
{
    return 1;
}

bool CHandHistoryDB::CreateDBVersion(unsigned int version)
{
    switch (version) {
    case 1:
        return CreateTableHandHistory();
    default:
        return false;
    }
}

bool CHandHistoryDB::CreateTableHandHistory()
{
    return CreateTable(
        QLatin1String("CREATE TABLE ") + strTableName +
            QLatin1String(" (\n"
                          "  PHH_iID INTEGER PRIMARY KEY, -- the primary key\n"
                          "  PHH_cUser CHAR(32), -- nick of the user which created the handhistory\n"
                          "  PHH_cTableName CHAR(40), -- name of the table\n"
                          "  PHH_iGameID INTEGER, -- id of the game\n"
                          "  PHH_iTableID INTEGER, -- id of the table\n"
                          "  PHH_iTournamentID INTEGER, -- id of the tournament\n"
                          "  PHH_cGameType CHAR(4), -- table gametype\n"
                          "  PHH_cMoneyType CHAR(1), -- table moneytype\n"
                          "  PHH_cLimitType CHAR(1), -- table limittype\n"
                          "  PHH_cTableType CHAR(1), -- table tabletype\n"
                          "  PHH_iWonMoney INTEGER, -- won money on table in table currentcy\n"
                          "  PHH_cPlayers CHAR(400), -- list of players on table seperated with \",\"\n"
                          "  PHH_iSeatCount INTEGER, -- table seatcount\n"
                          "  PHH_iCurrPlayer INTEGER, -- current playercount\n"
                          "  PHH_iStakesLow INTEGER, -- stakes low value\n"
                          "  PHH_iStakesHigh INTEGER, -- stakes high value\n"
                          "  PHH_iSmallBlind INTEGER, -- small blind value\n"
                          "  PHH_iBigBlind INTEGER, -- big blind value\n"
                          "  PHH_iTimestamp INTEGER, -- server timestamp of creation\n"
                          "  PHH_iHistoryVersion INTEGER, -- version of the stored history\n"
                          "  PHH_cHistoryText TEXT, -- handhistory text\n"
                          "  PHH_cHistoryData TEXT -- handhistory as binary data\n"
                          ")"),
        strTableName);
}
