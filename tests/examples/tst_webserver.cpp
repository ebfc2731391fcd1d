#include "Postgres.h"
#include "ServerProcess.h"

#include <database/LocalDB.h>

#include <support/Literal.h>
#include <support/Rows.h>

#include <QTcpSocket>
#include <QtTest>

#include <httplib.h>

namespace {

const char FORM[] = "application/x-www-form-urlencoded";

// The store as servers of those versions have left it.
const QStringList FROM_5_TO_4{"DROP INDEX idx_session_expiry"_s, "DROP INDEX idx_session_owner"_s,
                              "UPDATE tbl_dbinfo SET DBI_cValue = '4' WHERE DBI_cKey = 'version'"_s};
const QStringList FROM_4_TO_2{
    "CREATE TABLE held2 (HLD_cList TEXT, HLD_cMachine TEXT, HLD_cKey TEXT, HLD_cContent TEXT,"
    " HLD_iOffer INTEGER, PRIMARY KEY(HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent))"_s,
    "INSERT INTO held2 SELECT HLD_cList, HLD_cMachine, HLD_cKey, HLD_cContent, HLD_iOffer FROM tbl_held"_s,
    "INSERT OR IGNORE INTO held2 SELECT HLD_cList, HLD_cMachine, HLD_cKey,"
    " '{\"flags\":0,\"note\":\"\",\"tag\":0}', 0 FROM tbl_held WHERE HLD_bEmpty"_s,
    "DROP TABLE tbl_held"_s,
    "ALTER TABLE held2 RENAME TO tbl_held"_s,
    "CREATE TABLE session2 (SES_cID TEXT PRIMARY KEY, SES_cRest TEXT, SES_cUser TEXT, SES_cMachine TEXT,"
    " SES_iExpiry INTEGER)"_s,
    "INSERT INTO session2 SELECT SES_cID, SES_cRest, SES_cUser, SES_cMachine, SES_iExpiry"
    " FROM tbl_session"_s,
    "DROP TABLE tbl_session"_s,
    "ALTER TABLE session2 RENAME TO tbl_session"_s,
    "ALTER TABLE tbl_machine DROP COLUMN MAC_iSession"_s,
    "UPDATE tbl_dbinfo SET DBI_cValue = '2' WHERE DBI_cKey = 'version'"_s};

// In which nothing comes twice, so that it stays long however it is kept.
QString MakeLongNote()
{
    QString note = "'\\\\\"\u00e9$1?"_s;
    for (int i = 0; i < 100; ++i)
        note += QString::fromLatin1(
            QCryptographicHash::hash(QByteArray::number(i), QCryptographicHash::Sha256).toBase64());
    return note.remove(u'=');
}

} // namespace

