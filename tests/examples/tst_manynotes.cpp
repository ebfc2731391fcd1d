#include <database/PlayerInfoDB.h>
#include <database/SettingsDB.h>
#include <examples/Postgres.h>
#include <examples/ServerProcess.h>
#include <models/UserInfo.h>
#include <network/Download.h>
#include <settings/Config.h>
#include <settings/SettingsSync.h>
#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Singletons.h>
#include <time/CasinoTime.h>

#include <httplib.h>

#include <QDeadlineTimer>
#include <QSignalSpy>
#include <QtTest>

// A user with very many notes, two machines and the example's web server.
class tst_manynotes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void SecondMachineHasThemSoon()
    {
        CPostgres postgres;
        QProcess server;
        QStringList options{"--key"_s, "k"_s, "--database"_s, m_tree.GetPath("web.sqlite"_s)};
        if (qEnvironmentVariable("PLUGININTERFACE_STORE") == "postgres"_s)
            options = options.mid(0, 2) + QStringList{"--store"_s, postgres.Start()};
        m_strServer = "http://127.0.0.1:%1"_s.arg(StartServer(server, QStringLiteral(WEBSERVER_PATH), options));
        UseMachine("first"_s);
        const QString more =
            "INSERT INTO tbl_playerinfo (PIN_cUser, PIN_cPlayer, PIN_cNote, PIN_iTimestamp) WITH RECURSIVE"
            " n(i) AS (SELECT %1 UNION ALL SELECT i + 1 FROM n WHERE i < %2) SELECT 'Ann', i, 'n', i FROM n"_s;
        for (int count = 0; count < 100000; count += 20000) {
            QVERIFY(CPlayerInfoDB::GetInstance()->Exec(more.arg(count + 1).arg(count + 20000)));
            Exchange();
        }
        UseMachine("second"_s);
        const QDeadlineTimer limit(20000);
        Exchange();
        QVERIFY(!limit.hasExpired());
        QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
        QVERIFY(query.exec("SELECT count(*) FROM tbl_playerinfo"_s) && query.next());
        QCOMPARE(query.value(0).toInt(), 100000);
        QCOMPARE(CPlayerModel::GetInstance("100000"_s)->GetNotes(), "n"_s);
        DestroySingletons();
        server.close();
    }

private:
    // A new process, on a machine where there is nothing.
    void UseMachine(const QString &machine)
    {
        DestroySingletons();
        QVERIFY(CPlayerInfoDB::GetInstance()->Init() && CSettingsDB::GetInstance()->Init());
        QVERIFY(CPlayerInfoDB::GetInstance()->Exec("DELETE FROM tbl_playerinfo"_s));
        CConfig::GetInstance()->SetConfigs({{"link_settingssync"_s, m_strServer + "/sync"_s}});
        CCasinoTime::GetInstance()->SetTimeUTCServer(1700000000);
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        connect(CSettingsSync::GetInstance(), &CSettingsSync::signal_RequestSessionForSync, this,
                [this, machine](WebLinks::id link) {
                    const httplib::Params user{{"key", "k"}, {"nickname", "Ann"}, {"machine", machine.toStdString()}};
                    const auto answer = httplib::Client(m_strServer.toStdString()).Post("/sessions", user);
                    const QString session = answer ? QString::fromStdString(answer->body) : QString();
                    if (link == WebLinks::SettingsSyncFetch)
                        CSettingsSync::GetInstance()->StartSync(session);
                    else
                        CSettingsSync::GetInstance()->SyncToServer(session);
                });
    }

    static void Exchange()
    {
        CSettingsSync::GetInstance()->InitiateSync();
        while (const auto *request = CSettingsSync::GetInstance()->findChild<CDownload *>())
            QVERIFY(QSignalSpy(request, &QObject::destroyed).wait(60000));
    }

    CInstallationTree m_tree;
    QString m_strServer;
};

QTEST_GUILESS_MAIN(tst_manynotes)
#include "tst_manynotes.moc"
