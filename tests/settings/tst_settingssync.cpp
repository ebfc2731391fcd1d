#include "SyncFaults.h"

#include <network/Download.h>
#include <settings/PlayerInfo.h>

#include <examples/ServerProcess.h>
#include <support/Languages.h>
#include <support/Rows.h>

#include <httplib.h>

#include <thread>

namespace {

const QString WEBSERVER = QStringLiteral(WEBSERVER_PATH);
const QString ALL = "Bob=own Zed=z themechips=5 volume=11"_s;
const QString MINE = "Bob=own themechips=5"_s;

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

// All notes, and the user's settings: "nickname=note key=value ...".
QString Local(const QString &user)
{
    const QString list = "SELECT group_concat(r, ' ') FROM (SELECT %1 || '=' || %2 AS r FROM %3 ORDER BY r)"_s;
    const QString notes = list.arg("PIN_cPlayer"_s, "PIN_cNote"_s, "tbl_playerinfo"_s);
    const QString settings = list.arg("URS_cKey"_s, "URS_cValue"_s, "tbl_settings WHERE URS_cUser = lower('%1')"_s);
    return Ask(CPlayerInfoDB::GetInstance(), notes) + " "_s + Ask(CSettingsDB::GetInstance(), settings.arg(user));
}

void Wait()
{
    // Not by QTRY_VERIFY, which sleeps between its looks, and each piece of a long body waits for the event loop.
    while (const auto *request = CSettingsSync::GetInstance()->findChild<CDownload *>())
        QVERIFY(QSignalSpy(request, &QObject::destroyed).wait(60000));
}

void Exchange()
{
    CSettingsSync::GetInstance()->InitiateSync();
    Wait();
    CSettings::GetInstance()->slot_SaveSettings();
}

} // namespace

