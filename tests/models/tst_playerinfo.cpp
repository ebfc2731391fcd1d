#include <files/Pathes.h>
#include <network/Download.h>
#include <settings/PlayerInfo.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/ShortLock.h>
#include <support/Singletons.h>

#include <QtTest>

#include <httplib.h>

#include <thread>

using TAction = void (*)();
Q_DECLARE_METATYPE(TAction)

namespace {

const QString ANN = "Ann \"O'Hara\""_s;
const char PICTURE[] = "P3 1 1 255 1 2 3\n";
const auto Player = &CPlayerModel::GetInstance; // by nickname

// All that is stored, as "user/player=note,tag,flags,rating,avatar@time ..."; Ann's name is left out.
QString Stored()
{
    QSqlQuery query = CPlayerInfoDB::GetInstance()->GetQuery();
    query.exec(
        "SELECT group_concat(PIN_cUser || '/' || PIN_cPlayer || '=' || PIN_cNote || ',' || PIN_iTagID || ',' || "
        "PIN_iPlayerFlags || ',' || PIN_iRating || ',' || PIN_iCustomAvatar || '@' || PIN_iTimestamp, ' ') "
        "FROM (SELECT * FROM tbl_playerinfo ORDER BY PIN_cPlayer)"_s);
    return query.next() ? query.value(0).toString().remove(ANN) : "failed"_s;
}

} // namespace

