#include <network/Download.h>
#include <settings/PlayerInfo.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>

#include <QSemaphore>
#include <QtTest>

#include <httplib.h>

#include <thread>

namespace {

// What a server has that another machine has changed.
const char ANSWER[] = "{'usersettings': [{'area': 'sounds', 'key': 'volume', 'value': '11', 'time': 7}],"
                      " 'playerinfos': [{'nick': 'Bob', 'note': 'server', 'flags': 1, 'time': 7}],"
                      " 'usersettingstime': 1700000010, 'playerinfostime': 1700000010}";

QByteArray ToJson(const char *json)
{
    return QByteArray(json).replace('\'', '"');
}

QString Ask(CLocalDB *database, const QString &sql)
{
    QSqlQuery query = database->GetQuery();
    query.exec(sql);
    return query.next() ? query.value(0).toString() : QString();
}

// All notes, and the user's settings: "nickname=note@time key=value@time ...".
QString Local(const QString &user)
{
    const QString list = "SELECT group_concat(r, ' ') FROM (SELECT %1 || '=' || %2 || '@' || %3 AS r FROM %4)"_s;
    const QString notes = list.arg("PIN_cPlayer"_s, "PIN_cNote"_s, "PIN_iTimestamp"_s, "tbl_playerinfo"_s);
    const QString settings = list.arg("URS_cKey"_s, "URS_cValue"_s, "URS_iTimestamp"_s,
                                      "tbl_settings WHERE URS_cUser = lower('%1') ORDER BY URS_cKey"_s);
    return Ask(CPlayerInfoDB::GetInstance(), notes) + " "_s + Ask(CSettingsDB::GetInstance(), settings.arg(user));
}

void Wait()
{
    // Not by QTRY_VERIFY, which sleeps between its looks, and each piece of a long body waits for the event loop.
    while (const auto *request = CSettingsSync::GetInstance()->findChild<CDownload *>())
        QVERIFY(QSignalSpy(request, &QObject::destroyed).wait(60000));
}

// The operator's web server, in a thread of its own and at the configured address: each request waits until the test
// answers it. Its certificate has expired, which doesn't matter.
class CServer
{
public:
    explicit CServer(const QString &path = "/"_s)
    {
        const auto handle = [this](const httplib::Request &request, httplib::Response &answer) {
            m_received = QByteArray::fromStdString(request.target + ' ' + request.body);
            m_arrived.release();
            m_answered.acquire();
            answer.body = m_answer.toStdString();
        };
        m_server.set_keep_alive_max_count(1); // else it waits for more at its end
        m_server.Get(".*", handle).Post(".*", handle);
        const int port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
        CConfig::GetInstance()->SetConfigs({{"link_settingssync"_s, "https://127.0.0.1:%1"_s.arg(port) + path}});
    }
    ~CServer()
    {
        m_answered.release();
        m_server.stop();
        m_thread.join();
    }
    QByteArray Receive()
    {
        const bool arrived = QTest::qWaitFor([this] { return m_arrived.tryAcquire(); });
        return arrived ? m_received : "nothing";
    }
    void Answer(const QByteArray &json)
    {
        m_answer = json;
        m_answered.release();
        Wait();
    }

private:
    httplib::SSLServer m_server{CERTIFICATE_PATH, CERTIFICATE_PATH}; // and its key
    std::thread m_thread;
    QSemaphore m_arrived, m_answered;
    QByteArray m_received, m_answer;
};

} // namespace