class tst_settingssync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QString file = m_tree.GetPath("certificate.pem"_s);
        WriteCertificate(file);
        QStringList options{"--database"_s, m_tree.GetPath("web.sqlite"_s), "--key"_s, "k"_s, "--faults"_s};
        m_strHttp = "http://127.0.0.1:%1"_s.arg(StartServer(m_servers[0], WEBSERVER, options));
        options << "--certificate"_s << file << "--private-key"_s << file;
        m_strHttps = "https://127.0.0.1:%1"_s.arg(StartServer(m_servers[1], WEBSERVER, options));
    }

    void cleanupTestCase()
    {
        for (QProcess &server : m_servers)
            server.close();
    }

    void init()
    {
        m_strUser = QLatin1String(QTest::currentTestFunction()) + QString::fromLatin1(QTest::currentDataTag());
        UseMachine("first"_s);
    }

    void cleanup() { DestroySingletons(); }

    void Requests()
    {
        QByteArray received;
        httplib::Server server;
        server.set_keep_alive_max_count(1); // else it waits for more at its end
        const auto handler = [&received](const httplib::Request &request, httplib::Response &answer) {
            received = QByteArray::fromStdString(request.target + ' ' + request.body);
            answer.body = ToJson("{'playerinfostime': 7, 'usersettingstime': '7'}").toStdString();
        };
        const QString link = "http://127.0.0.1:%1/%SESSION%"_s.arg(
            server.Get(".*", handler).Post(".*", handler).bind_to_any_port("127.0.0.1"));
        std::thread thread([&server] { server.listen_after_bind(); });
        CConfig::GetInstance()->SetConfigs({{"link_settingssync"_s, link}});
        Add("volume"_s, "11"_s, 7, "Bob"_s, "'&%\n\u00e4"_s);
        CSettingsSync *sync = CSettingsSync::GetInstance();
        sync->GetLocalTimestamps();
        const QByteArray session(32, 's');
        QVERIFY(sync->SyncToServer(QString::fromLatin1(session + "rest &")));
        Wait();
        QByteArray json = "{'playerinfos': [{'flags': '13', 'nick': 'Bob', 'note': '#', 'tag': '2', 'time': '7'}], "
                          "'playerinfostime': '7', 'usersettings': [{'area': 'sounds', 'key': 'volume', 'time': '7', "
                          "'type': '3', 'value': '11'}], 'usersettingstime': '7'}";
        json = QJsonDocument::fromJson(ToJson(json)).toJson().replace('#', "'&%\\n\u00e4");
        QCOMPARE(received, "/" + session + " session=" + session + "rest &&json=" + json);
        json = sync->CreateJSONforSync(); // what has the server's time is sent if it is a setting
        QVERIFY(json.contains("\"playerinfos\": [\n    ]") && json.contains("volume"));
        sync->StartSync(QString::fromLatin1(session + "rest"));
        Wait();
        QCOMPARE(received, "/" + session + "?session=" + session + "&playerinfos=7&usersettings=7 ");
        server.stop();
        thread.join();
    }

    // What one user has changed since an exchange that no answer came to is no change of the next one's.
    void AnotherUsersChanges()
    {
        CSettingsSync *sync = CSettingsSync::GetInstance();
        sync->InitiateSync();
        CSettings::GetInstance()->SetVolume(1);
        CPlayerModel::GetInstance("Bob"_s)->SetNotes("first"_s);
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s);
        sync->ReadJSON(ToJson("{'usersettings': [{'area': 'sounds', 'key': 'volume', 'value': '11', 'time': 7}], "
                              "'playerinfos': [{'nick': 'Bob', 'note': 'second', 'time': 7}]}"));
        QCOMPARE(CSettings::GetInstance()->GetVolume(), 11);
        QCOMPARE(CPlayerModel::GetInstance("Bob"_s)->GetNotes(), "second"_s);
    }

    // Of two exchanges that overlap each answer leaves alone what has been changed since its own request.
    void OverlappingExchanges()
    {
        httplib::Server server;
        int requests = 0;
        const auto handler = [&requests](const httplib::Request &, httplib::Response &answer) {
            const bool late = ++requests == 1;
            QThread::msleep(late ? 600 : 0);
            answer.body = ToJson("{'usersettings': [{'area': 'sounds', 'key': 'volume', 'value': '11', 'time': 7}], "
                                 "'playerinfos': [{'nick': 'Bob', 'note': 'server', 'time': 7}]}")
                              .toStdString();
            if (!late)
                answer.body =
                    ToJson("{'usersettings': [{'key': 'themechips', 'value': '5', 'time': 7}]}").toStdString();
        };
        server.Get(".*", handler);
        std::thread thread = StartExchange(server);
        CSettingsSync *sync = CSettingsSync::GetInstance();
        QTRY_COMPARE(requests, 1);
        CSettings::GetInstance()->SetVolume(12);
        CSettings::GetInstance()->slot_SaveSettings();
        CPlayerModel::GetInstance("Bob"_s)->SetNotes("own"_s);
        sync->InitiateSync();
        sync->StartSync("second"_s);
        QTRY_COMPARE(CSettings::GetInstance()->GetThemeChips(), 5);
        Wait();
        server.stop();
        thread.join();
        QCOMPARE(CSettings::GetInstance()->GetVolume(), 12);
        QCOMPARE(CPlayerModel::GetInstance("Bob"_s)->GetNotes(), "own"_s);
    }

    // What the user does around the beginning of an exchange, and what holds after an answer of volume=11 and
    // Bob=server at 20, which the server had before: the rows, where the own ones are stamped with 1700000000.
    void UnwrittenChanges_data()
    {
        AddRows<int, int, int, QString>({"before", "written", "after", "expected"},
                                        {{"nothing", 3, 3, 3, "11 11@20"_s},
                                         {"before", 12, 12, 12, "12 12@1700000000"_s},
                                         {"after", 3, 3, 12, "12 12@1700000000"_s},
                                         {"written between", 3, 12, 12, "12 12@1700000000"_s},
                                         {"there and back", 12, 12, 3, "3 3@1700000000"_s},
                                         {"there and back, written between", 12, 3, 3, "3 3@1700000000"_s}});
    }

    void UnwrittenChanges()
    {
        QFETCH(int, before);
        QFETCH(int, written);
        QFETCH(int, after);
        QFETCH(QString, expected);
        CSettings *settings = CSettings::GetInstance();
        settings->Save(m_strUser, "sounds"_s, "volume"_s, 3, 7);
        settings->SetVolume(3, nullptr, false);
        settings->slot_SaveSettings();
        const auto choose = [settings](int volume) {
            if (volume != settings->GetVolume())
                settings->SetVolume(volume);
        };
        choose(before);
        CSettingsSync::GetInstance()->InitiateSync();
        choose(written);
        if (written != before)
            settings->slot_SaveSettings();
        choose(after);
        CSettingsSync::GetInstance()->ReadJSON(
            ToJson("{'usersettings': [{'area': 'sounds', 'key': 'volume', 'value': '11', 'time': 20}]}"));
        settings->slot_SaveSettings();
        const QString row =
            "SELECT URS_cValue || '@' || URS_iTimestamp FROM tbl_settings WHERE URS_cUser = lower('%1') "
            "AND URS_cKey = 'volume'"_s;
        QCOMPARE(QString::number(settings->GetVolume()) + " "_s + Ask(CSettingsDB::GetInstance(), row.arg(m_strUser)),
                 expected);
    }

    // An answer makes the list what the rows say, but for what the user has changed since.
    void BuddiesOfAnswers()
    {
        const auto answer = [](int flags) {
            const char json[] = "{'playerinfos': [{'nick': 'Bob', 'note': 'server', 'flags': %1, 'time': 7}]}";
            CSettingsSync::GetInstance()->ReadJSON(ToJson(json).replace("%1", QByteArray::number(flags)));
        };
        CPlayerLists *lists = CPlayerLists::GetInstance();
        CPlayerModel *bob = CPlayerModel::GetInstance("Bob"_s);
        for (int time = 0; time < 3; ++time)
            answer(1);
        QCOMPARE(*lists->GetBuddyList(), QList<CPlayerModel *>{bob});
        bob->SetRating(3); // which doesn't travel, and isn't stored yet
        answer(0);
        QVERIFY(lists->GetBuddyList()->isEmpty() && !bob->GetBuddy());
        QCOMPARE(bob->GetNotes() + QString::number(bob->GetRating()), "server3"_s);
        lists->AddNewBuddy(bob);
        CSettingsSync::GetInstance()->InitiateSync();
        answer(0); // it isn't the user's latest word
        QVERIFY(lists->GetBuddyList()->contains(bob) && bob->GetBuddy());
        lists->RemoveFromBuddyList("Bob"_s);
        answer(1);
        QVERIFY(lists->GetBuddyList()->isEmpty());
    }

    // An answer knows of no change that came after its request: the rows that it leaves alone get times beyond the
    // server's, or they would never be sent, and one that comes after another login is dropped.
    void LateAnswer_data()
    {
        AddRows<bool>({"loginBetween"}, {{"in the same login", false}, {"after another login", true}});
    }

    void LateAnswer()
    {
        QFETCH(bool, loginBetween);
        httplib::Server server;
        server.Get(".*", [](const httplib::Request &, httplib::Response &answer) {
            QThread::msleep(400);
            answer.body = ToJson("{'usersettingstime': 1700000010, 'playerinfostime': 1700000010, 'playerinfos': [{"
                                 "'nick': 'Bob', 'note': 'server', 'time': 1700000010}]}")
                              .toStdString();
        });
        std::thread thread = StartExchange(server);
        QTest::qWait(100);
        CSettings::GetInstance()->SetVolume(12);
        CSettings::GetInstance()->slot_SaveSettings();
        CPlayerModel::GetInstance("Bob"_s)->SetNotes("own"_s);
        QVERIFY(PlayerInfo::SaveInfo("Bob"_s));
        if (loginBetween) {
            CUserInfo::GetInstance()->SetLoggedIn(QString());
            CUserInfo::GetInstance()->SetLoggedIn(m_strUser);
        }
        Wait();
        server.stop();
        thread.join();
        QCOMPARE(CPlayerModel::GetInstance("Bob"_s)->GetNotes(), "own"_s);
        CCasinoTime::GetInstance()->SetTimeUTCServer(1700000020);
        CSettings::GetInstance()->slot_SaveSettings();
        QTRY_COMPARE_WITH_TIMEOUT(PlayerInfo::GetLastTimestamp(m_strUser), loginBetween ? 1700000000u : 1700000020u,
                                  5000);
        QCOMPARE(CSettings::GetLastTimestamp(m_strUser), loginBetween ? 1700000000u : 1700000020u);
    }

    // What an answer brings isn't for the user whom a listener has put in on the way.
    void AnotherUserDuringAnAnswer()
    {
        connect(CSettings::GetInstance(), &CSettings::signal_VolumeChanged, this, [] {
            CUserInfo::GetInstance()->SetLoggedIn(QString());
            CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s);
        });
        CSettingsSync::GetInstance()->ReadJSON(
            ToJson("{'usersettings': [{'area': 'sounds', 'key': 'volume', 'value': '11', 'time': 7}], "
                   "'playerinfos': [{'nick': 'Bob', 'note': 'n', 'flags': 1, 'time': 7}]}"));
        QCOMPARE(CUserInfo::GetInstance()->GetNickname(), "Zoe"_s);
        QVERIFY(CPlayerLists::GetInstance()->GetBuddyList()->isEmpty());
        QCOMPARE(CPlayerModel::GetInstance("Bob"_s)->GetNotes(), QString());
    }

    void Answers_data()
    {
        QTest::addColumn<QStringList>("fault");
        for (const QStringList &row : Rows(QString::fromUtf8(ToJson(ANSWERS))))
            QTest::newRow(qPrintable(row.at(0))) << QStringList(row.mid(1));
    }

    void Answers()
    {
        QFETCH(QStringList, fault);
        StartTwoMachines(fault);
        Exchange();
        QCOMPARE(Local(m_strUser), fault.value(3, ALL).replace("MINE"_s, MINE));
        Exchange();
        Exchange();
        QCOMPARE(Local(m_strUser), ALL);
        UseMachine("third"_s);
        Exchange();
        QCOMPARE(Local(m_strUser), ALL);
    }

    // What happens while the request for that link is on its way.
    void During_data()
    {
        QTest::addColumn<QStringList>("what");
        for (const QStringList &row : Rows("38|logout;39|logout;38|Zoe;39|Zoe;38|machine;39|machine"_s))
            QTest::newRow(qPrintable(row.join(QLatin1Char(' ')))) << row;
    }

    void During()
    {
        QFETCH(QStringList, what);
        StartTwoMachines({what.at(0), "delay"_s, "400"_s});
        CCasinoTime::GetInstance()->SetTimeUTCServer(500); // what the logout stores isn't newer than the answer
        CSettingsSync::GetInstance()->InitiateSync();
        QTRY_VERIFY(m_links.endsWith(what.at(0)));
        QTest::qWait(100);
        if (what.at(1) == "machine"_s) {
            const QByteArray json = ToJson("&json={'usersettingstime':'2000','playerinfostime':'2000','playerinfos':["
                                           "{'nick':'Bob','note':'late','tag':'0','flags':'0','time':'2000'}]}");
            const std::string body = "session=" + GetSession("other"_s).toStdString() + json.toStdString();
            httplib::Client(m_strHttp.toStdString()).Post("/sync", body, "text/plain");
            Wait();
            Exchange();
            Exchange();
            QCOMPARE(Local(m_strUser), QString(ALL).replace("own"_s, "late"_s));
            return;
        }
        CUserInfo::GetInstance()->SetLoggedIn(what.at(1) == "Zoe"_s ? "Zoe"_s : QString());
        Wait();
        QCOMPARE(m_links.last(), what.at(0));
        QCOMPARE(Local(m_strUser), what.at(0) == "38"_s ? MINE : ALL);
        QVERIFY(what.at(0) == "39"_s || !Local("Zoe"_s).contains("volume=11"_s));
        CUserInfo::GetInstance()->SetLoggedIn(m_strUser);
        QVERIFY(CSettingsSync::GetInstance()->CreateJSONforSync().contains("Bob")); // it isn't known to have arrived
    }

    // There and back.
    void Texts()
    {
        QString text = "\"&json=%SESSION%\r\n\t\\ '+%41"_s;
        for (uint character = 0xabcd; character < 0x110000; character += 0x10000)
            text += QString::fromUcs4(&character, 1);
        Add("playertags"_s, text, 7, text, text);
        const QString more =
            "INSERT INTO tbl_playerinfo (PIN_cUser, PIN_cPlayer, PIN_cNote, PIN_iTimestamp) WITH RECURSIVE"
            " n(i) AS (SELECT %1 UNION ALL SELECT i + 1 FROM n WHERE i < %2) SELECT 'Texts', i, 'n', i FROM n"_s;
        for (int count = 0; count < 100000; count += 20000) {
            Ask(CPlayerInfoDB::GetInstance(), more.arg(count + 1).arg(count + 20000));
            Exchange();
        }
        UseMachine("second"_s);
        const QDeadlineTimer limit(20000);
        Exchange();
        QVERIFY(!limit.hasExpired());
        QCOMPARE(Ask(CPlayerInfoDB::GetInstance(), "SELECT count(*) FROM tbl_playerinfo"_s), "100001"_s);
        QCOMPARE(CPlayerModel::GetInstance(text)->GetNotes(), text);
        QCOMPARE(CSettings::GetInstance()->GetPlayerTags(), text);
    }

    void InstallationsKeys()
    {
        Add("winpos[x]"_s, "1"_s, 1000, "Bob"_s, QString());
        Add("lastusername"_s, "Eve"_s, 1001, "Bob"_s, QString());
        Add("volume"_s, "11"_s, 1002, "Bob"_s, QString());
        Exchange();
        UseMachine("second"_s);
        CSettingsSync::GetInstance()->InitiateSync();
        QTRY_COMPARE(CSettings::GetInstance()->GetVolume(), 11);
        QTRY_COMPARE(CSettings::GetLastTimestamp(m_strUser), 1002u);
        for (int run = 0; run < 3; ++run) { // then in a new process, and behind a login there
            CSettings *settings = CSettings::GetInstance();
            QVERIFY(settings->GetLastUserName().isEmpty() && settings->GetWinPosByKey("x"_s).isEmpty());
            QCOMPARE(settings->GetVolume(), 11);
            QCOMPARE(CSettings::GetSettingList(QString()).size(), 1);
            if (run == 0)
                DestroySingletons();
            else
                CUserInfo::GetInstance()->SetLoggedIn(m_strUser);
        }
    }

