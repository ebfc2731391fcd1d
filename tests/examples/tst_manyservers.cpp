// Three web servers that share a PostgreSQL, behind a balancer. In the middle of a load one is killed, one is told to
// end, one more starts, and PostgreSQL is killed and starts again.

#include "Postgres.h"
#include "ServerProcess.h"

#include <support/Literal.h>
#include <support/SilentConnections.h>

#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include <httplib.h>

#include <atomic>
#include <future>
#include <map>
#include <thread>

namespace {

constexpr int USERS = 4;
constexpr int SERVERS = 4; // the last of which begins late
constexpr int EXCHANGES = 500;
constexpr int SILENT = 10000;
constexpr int FIRST_TIME = 1000000;
const char FORM[] = "application/x-www-form-urlencoded";

// A request may come twice, whatever its method: so the balancer asks the next server if one says nothing.
const QString BALANCER = QStringLiteral("daemon off;\nmaster_process off;\npid %1/pid;\nerror_log %1/error;\n"
                                        "worker_rlimit_nofile 15000;\nevents { worker_connections 12000; }\n"
                                        "http {\n  access_log off;\n  client_body_temp_path %1/body;\n"
                                        "  proxy_temp_path %1/proxy;\n  fastcgi_temp_path %1/fastcgi;\n"
                                        "  uwsgi_temp_path %1/uwsgi;\n  scgi_temp_path %1/scgi;\n"
                                        "  upstream servers {\n%2  }\n"
                                        "  proxy_next_upstream error timeout http_502 http_503 non_idempotent;\n"
                                        "  server {\n    listen 127.0.0.1:%3;\n"
                                        "    location / { proxy_pass http://servers; }\n  }\n}\n");

quint16 GetFreePort()
{
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
}

// A user at the balancer, in a thread: one machine changes settings, and another one fetches them meanwhile.
class CUser
{
public:
    CUser(quint16 port, int number)
        : m_uiPort(port)
        , m_web("127.0.0.1", port)
        , m_strName("user" + std::to_string(number))
    {
    }

    void Run()
    {
        const std::string sender = AskForSession("sender");
        const std::string reader = AskForSession("reader");
        int time = 0;
        Fetch(sender, 0, nullptr); // or it would be a machine that has been restored
        for (int i = 1; i <= EXCHANGES; ++i) {
            Send(sender, i);
            if (i % 3 == 0)
                time = Fetch(reader, time, this);
            if (i % 5 == 0)
                Send(sender, i); // as if the answer hadn't come
        }
        Fetch(reader, time, this);
        CUser fresh(m_uiPort, 0);
        Fetch(AskForSession("new"), 0, &fresh);
        if (fresh.m_seen.size() != EXCHANGES + 1)
            Fail("a new machine gets " + std::to_string(fresh.m_seen.size()) + " settings");
        if (m_seen.size() != EXCHANGES + 1)
            Fail("another machine has got " + std::to_string(m_seen.size()) + " settings");
        for (const auto &[key, value] : fresh.m_seen) {
            if (m_seen[key] != value)
                Fail(key + " is " + value + ", there " + m_seen[key]);
        }
    }

    std::string strFault;
    int iRepeated = 0;
    static inline std::atomic<int> done{0}; // exchanges that were acknowledged, of all

private:
    void Fail(const std::string &fault) { strFault += m_strName + ": " + fault + "\n"; }