class tst_settingssync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_strUser = QLatin1String(QTest::currentTestFunction());
        UseNewMachine();
    }

    void cleanup() { DestroySingletons(); }

    void Requests()
    {
        CServer server("/%SESSION%"_s);
        Add("volume"_s, "11"_s, 7, "Bob"_s, "'&%\n\u00e4"_s);
        CSettingsSync *sync = CSettingsSync::GetInstance();
        sync->GetLocalTimestamps();
        const QByteArray session(32, 's');
        QVERIFY(sync->SyncToServer(QString::fromLatin1(session + "rest &")));
        QByteArray json = "{'playerinfos': [{'flags': '13', 'nick': 'Bob', 'note': '#', 'tag': '2', 'time': '7'}], "
                          "'playerinfostime': '7', 'usersettings': [{'area': 'sounds', 'key': 'volume', 'time': '7', "
                          "'type': '3', 'value': '11'}], 'usersettingstime': '7'}";
        json = QJsonDocument::fromJson(ToJson(json)).toJson().replace('#', "'&%\\n\u00e4");
        QCOMPARE(server.Receive(), "/" + session + " session=" + session + "rest &&json=" + json);
        server.Answer("{}");
        sync->StartSync(QString::fromLatin1(session + "rest"));
        QCOMPARE(server.Receive(), "/" + session + "?session=" + session + "&playerinfos=7&usersettings=7 ");
        server.Answer("{}");
    }

    // What an answer acknowledges isn't sent again, but for settings of the server's own time.
    void Acknowledgements_data()
    {
        AddRows<QByteArray, bool>({"answer", "acknowledged"},
                                  {{"both times", "{'playerinfostime': 7, 'usersettingstime': '7'}", true},
                                   {"one time", "{'playerinfostime': 7}", false},
                                   {"no JSON", "<html>", false}});
    }

    void Acknowledgements()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, acknowledged);
        CServer server;
        Add("volume"_s, "11"_s, 7, "Bob"_s, "own"_s);
        QVERIFY(CSettingsSync::GetInstance()->SyncToServer("session"_s));
        QVERIFY(server.Receive().contains("Bob"));
        server.Answer(ToJson(answer));
        const QByteArray next = CSettingsSync::GetInstance()->CreateJSONforSync();
        QCOMPARE(next.contains("Bob"), !acknowledged);
        QVERIFY(next.contains("volume"));
    }

    // What one user has changed since an exchange that wasn't answered is no change of the next one's.
    void AnotherUsersChanges()
    {
        CSettingsSync *sync = CSettingsSync::GetInstance();
        sync->InitiateSync();
        CSettings::GetInstance()->SetVolume(1);
        CPlayerModel::GetInstance("Bob"_s)->SetNotes("first"_s);
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s);
        sync->ReadJSON(ToJson(ANSWER));
        QCOMPARE(CSettings::GetInstance()->GetVolume(), 11);
        QCOMPARE(CPlayerModel::GetInstance("Bob"_s)->GetNotes(), "server"_s);
    }

    // An answer makes the list what the rows say, but for what the user has changed since.
    void BuddiesOfAnswers()
    {
        const auto answer = [](const char *flags) {
            CSettingsSync::GetInstance()->ReadJSON(ToJson(ANSWER).replace("flags\": 1", flags));
        };
        using TBuddies = QList<CPlayerModel *>;
        const TBuddies &buddies = *CPlayerLists::GetInstance()->GetBuddyList();
        CPlayerModel *bob = CPlayerModel::GetInstance("Bob"_s);
        answer("flags\": 1");
        QCOMPARE(buddies, TBuddies{bob});
        bob->SetRating(3); // which doesn't travel, and isn't stored yet
        answer("flags\": 0");
        QCOMPARE(buddies, TBuddies());
        QCOMPARE(bob->GetNotes() + QString::number(bob->GetRating()), "server3"_s);
        CSettingsSync::GetInstance()->InitiateSync();
        CPlayerLists::GetInstance()->AddNewBuddy(bob);
        answer("flags\": 0"); // it isn't the user's latest word
        QCOMPARE(buddies, TBuddies{bob});
    }

    // An answer leaves alone what has been changed since its request, or was still unwritten then. These rows get
    // times beyond the server's, or they would never be sent. Nothing of it is for another login than that of the
    // request.
    void LateAnswers_data()
    {
        AddRows<bool, QStringList, uint>({"before", "logins", "time"},
                                         {{"in the same login", false, {}, 1700000020},
                                          {"in the same login, unwritten before", true, {}, 1700000020},
                                          {"of another user", false, {"Zoe"_s}, 1700000000},
                                          {"in a later login", false, {QString(), "LateAnswers"_s}, 1700000000}});
    }

    void LateAnswers()
    {
        QFETCH(bool, before);
        QFETCH(QStringList, logins);
        QFETCH(uint, time);
        CServer server;
        const auto change = [] {
            CSettings::GetInstance()->SetVolume(12);
            CPlayerModel::GetInstance("Bob"_s)->SetNotes("own"_s);
        };
        if (before)
            change();
        CSettingsSync::GetInstance()->InitiateSync();
        CSettingsSync::GetInstance()->StartSync("session"_s);
        server.Receive();
        if (!before)
            change();
        CSettings::GetInstance()->slot_SaveSettings();
        QVERIFY(PlayerInfo::SaveInfo("Bob"_s));
        for (const QString &user : qAsConst(logins))
            CUserInfo::GetInstance()->SetLoggedIn(user);
        CSettingsSync::GetInstance()->GetLocalTimestamps(); // another exchange begins, which knows of the changes
        server.Answer(ToJson(ANSWER));
        QCOMPARE(CSettings::GetInstance()->GetVolume(), 12);
        CCasinoTime::GetInstance()->SetTimeUTCServer(1700000020);
        CUserInfo::GetInstance()->SetLoggedIn(QString()); // which stores what waits
        QCOMPARE(Local(m_strUser), "Bob=own@%1 volume=12@%1"_s.arg(time));
    }

    // What an answer brings isn't for the user whom a listener has put in on the way.
    void AnotherUserDuringAnAnswer()
    {
        connect(CSettings::GetInstance(), &CSettings::signal_VolumeChanged, this, [] {
            CUserInfo::GetInstance()->SetLoggedIn(QString());
            CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s);
        });
        CSettingsSync::GetInstance()->ReadJSON(ToJson(ANSWER));
        QCOMPARE(CUserInfo::GetInstance()->GetNickname(), "Zoe"_s);
        QCOMPARE(CPlayerModel::GetInstance("Bob"_s)->GetNotes(), QString());
    }

    void Answers_data()
    {
        const QString own = "Bob=own@7 themechips=5@7"_s;
        AddRows<QByteArray, QString>(
            {"answer", "expected"},
            {{"cut off", "{'usersettings':[{'area':'sounds','key':'volume','value':'9','time':9}]", own},
             {"other types", "{'usersettingstime':{},'playerinfos':'x','usersettings':[2,{'key':'v','value':[]}]}",
              own},
             {"no keys", "{'usersettings':[{}],'playerinfos':[1,{'note':'x'},{'nick':'Zed'}]}",
              "Bob=own@7 Zed=@0 themechips=5@7"_s}});
    }

    void Answers()
    {
        QFETCH(QByteArray, answer);
        Add("themechips"_s, "5"_s, 7, "Bob"_s, "own"_s);
        CSettingsSync::GetInstance()->ReadJSON(ToJson(answer));
        CSettings::GetInstance()->slot_SaveSettings();
        QTEST(Local(m_strUser), "expected");
    }

    // There and back.
    void Texts()
    {
        QString text = "\"&json=%SESSION%\r\n\t\\ '+%41"_s;
        for (char32_t character = 0xabcd; character < 0x110000; character += 0x10000)
            text += QString::fromUcs4(&character, 1);
        Add("playertags"_s, text, 7, text, text);
        GoToNewMachine();
        QCOMPARE(CPlayerModel::GetInstance(text)->GetNotes(), text);
        QCOMPARE(CSettings::GetInstance()->GetPlayerTags(), text);
    }

    // What belongs to the installation comes from no other machine, not in a new process either.
    void InstallationsKeys()
    {
        Add("winpos[x]"_s, "1"_s, 1000, "Bob"_s, QString());
        Add("lastusername"_s, "Eve"_s, 1001, "Bob"_s, QString());
        Add("volume"_s, "11"_s, 1002, "Bob"_s, QString());
        GoToNewMachine();
        QCOMPARE(CSettings::GetLastTimestamp(m_strUser), 1002u);
        for (int process = 0; process < 2; ++process) {
            CSettings *settings = CSettings::GetInstance();
            QCOMPARE(settings->GetLastUserName(), QString());
            QCOMPARE(settings->GetWinPosByKey("x"_s), QByteArray());
            QCOMPARE(settings->GetVolume(), 11);
            QCOMPARE(CSettings::GetSettingList(QString()).size(), 1);
            DestroySingletons();
        }
    }

