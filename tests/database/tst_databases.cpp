#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/Pathes.h>

#include <support/InstallationTree.h>

#include <QtTest>

namespace {

// What only derived classes may call.
struct SAccess : CLocalDB
{
    using CLocalDB::CreateDBVersion;
    using CLocalDB::GetMaxVersion;
};

// The one value that a query answers.
QString Ask(CLocalDB *database, const char *sql)
{
    QSqlQuery query = database->GetQuery();
    return query.exec(QString::fromLatin1(sql)) && query.next() ? query.value(0).toString() : QString();
}

const char *const SETTINGS_SQL = "CREATE TABLE tbl_settings (\n"
                                 "  URS_cUser CHAR(32),\n"
                                 "  URS_cArea CHAR(64),\n"
                                 "  URS_cKey CHAR(128),\n"
                                 "  URS_cValue TEXT,\n"
                                 "  URS_iType INTEGER, URS_iTimestamp INTEGER DEFAULT 0,\n"
                                 "  PRIMARY KEY(URS_cUser, URS_cArea, URS_cKey)\n"
                                 ")";
const char *const PLAYERINFO_SQL = "CREATE TABLE tbl_playerinfo (\n"
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
                                   ")";

const char *const PLAYERTAGS_COLUMNS =
    "tbl_playertags(PTG_iID INTEGER 1,PTG_cUser CHAR(32) 0,PTG_cTagName CHAR(30) 0,PTG_cColor CHAR(6) 0,"
    "PTG_iTimestamp INTEGER 0)";
const char *const LOBBYLIST_COLUMNS =
    "tbl_tablemaininfo(TMI_iID INTEGER 1,TMI_iTimestamp INTEGER 0,TMI_cName TEXT 0,TMI_cGameType CHAR(4) 0,"
    "TMI_cLimit CHAR(1) 0,TMI_cMoneyType CHAR(1) 0,TMI_iSmallBlind INTEGER 0,TMI_iStakesLow INTEGER 0,"
    "TMI_iStakesHigh INTEGER 0,TMI_iMaxPlayers INTEGER 0)"
    "tbl_sngmaininfo(SMI_iID INTEGER 1,SMI_iTimestamp INTEGER 0,SMI_cName TEXT 0,SMI_cGameType CHAR(4) 0,"
    "SMI_cLimit CHAR(1) 0,SMI_cMoneyType CHAR(1) 0,SMI_iBuyIn INTEGER 0,SMI_iFee INTEGER 0,"
    "SMI_iMaxPlayers INTEGER 0,SMI_iConfigBits INTEGER 0)"
    "tbl_tournmaininfo(TRMI_iID INTEGER 1,TRMI_iTimestamp INTEGER 0,TRMI_cName TEXT 0,TRMI_cGameType CHAR(4) 0,"
    "TRMI_cLimit CHAR(1) 0,TRMI_cMoneyType CHAR(1) 0,TRMI_iBuyIn INTEGER 0,TRMI_iFee INTEGER 0,"
    "TRMI_iConfigBits INTEGER 0)";
const char *const HANDHISTORY_COLUMNS =
    "tbl_pokertablehandhistory(PHH_iID INTEGER 1,PHH_cUser CHAR(32) 0,PHH_cTableName CHAR(40) 0,"
    "PHH_iGameID INTEGER 0,PHH_iTableID INTEGER 0,PHH_iTournamentID INTEGER 0,PHH_cGameType CHAR(4) 0,"
    "PHH_cMoneyType CHAR(1) 0,PHH_cLimitType CHAR(1) 0,PHH_cTableType CHAR(1) 0,PHH_iWonMoney INTEGER 0,"
    "PHH_cPlayers CHAR(400) 0,PHH_iSeatCount INTEGER 0,PHH_iCurrPlayer INTEGER 0,PHH_iStakesLow INTEGER 0,"
    "PHH_iStakesHigh INTEGER 0,PHH_iSmallBlind INTEGER 0,PHH_iBigBlind INTEGER 0,PHH_iTimestamp INTEGER 0,"
    "PHH_iHistoryVersion INTEGER 0,PHH_cHistoryText TEXT 0,PHH_cHistoryData TEXT 0)";

// Of the tables in the order of their steps.
const char *const STATEMENT = "SELECT sql FROM sqlite_master WHERE name IN ('tbl_settings', 'tbl_playerinfo')";
const char *const COLUMNS =
    "SELECT group_concat(name || '(' || (SELECT group_concat(name || ' ' || type || ' ' || pk)"
    " FROM pragma_table_info(tables.name)) || ')', '') FROM sqlite_master AS tables"
    " WHERE type = 'table' AND name NOT IN ('tbl_dbinfo', 'tbl_playerinfo')";

} // namespace

