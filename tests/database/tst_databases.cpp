#include <database/ConfigDB.h>
#include <database/HandHistoryDB.h>
#include <database/LobbyListDB.h>
#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <database/TranslationDB.h>
#include <files/FileHelpers.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>

#include <QtTest>

namespace {

// What only derived classes may call.
struct SAccess : CLocalDB
{
    using CLocalDB::CreateDBVersion;
};

} // namespace

Q_DECLARE_METATYPE(CLocalDB *)

// The databases through their singletons.
class tst_databases : public QObject
{
    Q_OBJECT

    const CInstallationTree m_tree;

private Q_SLOTS:
    void Created_data()
    {
        // The digest of the statements, which are part of the file format to the character; the last two aren't made.
        AddRows<CLocalDB *, unsigned int, QString>(
            {"database", "version", "digest"},
            {{"Tmp/settings.sqlite", CSettingsDB::GetInstance(), 1, "9562f1a8420ef37efce936277ba017cc"_s},
             {"Tmp/playerinfo.sqlite", CPlayerInfoDB::GetInstance(), 2, "56637de4b1c11462b44deac2cbea1ae6"_s},
             {"Tmp/lobbylist.sqlite", CLobbyListDB::GetInstance(), 3, "65a2126ac5fdd0bae85b173961fa8af4"_s},
             {"Tmp/handhistory.sqlite", CHandHistoryDB::GetInstance(), 1, "048e3b1f44f5eb5807d634697d5c8db3"_s},
             {"Resources/config.sqlite", CConfigDB::GetInstance(), 0, QString()},
             {"Resources/language.sqlite", CTranslationDB::GetInstance(), 0, QString()}});
    }

    void Created()
    {
        QFETCH(CLocalDB *, database);
        const QString path = m_tree.GetPath(QLatin1String(QTest::currentDataTag()));
        QFETCH(unsigned int, version);
        QVERIFY(!database->IsOpen());
        QVERIFY(!QFile::exists(path));
        QCOMPARE(database->Init(), version > 0);
        QCOMPARE(QFile::exists(path), version > 0);
        for (const unsigned int unknown : {0u, version + 1})
            QVERIFY(!(database->*&SAccess::CreateDBVersion)(unknown));
        if (version == 0)
            return;
        QHash<QString, QVariant> row;
        QVERIFY(database->SelectOne(row, "tbl_dbinfo"_s, {"DBI_cValue"_s}, {}));
        QCOMPARE(row.value("DBI_cValue"_s), QVariant(QString::number(version)));
        QVERIFY(database->SelectOne(row, "sqlite_master"_s, {"group_concat(sql, char(10)) AS list"_s}, {}));
        const QString statements = row.value("list"_s).toString();
        QFETCH(QString, digest);
        const QString found = Globals::GetMD5(statements.toUtf8());
        QVERIFY2(found == digest, qPrintable(found + " is the digest of\n"_s + statements));
    }
};

QTEST_GUILESS_MAIN(tst_databases)
#include "tst_databases.moc"