private:
    // A new process, on a machine where there is nothing. The server's time is years from the machine's.
    void UseNewMachine() const
    {
        DestroySingletons();
        QVERIFY(CPlayerInfoDB::GetInstance()->Init() && CSettingsDB::GetInstance()->Init());
        CPlayerInfoDB::GetInstance()->Exec("DELETE FROM tbl_playerinfo"_s);
        CSettingsDB::GetInstance()->Exec("DELETE FROM tbl_settings"_s);
        CCasinoTime::GetInstance()->SetTimeUTCServer(1700000000);
        CUserInfo::GetInstance()->SetLoggedIn(m_strUser);
    }

    // Where the server answers with what this one has sent.
    void GoToNewMachine() const
    {
        CSettingsSync::GetInstance()->GetLocalTimestamps();
        const QByteArray sent = CSettingsSync::GetInstance()->CreateJSONforSync();
        UseNewMachine();
        CSettingsSync::GetInstance()->ReadJSON(sent);
        CSettings::GetInstance()->slot_SaveSettings();
    }

    void Add(const QString &key, const QString &value, uint time, const QString &player, const QString &note)
    {
        CSettings::GetInstance()->Save(m_strUser, "sounds"_s, key, value, time);
        CSettings::GetInstance()->slot_SaveSettings();
        QVERIFY(PlayerInfo::InsertPlayerInfo({m_strUser, player, note, 2, 13, time}));
    }

    CInstallationTree m_tree;
    QString m_strUser;
};

QTEST_GUILESS_MAIN(tst_settingssync)
#include "tst_settingssync.moc"