    // Until it's acknowledged.
    template <typename Ask>
    std::string Repeat(const Ask &ask)
    {
        for (int tries = 0; tries < 500; ++tries) {
            const httplib::Result answer = ask();
            if (answer && answer->status == 200)
                return answer->body;
            if (answer && answer->status < 500)
                Fail("status " + std::to_string(answer->status));
            ++iRepeated;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        Fail("no answer");
        return {};
    }

    std::string AskForSession(const char *machine)
    {
        const httplib::Params owner{{"key", "k"}, {"nickname", m_strName}, {"machine", machine}};
        return Repeat([&] { return m_web.Post("/sessions", owner); });
    }

    // A setting that is new, and one that all exchanges change.
    void Send(const std::string &session, int number)
    {
        const QString row = R"({"area":"a","key":"%1","value":"%2","time":"%3"})"_s;
        const QString time = QString::number(FIRST_TIME + number);
        const QString rows =
            row.arg("k%1"_s.arg(number)).arg(number).arg(time) + u',' + row.arg("all"_s).arg(number).arg(time);
        const QString json =
            R"({"usersettingstime":"%1","playerinfostime":"0","usersettings":[%2]})"_s.arg(time, rows);
        const std::string body = "session=" + session + "&json=" + json.toStdString();
        Repeat([&] { return m_web.Post("/sync", body, FORM); });
        ++done;
    }

    // What is new since the machine's time; its time after that.
    int Fetch(const std::string &session, int time, CUser *reader)
    {
        const std::string path =
            "/sync?playerinfos=0&session=" + session.substr(0, 32) + "&usersettings=" + std::to_string(time);
        const QByteArray answer = QByteArray::fromStdString(Repeat([&] { return m_web.Get(path); }));
        ++done;
        const QJsonArray rows = QJsonDocument::fromJson(answer)["usersettings"_s].toArray();
        for (const QJsonValue &row : rows) {
            time = qMax(time, row["time"_s].toInt());
            if (reader)
                reader->See(row["key"_s].toString().toStdString(), row["value"_s].toString().toStdString());
        }
        return time;
    }

    void See(const std::string &key, const std::string &value)
    {
        std::string &seen = m_seen[key];
        if (!seen.empty() && std::stoi(seen) >= std::stoi(value))
            Fail(key + " = " + value + " comes after " + seen);
        seen = value;
    }

    const quint16 m_uiPort;
    httplib::Client m_web;
    const std::string m_strName;
    std::map<std::string, std::string> m_seen;
};

} // namespace

class tst_manyservers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_strAddress = m_postgres.Start();
        QVERIFY(!m_strAddress.isEmpty());
        QString servers;
        for (int &port : m_ports) {
            port = GetFreePort();
            servers += "    server 127.0.0.1:%1 max_fails=1 fail_timeout=1s;\n"_s.arg(port);
        }
        const quint16 port = GetFreePort();
        QFile file(m_dir.filePath("nginx.conf"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(BALANCER.arg(m_dir.path(), servers).arg(port).toUtf8());
        file.close();
        for (int server = 0; server < SERVERS - 1; ++server)
            Begin(server);
        m_balancer.setProcessChannelMode(QProcess::ForwardedChannels);
        m_balancer.start(QStringLiteral(NGINX_PATH), {"-e"_s, m_dir.filePath("error"_s), "-c"_s, file.fileName()});
        QTRY_VERIFY(httplib::Client("127.0.0.1", port).Get("/readyz"));
        m_uiPort = port;
    }

    void cleanupTestCase()
    {
        m_balancer.terminate();
        m_balancer.waitForFinished();
        for (QProcess &server : m_servers)
            End(server);
    }

    void NothingIsLostOrTakenTwice()
    {
        std::vector<std::unique_ptr<CUser>> users;
        std::vector<std::future<void>> ends;
        for (int user = 1; user <= USERS; ++user)
            users.push_back(std::make_unique<CUser>(m_uiPort, user));
        QElapsedTimer clock;
        clock.start();
        for (const auto &user : users)
            ends.push_back(std::async(std::launch::async, [&user] { user->Run(); }));
        constexpr int ALL = USERS * EXCHANGES;
        const auto reached = [](int exchanges) { return CUser::done >= exchanges; };
        QTRY_VERIFY_WITH_TIMEOUT(reached(ALL / 4), 60000);
        m_servers[0].kill();
        QTRY_VERIFY_WITH_TIMEOUT(reached(ALL / 2), 60000);
        Begin(SERVERS - 1);
        QVERIFY(m_postgres.Tell("kill") && m_postgres.Tell("start"));
        QTRY_VERIFY_WITH_TIMEOUT(reached(ALL * 3 / 4), 60000);
        End(m_servers[1]);
        for (const auto &end : ends)
            end.wait();
        int repeated = 0;
        for (const auto &user : users) {
            QCOMPARE(QString::fromStdString(user->strFault), QString());
            repeated += user->iRepeated;
        }
        qInfo("%d exchanges in %lld ms, %d of them repeated by machines", CUser::done.load(), clock.elapsed(),
              repeated);
        QVERIFY(repeated > 0); // so they have been hit
        const auto metrics = httplib::Client("127.0.0.1", m_ports[SERVERS - 1]).Get("/metrics");
        QVERIFY(metrics && metrics->body.find("path=\"/sync\",status=\"200\"}") != std::string::npos);
    }

    // They are the balancer's business, and the servers answer the others as before.
    void SilentConnectionsHinderNobody()
    {
        const CSilentConnections silent(m_uiPort, SILENT);
        QCOMPARE(silent.Count(), SILENT);
        QElapsedTimer clock;
        clock.start();
        CUser user(m_uiPort, USERS + 1);
        user.Run();
        qInfo("%lld ms for %d exchanges beside %d silent connections", clock.elapsed(), EXCHANGES, SILENT);
        QCOMPARE(QString::fromStdString(user.strFault), QString());
        QVERIFY(clock.elapsed() < 30000);
    }

private:
    void Begin(int server)
    {
        m_servers[server].setStandardErrorFile(QProcess::nullDevice());
        const QStringList options{"--store"_s, m_strAddress, "--key"_s,
                                  "k"_s,       "--port"_s,   QString::number(m_ports[server])};
        QCOMPARE(int(StartServer(m_servers[server], QStringLiteral(WEBSERVER_PATH), options)), m_ports[server]);
    }

    static void End(QProcess &server)
    {
        if (server.state() != QProcess::Running)
            return;
        server.terminate();
        QVERIFY(server.waitForFinished());
        QCOMPARE(server.exitStatus(), QProcess::NormalExit);
        QCOMPARE(server.exitCode(), 0);
    }

    QTemporaryDir m_dir;
    CPostgres m_postgres;
    QString m_strAddress;
    std::array<int, SERVERS> m_ports{};
    std::array<QProcess, SERVERS> m_servers;
    QProcess m_balancer;
    quint16 m_uiPort = 0;
};

QTEST_GUILESS_MAIN(tst_manyservers)
#include "tst_manyservers.moc"
