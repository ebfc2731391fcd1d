#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/FileHelpers.h>
#include <files/Pathes.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>

#include <QtTest>

namespace {

// What only derived classes may call.
struct SAccess : CLocalDB
{
    using CLocalDB::CreateDBVersion;
};

// The one value that a query answers.
QString Ask(CLocalDB *database, const QString &sql)
{
    QSqlQuery query = database->GetQuery();
    return query.exec(sql) && query.next() ? query.value(0).toString() : QString();
}

} // namespace

// The databases through their singletons.
class tst_databases : public QObject
{
    Q_OBJECT

    const CInstallationTree m_tree;

private Q_SLOTS:
    void UserFilesAreCreated()
    {
        // The digest of the statements, which are part of the file format to the character.
        const std::tuple<CLocalDB *, QString, unsigned int, const char *> databases[] = {
            {CSettingsDB::GetInstance(), Pathes::SettingsDB(), 1, "9562f1a8420ef37efce936277ba017cc"},
            {CPlayerInfoDB::GetInstance(), Pathes::PlayerInfoDB(), 2, "56637de4b1c11462b44deac2cbea1ae6"},
            {CLobbyListDB::GetInstance(), Pathes::LobbyListDB(), 3, "65a2126ac5fdd0bae85b173961fa8af4"},
            {CHandHistoryDB::GetInstance(), Pathes::HandHistoryDB(), 1, "048e3b1f44f5eb5807d634697d5c8db3"}};
        for (const auto &[database, path, version, digest] : databases) {
            QVERIFY(!QFile::exists(path) && !database->IsOpen());
            QVERIFY(database->Init() && QFile::exists(path));
            QCOMPARE(Ask(database, "SELECT DBI_cValue FROM tbl_dbinfo"_s), QString::number(version));
            const QString statements = Ask(database, "SELECT group_concat(sql, char(10)) FROM sqlite_master"_s);
            QVERIFY2(Globals::GetMD5(statements.toUtf8()) == QLatin1String(digest), qPrintable(statements));
            for (const unsigned int unknown : {0u, version + 1})
                QVERIFY(!(database->*&SAccess::CreateDBVersion)(unknown));
        }
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