private:
    // A new process, on a machine where there is nothing. The server's time is years from the machine's.
    void UseMachine(const QString &machine)
    {
        DestroySingletons();
        QVERIFY(CPlayerInfoDB::GetInstance()->Init() && CSettingsDB::GetInstance()->Init());
        Ask(CPlayerInfoDB::GetInstance(), "DELETE FROM tbl_playerinfo"_s);
        Ask(CSettingsDB::GetInstance(), "DELETE FROM tbl_settings"_s);
        CConfig::GetInstance()->SetConfigs({{"link_settingssync"_s, m_strHttp + "/sync"_s}});
        CCasinoTime::GetInstance()->SetTimeUTCServer(1700000000);
        CUserInfo::GetInstance()->SetLoggedIn(m_strUser);
        m_strMachine = machine;
        m_links.clear();
        connect(CSettingsSync::GetInstance(), &CSettingsSync::signal_RequestSessionForSync, this,
                &tst_settingssync::GiveSession);
    }

    // Sends a first request to that server, which runs in the thread until it is stopped.
    std::thread StartExchange(httplib::Server &server)
    {
        const QString link = "http://127.0.0.1:%1/"_s.arg(server.bind_to_any_port("127.0.0.1"));
        std::thread thread([&server] { server.listen_after_bind(); });
        CConfig::GetInstance()->SetConfigs({{"link_settingssync"_s, link}});
        CSettingsSync *sync = CSettingsSync::GetInstance();
        sync->disconnect(this);
        sync->InitiateSync();
        sync->StartSync("first"_s);
        return thread;
    }

    void StartTwoMachines(const QStringList &fault)
    {
        Add("volume"_s, "11"_s, 1000, "Zed"_s, "z"_s);
        Exchange();
        UseMachine("second"_s);
        Add("themechips"_s, "5"_s, 7, "Bob"_s, "own"_s);
        m_fault = fault;
    }

    // As the host does it. The fault comes first, if it is for this link's request.
    void GiveSession(WebLinks::id link)
    {
        const QString session = GetSession(m_strMachine);
        m_links.append(QString::number(link));
        if (m_fault.value(0) == m_links.last()) {
            QString value = m_fault.at(2);
            value.replace("TO"_s, "sync?session=%1&playerinfos=7&usersettings=7"_s.arg(session.left(32)));
            value.replace("HTTPS"_s, m_strHttps).replace("HTTP"_s, m_strHttp);
            httplib::Params order{{"path", "/sync"}, {"count", value == "/sync"_s ? "4" : "1"}};
            order.insert({{"kind", m_fault.at(1).toStdString()}, {"value", value.toStdString()}});
            Post("/fault", order);
            m_fault.clear();
        }
        if (link == WebLinks::SettingsSyncFetch)
            CSettingsSync::GetInstance()->StartSync(session);
        else
            CSettingsSync::GetInstance()->SyncToServer(session);
    }

    QString GetSession(const QString &machine)
    {
        return Post("/sessions",
                    {{"key", "k"}, {"nickname", m_strUser.toStdString()}, {"machine", machine.toStdString()}});
    }

    QString Post(const char *path, const httplib::Params &form)
    {
        const auto answer = httplib::Client(m_strHttp.toStdString()).Post(path, form);
        return answer && answer->status == 200 ? QString::fromStdString(answer->body) : "failed"_s;
    }

    void Add(const QString &key, const QString &value, uint time, const QString &player, const QString &note)
    {
        CSettings::GetInstance()->Save(m_strUser, "sounds"_s, key, value, time);
        CSettings::GetInstance()->slot_SaveSettings();
        QVERIFY(PlayerInfo::InsertPlayerInfo({m_strUser, player, note, 2, 13, time}));
    }

    CInstallationTree m_tree;
    QProcess m_servers[2];
    QString m_strHttp, m_strHttps, m_strUser, m_strMachine;
    QStringList m_links; // that the library has asked for
    QStringList m_fault; // link, kind and value of the next
};

QTEST_GUILESS_MAIN(tst_settingssync)
#include "tst_settingssync.moc"