class tst_playerinfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A server that has no picture 404, something else as 8, and 9 only after a while.
    void initTestCase()
    {
        m_server.Get("/.*", [this](const httplib::Request &request, httplib::Response &answer) {
            const QString target = QString::fromStdString(request.target);
            QMetaObject::invokeMethod(this, [this, target] { m_requests += target; });
            QThread::msleep(target == "/0/9.png"_s ? 300 : 0);
            answer.status = target == "/0/404.png"_s ? 404 : 200;
            answer.body = target == "/0/8.png"_s ? "none" : PICTURE;
        });
        m_strLink = "http://127.0.0.1:%1/"_s.arg(m_server.bind_to_any_port("127.0.0.1"));
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }

    void cleanupTestCase()
    {
        m_server.stop();
        m_thread.join();
    }

    void init()
    {
        QDir(Pathes::Tmp() + "/CustomAvatars"_s).removeRecursively();
        m_tree.WriteFile("Tmp/CustomAvatars/0/5.png"_s, PICTURE);
        m_tree.WriteFile("Tmp/CustomAvatars/3"_s); // where a folder should be
        QVERIFY(CPlayerInfoDB::GetInstance()->Init() && CSettingsDB::GetInstance()->Init());
        CPlayerInfoDB::GetInstance()->Exec("DELETE FROM tbl_playerinfo"_s);
        CConfig::GetInstance()->SetConfigs({{"playerpicture_link"_s, m_strLink}});
        CCasinoTime::GetInstance()->SetTimeUTCServer(100);
        CUserInfo::GetInstance()->SetLoggedIn(ANN);
        QCoreApplication::processEvents(); // it connects itself to the settings
    }

    void cleanup() { DestroySingletons(); }

    void SaveAndUpdate()
    {
        CPlayerModel *bob = Player("bOB"_s);
        bob->SetLoadedInfo("it's \"so\""_s, 7, 5, 9, true, true);
        bob->SetBuddy(true);
        QVERIFY(PlayerInfo::SaveInfo("bOB"_s));
        QVERIFY(!PlayerInfo::SaveInfo(QString()));
        QCOMPARE(Stored(), "/bOB=it's \"so\",7,13,9,5@100"_s);
        QCOMPARE(PlayerInfo::GetLastTimestamp(ANN), 100u);
        QCOMPARE(PlayerInfo::GetSyncList(ANN, 99).size() + PlayerInfo::GetSyncList(ANN, 100).size(), 1);
        CCasinoTime::GetInstance()->SetTimeUTCServer(109);
        bob->SetLoadedInfo("new"_s, 8, 0, 1, false, false);
        QVERIFY(PlayerInfo::UpdateInfo("bOB"_s));
        QVERIFY(PlayerInfo::UpdateInfo("Carl"_s)); // who has no row
        QCOMPARE(Stored(), "/bOB=new,7,1,1,0@100"_s);
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(std::tuple(PlayerInfo::SaveInfo("bOB"_s), PlayerInfo::UpdateInfo("bOB"_s), PlayerInfo::LoadInfo()),
                 std::tuple(false, false, false));
    }

    void InsertAndLoad()
    {
        QVERIFY(PlayerInfo::InsertPlayerInfo({ANN, "bOB"_s, "old"_s, 2, 1 | 2, 6}));
        QVERIFY(PlayerInfo::InsertPlayerInfo({ANN, "bob"_s, "n"_s, 3, 1 | 8, 7}));
        QCOMPARE(Stored(), "/bOB=old,2,3,0,0@6 /bob=n,3,9,0,0@7"_s);
        QVERIFY(PlayerInfo::LoadInfo());
        QCOMPARE(std::pair(Player("bob"_s)->GetBuddy(), Player("bob"_s)->GetChatBlock()), std::pair(false, true));
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(Stored(), "/bOB=old,2,1,0,0@100 /bob=n,3,9,0,0@100"_s);
    }

    // Only what the table holds is stored, under the nickname by which it does.
    void StraysAndRenamedPlayers()
    {
        Player("Bob"_s)->SetNotes("kept"_s);
        Player("Carl"_s)->SetNickname("Bob"_s);
        CPlayerModel stray("Bob"_s);
        for (const char *now : {"slot_DBSaveTimer", "slot_DBUpdateTimer"}) {
            for (CPlayerModel *model : {&stray, Player("Carl"_s)}) {
                model->SetNotes(QLatin1String(now));
                QVERIFY(QMetaObject::invokeMethod(model, now));
            }
        }
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(Stored(), "/Bob=kept,0,0,0,0@100 /Carl=slot_DBUpdateTimer,0,0,0,0@100"_s);
    }

    // However a login ends, what waits is stored for its user, and for no other.
    void EndsOfALogin_data()
    {
        AddRows<TAction>({"end"},
                         {{"logout", [] { CUserInfo::GetInstance()->SetLoggedIn(QString()); }},
                          {"reset", [] { static_cast<CUserInfoDataModel *>(CUserInfo::GetInstance())->Reset(); }},
                          {"end of the own model", [] { CPlayerModel::DestroyInstance(ANN); }},
                          {"end of all models", &CPlayerModel::DestroyInstances}});
    }

    void EndsOfALogin()
    {
        QFETCH(TAction, end);
        Player("Bob"_s)->SetNotes("Ann's"_s);
        end();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(CSettings::GetInstance()->GetNickname(), QString());
        Player("Carl"_s)->SetNotes("nobody's"_s);
        CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s);
        QCOMPARE(CSettings::GetInstance()->GetNickname(), "Zoe"_s);
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(Stored(), "/Bob=Ann's,0,0,0,0@100"_s);
    }

    // A listener of a load that ends the login doesn't get half a row stored.
    void ListenerOfALoad()
    {
        QVERIFY(PlayerInfo::InsertPlayerInfo({ANN, "Bob"_s, "note"_s, 4, 12, 50}));
        connect(Player("Bob"_s), &CPlayerModel::signal_NotesChanged, this,
                [] { CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s); });
        PlayerInfo::LoadInfo();
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(Stored(), "/Bob=note,4,12,0,0@50"_s);
    }

    // The file is locked at a logout, and another machine's row comes in meanwhile, or an older one is there.
    void KeptRows_data()
    {
        AddRows<uint, uint, QString>({"other", "own", "expected"}, {{"older", 99, 100, "new"_s},
                                                                    {"newer", 101, 100, "old"_s},
                                                                    {"newer than an unknown time", 101, 0, "new"_s}});
    }

    void KeptRows()
    {
        QFETCH(uint, other);
        QFETCH(uint, own);
        QFETCH(QString, expected);
        QVERIFY(PlayerInfo::InsertPlayerInfo({ANN, "Bob"_s, "old"_s, 0, 0, other}));
        CPlayerInfoDB::GetInstance()->Exec("PRAGMA busy_timeout = 10"_s);
        CCasinoTime::GetInstance()->SetTimeUTCServer(own);
        Player("Bob"_s)->SetNotes("new"_s);
        {
            const CShortLock lock(Pathes::PlayerInfoDB());
            CUserInfo::GetInstance()->SetLoggedIn(QString());
            CPlayerModel::DestroyInstances();
            CUserInfo::GetInstance()->SetLoggedIn(ANN);
            QVERIFY(PlayerInfo::LoadInfo());
            QCOMPARE(Player("Bob"_s)->GetNotes(), expected);
        }
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QTRY_VERIFY(Stored().startsWith("/Bob="_s + expected));
        CPlayerInfoDB::GetInstance()->Exec("PRAGMA busy_timeout = 5000"_s);
    }

    void DelayedSaves()
    {
        Player("Carl"_s)->SetTagID(2);
        Player("Bob"_s)->SetNotes("a"_s);
        Player("Other"_s)->SetOnline(true); // which isn't the user's choice
        QTest::qWait(1000);
        const QDeadlineTimer due(3000);
        Player("Bob"_s)->SetRating(3);
        CPlayerLists::GetInstance()->AddNewBuddy(Player("Dora"_s));
        QTest::qWait(1000);
        Player("Bob"_s)->SetRating(3); // nothing new
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), "/Carl=,2,0,0,0@100"_s, 1500);
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), "/Bob=a,0,0,3,0@100 /Carl=,2,0,0,0@100 /Dora=,0,1,0,0@100"_s, 1500);
        QVERIFY(due.hasExpired());
    }

    // A row that the file refuses, and its transaction with it, costs no other player's.
    void RefusedRow()
    {
        CPlayerInfoDB *database = CPlayerInfoDB::GetInstance();
        QVERIFY(database->Exec("CREATE TRIGGER no_bob BEFORE INSERT ON tbl_playerinfo WHEN NEW.PIN_cPlayer = 'Bob'"
                               " BEGIN SELECT RAISE(ROLLBACK, 'refused'); END"_s));
        for (const char *name : {"Abe", "Bob", "Carl"})
            Player(QLatin1String(name))->SetTagID(2);
        QTRY_COMPARE(Stored(), "/Carl=,2,0,0,0@100"_s);
        QVERIFY(database->Exec("DROP TRIGGER no_bob"_s));
        QTRY_COMPARE(Stored(), "/Abe=,2,0,0,0@100 /Bob=,2,0,0,0@100 /Carl=,2,0,0,0@100"_s);
    }

    // Pictures are chosen one after the other; one that comes with the player begins with "=". Then the number of the
    // picture at once and in the end, how often it signals, and the requests.
    void Pictures_data()
    {
        AddRows<QString, QString, uint, uint, int, QString>(
            {"player", "pictures", "now", "end", "signals", "requests"},
            {{"chosen", "Bob"_s, "12345"_s, 5, 12345, 2, "/12/12345.png"_s},
             {"of another player", "Bob"_s, "=12345"_s, 12345, 12345, 2, "/12/12345.png"_s},
             {"own", ANN, "12345"_s, 12345, 12345, 2, "/12/12345.png"_s},
             {"not on the server", "Bob"_s, "404"_s, 5, 5, 0, "/0/404.png"_s},
             {"can't be stored", "Bob"_s, "3000"_s, 5, 5, 0, "/3/3000.png"_s},
             {"no picture", "Bob"_s, "8"_s, 5, 5, 0, "/0/8.png"_s},
             {"another one meanwhile", "Bob"_s, "9 12345"_s, 5, 12345, 2, "/0/9.png /12/12345.png"_s},
             {"none meanwhile", "Bob"_s, "9 0"_s, 0, 0, 1, "/0/9.png"_s}});
    }

    void Pictures()
    {
        QFETCH(QString, player);
        QFETCH(QString, pictures);
        QFETCH(uint, end);
        CPlayerModel *model = Player(player);
        model->SetNewCustomAvatar(5);
        m_requests.clear();
        const QSignalSpy changed(model, &CPlayerModel::signal_CustomAvatarChanged);
        const QStringList ids = pictures.split(QLatin1Char(' '));
        for (const QString &id : ids) {
            const bool comes = id.startsWith(QLatin1Char('='));
            comes ? model->SetCustomAvatar(id.mid(1).toUInt()) : model->SetNewCustomAvatar(id.toUInt());
            QTRY_VERIFY(id != "9"_s || !m_requests.isEmpty());
        }
        QTEST(model->GetCustomAvatar(), "now");
        QTRY_VERIFY(!model->findChild<CDownload *>());
        QCOMPARE(model->GetCustomAvatar(), end);
        QTEST(int(changed.size()), "signals");
        m_requests.removeDuplicates(); // a change of the own setting comes back and asks too
        QTEST(m_requests.join(QLatin1Char(' ')), "requests");
        QCOMPARE(ReadFile(Pathes::CustomAvatar(12345)) == PICTURE, end == 12345);
        if (player == ANN)
            QCOMPARE(CSettings::GetInstance()->GetCustomCurrent(), int(end));
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QVERIFY2(Stored().contains(",0,0,0,%1@"_s.arg(end)), qPrintable(Stored()));
    }

    void OwnAvatars()
    {
        CSettings *settings = CSettings::GetInstance();
        settings->SetCustomCurrent(5);
        settings->SetCartoonAvatar(3);
        QCOMPARE(Player(ANN)->GetCustomAvatar() + Player(ANN)->GetCartoonAvatar(), 5u + 3u);
        Player(ANN)->SetCartoonAvatar(4);
        Player("Bob"_s)->SetCartoonAvatar(9);
        QCOMPARE(settings->GetCartoonAvatar(), 4);
    }

private:
    CInstallationTree m_tree;
    httplib::Server m_server;
    std::thread m_thread;
    QString m_strLink;
    QStringList m_requests;
};

QTEST_GUILESS_MAIN(tst_playerinfo)
#include "tst_playerinfo.moc"