// PLUGININTERFACE_STORE=postgres has the store there, instead of in a file.
class tst_webserver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir(m_dir.path()).mkpath("pictures/5"_s));
        for (const QString &name : {"pictures/5/5001.png"_s, "pictures/5/4999.png"_s, "secret.png"_s}) {
            QFile file(m_dir.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("png") == 3);
        }
        if (qEnvironmentVariable("PLUGININTERFACE_STORE") == "postgres"_s) {
            m_pPostgres = std::make_unique<CPostgres>();
            m_strAddress = m_pPostgres->Start();
            QVERIFY(!m_strAddress.isEmpty());
        }
        Start();
    }

    void cleanupTestCase() { m_server.close(); }

    // Requests are method, target, and body; in a body S stands for a session with what follows it, in a target for
    // what of it goes there.
    void Answers_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("status");
        const auto row = [](int status, const QByteArray &request) {
            QTest::newRow(request.left(100)) << request << status;
        };
        const auto json = [&row](int status, const char *change, const QByteArray &to) {
            QByteArray rows =
                R"({"usersettingstime":"7","playerinfostime":"7","usersettings":[{"area":"a","key":"k",)"
                R"("value":"v","time":"7"}],"playerinfos":[{"nick":"n","note":"","tag":"1","flags":"0",)"
                R"("time":"7"}]})";
            row(status, "POST /sync session=S" + rows.replace(change, to));
        };
        row(403, "POST /sessions key=x&nickname=a&machine=m");
        row(400, "POST /sessions key=k+%26&nickname=&machine=m");
        row(400, "POST /sessions key=k+%26&nickname=a&machine=" + QByteArray(65, 'm'));
        row(400, "POST /sessions key=k+%26&nickname=a%00&machine=m");
        for (const char *session : {"s", "%00"})
            row(403, "GET /sync?session=" + QByteArray(session) + "&playerinfos=0&usersettings=0 ");
        row(404, "POST /sync/x session=S");
        for (const char *time : {"", "x", "-1", "1.5", "4102444800"})
            row(400, "GET /sync?session=S&playerinfos=0&usersettings=" + QByteArray(time) + " ");
        row(403, "POST /sync session=s&json={}");
        for (const char *body : {"S", "S[]", "S{}", "S{\"usersettingstime\":\"7\"}"})
            row(400, "POST /sync session=" + QByteArray(body));
        json(400, "\"7\"", "7");
        json(400, "\"tag\":\"1\"", "\"tag\":\"x\"");
        json(400, "\"note\":\"\",", "");
        json(400, "\"nick\":\"n", "\"nick\":\"" + QByteArray(3000, 'n'));
        json(400, "\"playerinfos\":[", "\"playerinfos\":[7,");
        json(400, "}]}", "}]");
        json(413, "}]}", "}]}" + QByteArray(100000, ' '));
        for (const char *path : {"pictures/5/5001.png", "files/5001.png", "healthz", "readyz", "metrics"})
            row(200, "GET /" + QByteArray(path) + " ");
        for (const char *path : {"../secret.png", "..%2F..%2Fsecret.png", ".", "", "5"})
            row(404, "GET /files/" + QByteArray(path) + " ");
        for (const char *path : {"5/4999.png", "5/5002.png", "../secret.png", "5/..%2F..%2Fsecret.png", "", "5/5001"})
            row(404, "GET /pictures/" + QByteArray(path) + " ");
    }

    void Answers()
    {
        QFETCH(QByteArray, request);
        const QByteArray session = AskForSession("Zoë"_s, "desk"_s);
        const QByteArray target = request.split(' ').at(1);
        const std::string body = request.mid(request.indexOf(target) + target.size() + 1)
                                     .replace("=S", "=" + session + "&json=")
                                     .toStdString();
        const std::string path = QByteArray(target).replace("=S", "=" + session.left(32)).toStdString();
        const auto answer = request.startsWith("GET") ? m_pWeb->Get(path) : m_pWeb->Post(path, body, FORM);
        QVERIFY(answer);
        QTEST(answer->status, "status");
        QCOMPARE(Fetch(AskForSession("ZOË"_s, "other"_s), 0), QString()); // nothing is stored
    }

    void SessionsExpire()
    {
        const QByteArray session = AskForSession("Vega"_s, "desk"_s);
        Exec({"UPDATE tbl_session SET SES_iExpiry = 1"_s});
        QCOMPARE(Fetch(session, 0), "403"_s);
        QCOMPARE(Send(session, "x 1 100"_s), 403);
    }

    // What machines send ("machine player note time ...", with ~ for no note), and what they get ("machine
    // time|notes").
    void Arrivals_data()
    {
        AddRows<QString>({"steps"},
                         {// or each new one would cost all of them the whole list
                          {"what a new machine has got isn't sent again",
                           "a x 1 100;a y 2 101;b 0|x=1 y=2;b y 2 101;a 101|;b 101|"_s},
                          {"its own note's stamp tells that the others have come",
                           "b 0|;a x 1 101;b y 1 100;b 100|x=1 y=1;b y 1 102;b x ~ 110;new 0|y=1 x="_s},
                          {"its own second doesn't tell that an answer has come",
                           "b 0|;a x 1 100;b 0|x=1;b 100|;b y 1 100;b 100|y=1 x=1"_s},
                          {"a note may be long, and have any signs", "a x %1 100;b 0|x=%1"_s.arg(MakeLongNote())},
                          {"who has shown a note can take it off",
                           "a x 1 100;b y 1 110;b 110|x=1 y=1;b x 1 100 y 1 110;b x ~ 120;new 0|y=1 x="_s}});
    }

    void Arrivals()
    {
        QFETCH(QString, steps);
        const QString user = QString::fromLatin1(QTest::currentDataTag());
        for (const QStringList &step : ToRows(steps)) {
            const QStringList words = step.at(0).split(u' ');
            const QByteArray session = AskForSession(user, words.at(0));
            const int time = words.constLast().toInt();
            if (words.size() == 2)
                QCOMPARE(Fetch(session, time), step.at(1));
            else
                QCOMPARE(Send(session, step.at(0).section(u' ', 1)), 200);
        }
    }

    // A request that comes late says nothing of what the machine holds by then, so its echo is known as one.
    void LateRequestIsNoLoss()
    {
        const QByteArray late = AskForSession("Spica"_s, "desk"_s);
        const QByteArray desk = AskForSession("Spica"_s, "desk"_s);
        const QByteArray other = AskForSession("Spica"_s, "other"_s);
        QCOMPARE(Send(desk, "x 1 100"_s), 200);
        QCOMPARE(Fetch(other, 0), "x=1"_s);
        QCOMPARE(Send(other, "x 1 100"_s), 200);
        QCOMPARE(Send(other, "x 2 110"_s), 200);
        QCOMPARE(Fetch(late, 0), QString());
        QCOMPARE(Send(desk, "x 1 120"_s), 200);
        QCOMPARE(Fetch(AskForSession("Spica"_s, "new"_s), 0), "x=2"_s);
    }

    // What machines may hold is known as before, and is no change when they send it as new: one has loaded its note
    // again, and the other has none, for the answer with what it has been offered was lost.
    void OlderStoreIsUpgraded()
    {
        const QByteArray first = AskForSession("Lyra"_s, "first"_s);
        const QByteArray holding = AskForSession("Lyra"_s, "holding"_s);
        const QByteArray offered = AskForSession("Lyra"_s, "offered"_s);
        QCOMPARE(Send(first, "x 1 100"_s), 200);
        QCOMPARE(Fetch(holding, 0), "x=1"_s);
        QCOMPARE(Send(holding, "x 1 100"_s), 200);
        QCOMPARE(Send(first, "x 2 110"_s), 200);
        QCOMPARE(Fetch(offered, 0), "x=2"_s);
        m_server.kill();
        QVERIFY(m_server.waitForFinished());
        Exec(m_pPostgres ? FROM_5_TO_4 : FROM_5_TO_4 + FROM_4_TO_2);
        Start();
        QCOMPARE(Send(holding, "x 1 120"_s), 200);
        QCOMPARE(Send(offered, "x ~ 130"_s), 200);
        QCOMPARE(Fetch(AskForSession("Lyra"_s, "new"_s), 0), "x=2"_s);
        Exec(FROM_5_TO_4); // it can, so that was made
    }

    // Who asks meanwhile is told so, and can ask the same again.
    void StoreGoesAwayAndComesBack()
    {
        const QByteArray session = AskForSession("Altair"_s, "desk"_s);
        QCOMPARE(Send(session, "x 1 100"_s), 200);
        CLocalDB lock(m_dir.filePath("db"_s), true, true);
        QVERIFY(m_pPostgres ? m_pPostgres->Tell("kill") : lock.Init() && lock.Exec("BEGIN EXCLUSIVE"_s));
        m_pWeb->set_read_timeout(20); // the server waits 5 s for a file
        QCOMPARE(Send(session, "x 2 110"_s), 503);
        QCOMPARE(m_pWeb->Get("/readyz")->status, 503);
        QCOMPARE(m_pWeb->Get("/healthz")->status, 200);
        QVERIFY(m_pPostgres ? m_pPostgres->Tell("start") : lock.Exec("ROLLBACK"_s));
        QTRY_COMPARE(m_pWeb->Get("/readyz")->status, 200);
        QCOMPARE(Send(session, "x 2 110"_s), 200);
        QCOMPARE(Fetch(AskForSession("Altair"_s, "new"_s), 0), "x=2"_s);
    }

    // It would become much longer.
    void PackedBodyIsRefused()
    {
        const httplib::Headers packed{{"Content-Encoding", "gzip"}};
        QCOMPARE(m_pWeb->Post("/sync", packed, "x", FORM)->status, 415);
        QCOMPARE(m_pWeb->Post("/sessions", packed, "x", FORM)->status, 415);
    }

    void EndsRightAfterItsStart()
    {
        for (int i = 0; i < 10; ++i) {
            QProcess server;
            QVERIFY(StartServer(server, QStringLiteral(WEBSERVER_PATH),
                                {"--database"_s, m_dir.filePath("other"_s), "--key"_s, "k"_s}) != 0);
            server.terminate();
            QVERIFY(server.waitForFinished(5000));
            QCOMPARE(server.exitCode(), 0);
        }
    }

    void SlowBodyIsRefused()
    {
        QTcpSocket socket;
        socket.connectToHost("127.0.0.1"_s, m_uiPort);
        QVERIFY(socket.waitForConnected());
        socket.write("POST /sync HTTP/1.1\r\nContent-Length: 1000\r\n\r\n");
        QElapsedTimer clock;
        clock.start();
        while (!socket.waitForReadyRead(200) && clock.elapsed() < 8000)
            socket.write("s");
        QVERIFY(socket.readAll().startsWith("HTTP/1.1 408"));
        QVERIFY(clock.elapsed() < 4000);
    }

    // A request that has begun is answered. What the server has told of all of them has no secrets.
    void EndsInOrder()
    {
        const QByteArray session = AskForSession("Deneb"_s, "desk"_s);
        QCOMPARE(Fetch(session, 0), QString());
        const QByteArray body = "session=" + session +
                                R"(&json={"usersettingstime":"100","playerinfostime":"0",)"
                                R"("usersettings":[{"area":"a","key":"k","value":"v","time":"100"}]})";
        QTcpSocket socket;
        socket.connectToHost("127.0.0.1"_s, m_uiPort);
        QVERIFY(socket.waitForConnected());
        socket.write("POST /sync HTTP/1.1\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n");
        socket.write(body.left(100));
        QVERIFY(socket.waitForBytesWritten());
        QTRY_VERIFY(m_pWeb->Get("/healthz")); // taken after it
        QVERIFY(m_pWeb->Get("/metrics")->body.find("path=\"/sync\",status=\"503\"} 1\n") != std::string::npos);
        m_server.terminate();
        QTRY_VERIFY(!m_pWeb->Get("/healthz"));
        socket.write(body.mid(100));
        QVERIFY(socket.waitForReadyRead());
        QVERIFY(socket.readAll().startsWith("HTTP/1.1 200"));
        QVERIFY(m_server.waitForFinished());
        QCOMPARE(m_server.exitCode(), 0);
        QJsonObject last;
        const QList<QByteArray> lines = m_server.readAllStandardError().trimmed().split('\n');
        for (const QByteArray &line : lines) {
            last = QJsonDocument::fromJson(line).object();
            QVERIFY2(last.contains("status"_s) && !line.contains(session.left(32)), line.constData());
        }
        QCOMPARE(last["path"_s].toString() + u' ' + QString::number(last["rowsin"_s].toInt()), "/sync 1"_s);
    }

