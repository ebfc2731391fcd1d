#include <network/Download.h>
#include <settings/PlayerInfo.h>

#include <support/Languages.h>
#include <support/ShortLock.h>

#include <httplib.h>

#include <thread>

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

    void Store()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        CPlayerModel *bob = Player("bOB"_s);
        bob->SetLoadedInfo("it's \"so\""_s, 7, 5, 9, true, true);
        bob->SetBuddy(true);
        QVERIFY(PlayerInfo::SaveInfo("bOB"_s) && !PlayerInfo::SaveInfo(QString()));
        QCOMPARE(Stored(), "/bOB=it's \"so\",7,13,9,5@100"_s);
        QCOMPARE(PlayerInfo::GetLastTimestamp(ANN), 100u);
        QVERIFY(PlayerInfo::GetSyncList(ANN, 99).size() == 1 && PlayerInfo::GetSyncList(ANN, 100).isEmpty());
        CCasinoTime::GetInstance()->SetTimeUTCServer(109);
        bob->SetLoadedInfo("new"_s, 8, 0, 1, false, false);
        QVERIFY(PlayerInfo::UpdateInfo("bOB"_s) && PlayerInfo::UpdateInfo("Carl"_s));
        QCOMPARE(Stored(), "/bOB=new,7,1,1,0@100"_s);
        for (const char *now : {"slot_DBSaveTimer", "slot_DBUpdateTimer"}) { // the row comes, and changes
            Player("Dora"_s)->SetRating(now[8] == 'S' ? 2 : 3);
            QVERIFY(QMetaObject::invokeMethod(Player("Dora"_s), now));
            QCOMPARE(Stored(), "/Dora=,0,0,%1,0@109 /bOB=new,7,1,1,0@100"_s.arg(Player("Dora"_s)->GetRating()));
        }
        user->SetLoggedIn(QString()); // stores what waits
        CPlayerInfoDB::GetInstance()->Exec("DELETE FROM tbl_playerinfo WHERE PIN_cPlayer = 'Dora'"_s);
        QVERIFY(!PlayerInfo::SaveInfo("bOB"_s) && !PlayerInfo::UpdateInfo("bOB"_s) && !PlayerInfo::LoadInfo());

        QVERIFY(PlayerInfo::InsertPlayerInfo({ANN, "bOB"_s, "old"_s, 2, 1 | 2, 6}));
        QVERIFY(PlayerInfo::InsertPlayerInfo({ANN, "bob"_s, "n"_s, 3, 1 | 8, 7}));
        QCOMPARE(Stored(), "/bOB=old,2,3,1,0@6 /bob=n,3,9,0,0@7"_s);
        user->SetLoggedIn(ANN);
        QVERIFY(PlayerInfo::LoadInfo() && !Player("bob"_s)->GetBuddy() && Player("bob"_s)->GetChatBlock());
        user->SetLoggedIn(QString());
        QCOMPARE(Stored(), "/bOB=old,2,1,1,0@109 /bob=n,3,9,0,0@109"_s);
        user->SetLoggedIn(ANN);
        CPlayerLists::GetInstance()->RemoveFromBuddyList("bob"_s);
        user->SetLoggedIn("Zoe"_s);
        QVERIFY(Stored().endsWith(" /bob=n,3,8,0,0@109"_s));
    }

    // Only what the table holds is stored, under the nickname by which it does.
    void StraysAndRenamedPlayers()
    {
        Player("Bob"_s)->SetNotes("kept"_s);
        CPlayerModel stray("Bob"_s);
        stray.SetNotes("stray"_s);
        for (const char *now : {"slot_DBSaveTimer", "slot_DBUpdateTimer"})
            QVERIFY(QMetaObject::invokeMethod(&stray, now));
        QCOMPARE(Stored(), QString());
        Player("Carl"_s)->SetNickname("Bob"_s);
        Player("Carl"_s)->SetNotes("renamed"_s);
        QVERIFY(QMetaObject::invokeMethod(Player("Carl"_s), "slot_DBSaveTimer"));
        Player("Carl"_s)->SetNotes("again"_s);
        QVERIFY(QMetaObject::invokeMethod(Player("Carl"_s), "slot_DBUpdateTimer"));
        Player("Dora"_s)->SetNotes("gone"_s);
        CPlayerModel::DestroyInstance("Dora"_s);
        CPlayerModel::DestroyInstance("Nobody"_s);
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(Stored(), "/Bob=kept,0,0,0,0@100 /Carl=again,0,0,0,0@100"_s);
    }

    // However a login ends, what waits is stored for its user, and for no other.
    void EndsOfALogin_data()
    {
        QTest::addColumn<QString>("end");
        for (const char *end : {"logout", "reset", "end of the own model", "end of all models"})
            QTest::newRow(end) << end;
    }

    void EndsOfALogin()
    {
        QFETCH(QString, end);
        CUserInfo *user = CUserInfo::GetInstance();
        Player("Bob"_s)->SetNotes("Ann's"_s);
        if (end == "logout"_s)
            user->SetLoggedIn(QString());
        else if (end == "reset"_s)
            static_cast<CUserInfoDataModel *>(user)->Reset();
        else if (end == "end of the own model"_s)
            CPlayerModel::DestroyInstance(ANN);
        else
            CPlayerModel::DestroyInstances();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!user->IsLoggedIn() && CSettings::GetInstance()->GetNickname().isEmpty());
        Player("Carl"_s)->SetNotes("nobody's"_s);
        user->SetLoggedIn("Zoe"_s);
        QCOMPARE(CSettings::GetInstance()->GetNickname(), "Zoe"_s);
        user->SetLoggedIn(QString());
        QCOMPARE(Stored(), "/Bob=Ann's,0,0,0,0@100"_s);
    }

    // A listener of a load that ends the login, or turns the event loop for long, doesn't get half a row stored.
    void ListenersOfALoad_data()
    {
        QTest::addColumn<bool>("logout");
        QTest::newRow("logout") << true;
        QTest::newRow("event loop") << false;
    }

    void ListenersOfALoad()
    {
        QFETCH(bool, logout);
        QVERIFY(PlayerInfo::InsertPlayerInfo({ANN, "Bob"_s, "note"_s, 4, 12, 50}));
        connect(Player("Bob"_s), &CPlayerModel::signal_NotesChanged, this, [logout] {
            if (logout)
                CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s);
            else
                QTest::qWait(3500);
        });
        PlayerInfo::LoadInfo();
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(Stored(), logout ? "/Bob=note,4,12,0,0@50"_s : "/Bob=note,4,12,0,0@100"_s);
    }

    // Neither another own model nor another object takes what a user has changed.
    void OtherUsers()
    {
        Player("Bob"_s)->SetNotes("Ann's"_s);
        CUserInfo other;
        other.SetLoggedIn("Zoe"_s);
        CUserInfo::GetInstance()->SetPlayerModel(Player("Zed"_s));
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), "/Bob=Ann's,0,0,0,0@100"_s, 5000);
    }

    // The file is locked at a logout, and another machine's row comes in meanwhile, or an older one is there.
    void KeptRows_data()
    {
        QTest::addColumn<uint>("other");
        QTest::addColumn<uint>("own");
        QTest::addColumn<QString>("expected");
        QTest::newRow("older") << 99u << 100u << "new"_s;
        QTest::newRow("of the same second") << 100u << 100u << "new"_s;
        QTest::newRow("newer") << 101u << 100u << "old"_s;
        QTest::newRow("newer than an unknown time") << 101u << 0u << "new"_s;
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
            QVERIFY(Stored().startsWith("/Bob=old"_s));
        }
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QTRY_VERIFY(Stored().startsWith("/Bob="_s + expected));
        CPlayerInfoDB::GetInstance()->Exec("PRAGMA busy_timeout = 5000"_s);
    }

    void DelayedSaves()
    {
        Player("Carl"_s)->SetTagID(2);
        Player("Bob"_s)->SetNotes("a"_s);
        for (const char *field : {"strInfoText", "ucSex", "ulVipLevel", "bOnline", "usCartoonAvatar"})
            QVERIFY(Player("Other"_s)->setProperty(field, 1));
        QTest::qWait(1000);
        const QDeadlineTimer due(3000);
        Player("Bob"_s)->SetRating(3);
        CPlayerLists::GetInstance()->AddNewBuddy(Player("Dora"_s));
        QTest::qWait(1000);
        Player("Bob"_s)->SetRating(3); // nothing new
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), "/Carl=,2,0,0,0@100"_s, 1500);
        QTRY_COMPARE_WITH_TIMEOUT(Stored(), "/Bob=a,0,0,3,0@100 /Carl=,2,0,0,0@100 /Dora=,0,1,0,0@100"_s, 1500);
        QVERIFY(due.hasExpired());
        CCasinoTime::GetInstance()->SetTimeUTCServer(109); // a second write would show
        QTest::qWait(1200);
        Player("Fay"_s)->SetTagID(1);
        CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s);
        QCOMPARE(Stored(), "/Bob=a,0,0,3,0@100 /Carl=,2,0,0,0@100 /Dora=,0,1,0,0@100 /Fay=,1,0,0,0@109"_s);
    }

    // Whose pictures are chosen one after the other, or "=" come with the player. Expected are the number at once
    // and in the end, how often it signals, and the requests.
    void Pictures_data()
    {
        QTest::addColumn<QString>("expected");
        for (const QStringList &row :
             Rows("Bob 12345|5 12345 2 /12/12345.png;Bob =12345|12345 12345 2 /12/12345.png;Bob 404|5 5 0 /0/404.png;"
                  "Ann 12345|12345 12345 2 /12/12345.png;Ann 404|404 404 1 /0/404.png;Bob 3000|5 5 0 /3/3000.png;"
                  "Bob 8|5 5 0 /0/8.png;Bob =8|8 8 1 /0/8.png;Bob 9 12345|5 12345 2 /0/9.png /12/12345.png;"
                  "Bob 9 0|0 0 1 /0/9.png;Bob 9 5|5 5 0 /0/9.png"_s))
            QTest::newRow(qPrintable(row.at(0))) << row.at(1);
    }

    void Pictures()
    {
        QStringList script = QString::fromLatin1(QTest::currentDataTag()).split(QLatin1Char(' '));
        const bool own = script.takeFirst() == "Ann"_s;
        CPlayerModel *player = Player(own ? ANN : "Bob"_s);
        player->SetNewCustomAvatar(5);
        m_requests.clear();
        const QSignalSpy changed(player, &CPlayerModel::signal_CustomAvatarChanged);
        for (const QString &id : qAsConst(script)) {
            const bool comes = id.startsWith(QLatin1Char('='));
            (player->*(comes ? &CPlayerModel::SetCustomAvatar : &CPlayerModel::SetNewCustomAvatar))(
                id.midRef(comes ? 1 : 0).toUInt());
            QTRY_VERIFY(id != "9"_s || !m_requests.isEmpty());
        }
        const unsigned int now = player->GetCustomAvatar();
        QTRY_VERIFY(!player->findChild<CDownload *>());
        const QString id = QString::number(player->GetCustomAvatar());
        if (own) // the change of the setting comes back and asks too
            m_requests.removeDuplicates();
        QTEST("%1 %2 %3 %4"_s.arg(now).arg(id).arg(changed.size()).arg(m_requests.join(QLatin1Char(' '))),
              "expected");
        QCOMPARE(ReadFile(Pathes::CustomAvatar(12345)) == PICTURE, id == "12345"_s);
        QCOMPARE(QDir(Pathes::Tmp() + "/CustomAvatars/0"_s).entryList(QDir::Files), QStringList("5.png"_s));
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QVERIFY(Stored().contains(",0,0,0,"_s + id + "@"_s));
        QVERIFY(!own || CSettings::GetInstance()->GetCustomCurrent() == id.toInt());
    }

    void OwnAvatars()
    {
        CSettings *settings = CSettings::GetInstance();
        settings->SetCustomCurrent(5);
        settings->SetCartoonAvatar(3);
        QVERIFY(Player(ANN)->GetCustomAvatar() == 5 && Player(ANN)->GetCartoonAvatar() == 3);
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