Q_DECLARE_METATYPE(CLocalDB *)

// The databases through their singletons.
class tst_databases : public QObject
{
    Q_OBJECT

    const CInstallationTree m_tree;

private Q_SLOTS:
    void UserFileIsCreated_data()
    {
        QTest::addColumn<CLocalDB *>("database");
        QTest::addColumn<QString>("path");
        QTest::addColumn<unsigned int>("version");
        QTest::addColumn<QString>("tables"); // the statement, or names, types and places in the key of the columns
        const auto add = [](CLocalDB *database, const QString &path, unsigned int version, const char *tables) {
            QTest::newRow(qPrintable(path.section(QLatin1Char('/'), -1)))
                << database << path << version << QString::fromLatin1(tables);
        };
        add(CSettingsDB::GetInstance(), Pathes::SettingsDB(), 1, SETTINGS_SQL);
        add(CPlayerInfoDB::GetInstance(), Pathes::PlayerInfoDB(), 2, PLAYERINFO_SQL);
        add(CLobbyListDB::GetInstance(), Pathes::LobbyListDB(), 3, LOBBYLIST_COLUMNS);
        add(CHandHistoryDB::GetInstance(), Pathes::HandHistoryDB(), 1, HANDHISTORY_COLUMNS);
    }

    void UserFileIsCreated()
    {
        QFETCH(CLocalDB *, database);
        QFETCH(QString, path);
        QFETCH(unsigned int, version);
        QFETCH(QString, tables);
        QVERIFY(!QFile::exists(path) && !database->IsOpen());
        QVERIFY(database->Init() && QFile::exists(path));
        QCOMPARE(Ask(database, "SELECT DBI_cValue FROM tbl_dbinfo"), QString::number(version));
        QCOMPARE(Ask(database, tables.startsWith(QLatin1String("CREATE")) ? STATEMENT : COLUMNS), tables);
        QCOMPARE((database->*&SAccess::GetMaxVersion)(), version);
        QVERIFY(!(database->*&SAccess::CreateDBVersion)(0) && !(database->*&SAccess::CreateDBVersion)(version + 1));
    }

    void TagNumberNeedsNoTag()
    {
        CPlayerInfoDB *database = CPlayerInfoDB::GetInstance();
        QVERIFY(database->Init());
        QVERIFY(database->Insert(CPlayerInfoDB::strTableNameInfo, {{QStringLiteral("PIN_iTagID"), 99}}));
    }

    void SecondStepOfPlayerInfoAlone()
    {
        const CInstallationTree tree;
        CLocalDB file(Pathes::PlayerInfoDB(), false, true);
        QVERIFY(file.Init());
        for (const char *sql :
             {"CREATE TABLE tbl_dbinfo (DBI_cKey, DBI_cValue)", "INSERT INTO tbl_dbinfo VALUES ('version', '1')",
              "CREATE TABLE tbl_playerinfo (PIN_iTagID)", // the first step would drop it
              "INSERT INTO tbl_playerinfo VALUES (1)"})
            QVERIFY(file.Exec(QString::fromLatin1(sql)));
        QSqlDatabase::removeDatabase(Pathes::PlayerInfoDB());

        CPlayerInfoDB::DestroyInstance();
        QVERIFY(!CPlayerInfoDB::IsExisting());
        CPlayerInfoDB *database = CPlayerInfoDB::GetInstance();
        QVERIFY(database->Init());
        QCOMPARE(Ask(database, "SELECT DBI_cValue FROM tbl_dbinfo"), QStringLiteral("2"));
        QCOMPARE(Ask(database, "SELECT count(*) FROM tbl_playerinfo"), QStringLiteral("1"));
        QCOMPARE(Ask(database, COLUMNS), QString::fromLatin1(PLAYERTAGS_COLUMNS));
    }

    void InstalledFilesAreNeverCreated()
    {
        for (CLocalDB *database :
             std::initializer_list<CLocalDB *>{CConfigDB::GetInstance(), CTranslationDB::GetInstance()})
            QVERIFY(!database->Init() && !database->IsOpen() && !(database->*&SAccess::CreateDBVersion)(1));
        QVERIFY(!QFile::exists(Pathes::ConfigDB()) && !QFile::exists(Pathes::LanguageDB()));
    }
};

QTEST_GUILESS_MAIN(tst_databases)
#include "tst_databases.moc"