private:
    QByteArray AskForSession(const QString &user, const QString &machine) const
    {
        const auto answer = m_pWeb->Post(
            "/sessions",
            httplib::Params{{"key", "k &"}, {"nickname", user.toStdString()}, {"machine", machine.toStdString()}});
        return answer ? QByteArray::fromStdString(answer->body) : QByteArray();
    }

    // The notes that come, as "player=note", or the status if it isn't 200. \a newest: time of the machine's own.
    QString Fetch(const QByteArray &session, int newest) const
    {
        const auto answer = m_pWeb->Get("/sync?session=" + session.left(32).toStdString() +
                                        "&usersettings=0&playerinfos=" + std::to_string(newest));
        if (!answer || answer->status != 200)
            return QString::number(answer ? answer->status : 0);
        QStringList notes;
        const QJsonDocument root = QJsonDocument::fromJson(QByteArray::fromStdString(answer->body));
        const QJsonArray rows = root["playerinfos"_s].toArray();
        for (const QJsonValue &row : rows)
            notes.append(row["nick"_s].toString() + u'=' + row["note"_s].toString());
        return notes.join(u' ');
    }

    // Sends notes, "player note time ...", the newest of the machine last; answers the status.
    int Send(const QByteArray &session, const QString &notes) const
    {
        const QStringList words = notes.split(u' ');
        QJsonArray rows;
        for (int word = 0; word < words.size(); word += 3) {
            const QString note = QString(words.at(word + 1)).remove(u'~');
            rows.append(QJsonObject{{"nick"_s, words.at(word)},
                                    {"note"_s, note},
                                    {"tag"_s, note.isEmpty() ? "0"_s : "1"_s},
                                    {"flags"_s, "0"_s},
                                    {"time"_s, words.at(word + 2)}});
        }
        const QJsonObject root{
            {"usersettingstime"_s, "0"_s}, {"playerinfostime"_s, words.constLast()}, {"playerinfos"_s, rows}};
        const QByteArray body = "session=" + session + "&json=" + QJsonDocument(root).toJson();
        const auto answer = m_pWeb->Post("/sync", body.toStdString(), FORM);
        return answer ? answer->status : 0;
    }

    void Exec(const QStringList &statements) const
    {
        CLocalDB database(m_dir.filePath("db"_s), true, true);
        QVERIFY(m_pPostgres || database.Init());
        for (const QString &sql : statements)
            QVERIFY2(m_pPostgres ? m_pPostgres->Exec(sql) : database.Exec(sql), qPrintable(sql));
    }

    void Start()
    {
        const quint16 port = StartServer(
            m_server, QStringLiteral(WEBSERVER_PATH),
            {m_pPostgres ? "--store"_s : "--database"_s, m_pPostgres ? m_strAddress : m_dir.filePath("db"_s),
             "--pictures"_s, m_dir.filePath("pictures"_s), "--files"_s, m_dir.filePath("pictures/5"_s), "--key"_s,
             "k &"_s, "--body-limit"_s, "100000"_s, "--body-seconds"_s, "2"_s});
        QVERIFY(port != 0);
        m_uiPort = port;
        m_pWeb = std::make_unique<httplib::Client>("127.0.0.1", port);
    }

    QTemporaryDir m_dir;
    std::unique_ptr<CPostgres> m_pPostgres; // none: a file
    QString m_strAddress;
    QProcess m_server;
    quint16 m_uiPort = 0;
    std::unique_ptr<httplib::Client> m_pWeb;
};

QTEST_GUILESS_MAIN(tst_webserver)
#include "tst_webserver.moc"
