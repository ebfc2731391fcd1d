// Attacks on the example's programs: what the attacker gets to read, and what the user is told.

#include "GameClient.h"
#include "ServerProcess.h"

#include <database/SettingsDB.h>
#include <files/Pathes.h>
#include <settings/Config.h>
#include <settings/Settings.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/SilentConnections.h>
#include <support/Singletons.h>
#include <support/TlsServer.h>

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QtTest>

#include <atomic>
#include <deque>
#include <memory>
#include <thread>

using namespace AccountProtocol;

namespace {

const QString WEB_KEY = "the servers' own"_s;
const QString NICKNAME = "Magnolia"_s;
const QString PASSWORD = "river"_s;

// Notes what comes from a client. Passes it on to a server, and the answers back, or says something of its own.
class CListener : public QTcpServer
{
public:
    explicit CListener(quint16 server, const QByteArray &greeting = QByteArray())
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this, server, greeting] {
            QTcpSocket *client = nextPendingConnection();
            client->write(greeting);
            QTcpSocket *onward = server == 0 ? nullptr : new QTcpSocket(client);
            connect(client, &QIODevice::readyRead, client, [this, client, onward] {
                const QByteArray bytes = client->readAll();
                m_received += bytes;
                if (onward)
                    onward->write(bytes);
            });
            if (!onward)
                return;
            onward->connectToHost(QHostAddress::LocalHost, server);
            connect(onward, &QIODevice::readyRead, client, [=] { client->write(onward->readAll()); });
        });
    }

    QByteArray m_received;
};

// Connections that follow each other as fast as two threads can make them. None to port 0.
class CFlood
{
public:
    explicit CFlood(quint16 port)
    {
        for (std::thread &thread : m_threads) {
            if (port == 0)
                return;
            thread = std::thread([this, port] {
                std::deque<std::unique_ptr<CSilentConnections>> open; // for a while
                while (!m_bEnding) {
                    open.push_back(std::make_unique<CSilentConnections>(port, 1));
                    m_iCount += open.back()->Count();
                    if (open.size() > 500)
                        open.pop_front();
                }
            });
        }
    }
    ~CFlood()
    {
        m_bEnding = true;
        for (std::thread &thread : m_threads) {
            if (thread.joinable())
                thread.join();
        }
    }
    Q_DISABLE_COPY_MOVE(CFlood)

    int Count() const { return m_iCount; }

private:
    std::atomic<int> m_iCount = 0;
    std::atomic<bool> m_bEnding = false;
    std::thread m_threads[2];
};

} // namespace

class tst_attacks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The machine's user stays logged in, so that the client shows its token to whom it trusts.
    void initTestCase()
    {
        m_certificates.Make("A"_s, "127.0.0.1"_s, false);
        for (const QString &name : {"made.pem"_s, "server.key"_s})
            QVERIFY(QFile::copy(m_certificates.GetFile(name), m_dir.filePath(name)));
        m_keys = QStringList{"--certificate"_s, m_dir.filePath("made.pem"_s), "--private-key"_s,
                             m_dir.filePath("server.key"_s)};
        const quint16 webPort =
            StartServer(m_webServer, QStringLiteral(WEBSERVER_PATH),
                        m_keys + QStringList{"--database"_s, m_dir.filePath("web"_s), "--key"_s, WEB_KEY});
        m_web.setUrl("https://127.0.0.1:%1"_s.arg(webPort));
        m_gameServer.setStandardErrorFile(QProcess::nullDevice()); // a full pipe would stop it
        m_usPort = StartServer(m_gameServer, QStringLiteral(GAMESERVER_PATH),
                               m_keys + QStringList{"--data"_s, QStringLiteral(TABLES_PATH), "--accounts"_s,
                                                    QStringLiteral(ACCOUNTS_PATH), "--web-server"_s, m_web.toString(),
                                                    "--web-key"_s, WEB_KEY, "--authority"_s,
                                                    m_certificates.GetFile("A.pem"_s)});
        QVERIFY(webPort != 0 && m_usPort != 0);
        CGameClient client(m_usPort);
        QCOMPARE(client.LogIn(CGameClient::Login(NICKNAME, PASSWORD)), '+');
        m_strToken = client.m_token.strToken;
    }

    void cleanupTestCase()
    {
        m_gameServer.close();
        m_webServer.close();
    }

    // Somebody in between, at either server. In the last rows the client is right to speak, which shows that the
    // others would find a secret.
    void InBetween_data()
    {
        const QString stranger = "isn't the server that it should be, and is told nothing: "_s;
        AddRows<QString, QString, QString>(
            {"at", "certificate", "told"},
            {{"signed by itself", "game"_s, " 127.0.0.1"_s, stranger + "The certificate is self-signed"_s},
             {"another authority", "game"_s, "B 127.0.0.1"_s, stranger + "The issuer certificate"_s},
             {"another name", "game"_s, "A lobby.example"_s, stranger + "The host name did not match"_s},
             {"expired", "game"_s, "A 127.0.0.1 expired"_s, stranger + "The certificate has expired"_s},
             {"no encryption", "game"_s, "plain"_s, stranger},
             {"listens on the way", "game"_s, "listens"_s, QString()},
             {"another authority on the web", "web"_s, "B 127.0.0.1"_s, stranger + "The issuer certificate"_s},
             {"no encryption on the web", "web"_s, "plain"_s, stranger},
             {"redirect to no encryption", "web"_s, "redirect"_s, "leads to http://127.0.0.1:"_s},
             {"trusted", "game"_s, "A 127.0.0.1"_s, QString()},
             {"trusted on the web", "web"_s, "A 127.0.0.1"_s, QString()}});
    }
    void InBetween()
    {
        QFETCH(QString, at);
        QFETCH(QString, certificate);
        QFETCH(QString, told);
        const bool isTrusted = QByteArray(QTest::currentDataTag()).startsWith("trusted");
        const QStringList words = certificate.split(u' ');
        const bool isForwarded = certificate == "listens"_s;
        QByteArray greeting = CGameClient::OnAccount(Payload::Encode(SAccount{NICKNAME, {}}));
        if (at == "web"_s)
            greeting = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}";
        CListener plain(isForwarded ? m_usPort : 0, isForwarded ? QByteArray() : greeting);
        CTlsServer encrypted(m_certificates);
        encrypted.m_certificate = words.size() > 1 ? m_certificates.Make(words.at(0), words.at(1), words.size() > 2)
                                                   : m_certificates.Make("A"_s, "127.0.0.1"_s, false);
        if (certificate == "redirect"_s)
            encrypted.m_answer = "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: http://127.0.0.1:" +
                                 QByteArray::number(plain.serverPort()) + "/\r\n\r\n";
        const bool isPlain = isForwarded || certificate == "plain"_s;
        const quint16 port = isPlain ? plain.serverPort() : encrypted.serverPort();

        const CInstallationTree tree;
        PrepareClient(at == "web"_s ? "https://127.0.0.1:%1"_s.arg(port) : m_web.toString());
        m_webServer.readAllStandardError();
        QProcess client;
        client.start(QStringLiteral(CLIENT_PATH),
                     {"--folder"_s, tree.GetPath("Client"_s), "--authority"_s, m_certificates.GetFile("A.pem"_s),
                      "--server"_s, "127.0.0.1:%1"_s.arg(at == "web"_s ? m_usPort : port)});
        const auto kill = qScopeGuard([&] { // as a crash would end it: it says goodbye to nobody
            client.kill();
            client.waitForFinished();
        });

        QByteArray log;
        if (!told.isEmpty()) {
            const QByteArray message = "127.0.0.1:" + QByteArray::number(port) + ' ' + told.toUtf8();
            QTRY_VERIFY2_WITH_TIMEOUT((log += client.readAllStandardError()).contains(message), log.constData(),
                                      20000);
        } else if (isForwarded) { // it has logged in, and talks to the web server
            QTRY_VERIFY2_WITH_TIMEOUT((log += m_webServer.readAllStandardError()).contains("\"path\":\"/sync\""),
                                      log.constData(), 20000);
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(!encrypted.m_received.isEmpty(), 20000);
        }
        QTest::qWait(200); // for what may still be on its way
        QCOMPARE(encrypted.m_received.isEmpty(), !isTrusted && certificate != "redirect"_s);
        if (isTrusted)
            QVERIFY(encrypted.m_received.contains(at == "web"_s ? "GET /sync?session=" : m_strToken.toLatin1()));
        if (certificate == "redirect"_s)
            QCOMPARE(plain.m_received, QByteArray());
        for (const QByteArray &secret : {m_strToken.toLatin1(), NICKNAME.toLatin1(), QByteArray("session=")})
            QVERIFY(!plain.m_received.contains(secret));
        QVERIFY(!isPlain || !plain.m_received.isEmpty()); // it has really come this way
    }

    // Whoever has read the address of a request can't repeat it once its user has logged out there, or everywhere.
    void SessionIsReplayed()
    {
        CGameClient client(m_usPort);
        CGameClient elsewhere(m_usPort);
        for (CGameClient *end : {&client, &elsewhere}) {
            QCOMPARE(client.LogIn(CGameClient::Login("Robin"_s, "guest"_s)), '+');
            QCOMPARE(elsewhere.LogIn(CGameClient::Login("robin"_s, "guest"_s)), '+');
            client.write(CGameClient::OnAccount(Payload::Encode(SWebRequest{WebLinks::SettingsSyncFetch, "desk"_s})));
            SWebSession session;
            QVERIFY(Payload::Decode(client.ReadRecord(), session));
            QCOMPARE(Fetch(session.strSession), 200);
            QCOMPARE(Fetch(session.strSession), 200); // so far it can
            end->write(CGameClient::OnAccount(end == &client ? LOGOUT : LOGOUT_EVERYWHERE));
            QTRY_COMPARE(Fetch(session.strSession), 403);
        }
    }

    // A copy of the user's files is worth nothing any more once the user has logged out.
    void TokenIsStolen()
    {
        CGameClient owner(m_usPort);
        QCOMPARE(owner.LogIn(CGameClient::Login(NICKNAME, PASSWORD)), '+');
        const QByteArray login = CGameClient::TokenLogin(NICKNAME, owner.m_token.strToken);
        CGameClient thief(m_usPort);
        QCOMPARE(thief.LogIn(login), '+');
        owner.write(CGameClient::OnAccount(LOGOUT));
        QTRY_COMPARE(thief.state(), QAbstractSocket::UnconnectedState);
        CGameClient again(m_usPort);
        QCOMPARE(again.LogIn(login), char(RF_TOKEN_ENDED));
        QCOMPARE(again.LogIn(CGameClient::TokenLogin(NICKNAME, m_strToken)), '+'); // of another machine
    }

    // From twenty connections. Hardly any of them is looked at, nor is the right one for a while; who has a token
    // doesn't notice.
    void PasswordsAreTried()
    {
        constexpr int CONNECTIONS = 20;
        constexpr int TRIES = 5; // each
        std::vector<std::unique_ptr<CGameClient>> clients;
        for (int i = 0; i < CONNECTIONS; ++i) {
            clients.push_back(std::make_unique<CGameClient>(m_usPort));
            clients.back()->write(CGameClient::Login(NICKNAME, "guess"_s).repeated(TRIES));
            clients.back()->flush();
        }
        QHash<char, int> refusals;
        for (const auto &client : clients) {
            for (int i = 0; i < TRIES; ++i)
                ++refusals[client->LogIn(QByteArray())];
        }
        QCOMPARE(refusals.value(RF_WRONG_PASSWORD) + refusals.value(RF_TOO_MANY), CONNECTIONS * TRIES);
        QVERIFY2(refusals.value(RF_WRONG_PASSWORD) <= 8, QByteArray::number(refusals.value(RF_WRONG_PASSWORD)));
        QCOMPARE(clients[0]->LogIn(CGameClient::TokenLogin(NICKNAME, m_strToken)), '+');
        QCOMPARE(clients[1]->LogIn(CGameClient::Login(NICKNAME, PASSWORD)), char(RF_TOO_MANY));
        QTRY_COMPARE_WITH_TIMEOUT(clients[1]->LogIn(CGameClient::Login(NICKNAME, PASSWORD)), '+', 60000);
    }

    // A thousand who say nothing are no reason to let a user wait, nor five hundred who ask for the list and nothing
    // else, be it with a flood on top. The client tries again if it makes way, but seldom has to.
    void ConnectionsAreKept_data()
    {
        AddRows<int, int, bool, int>(
            {"silent", "talking", "flood", "tries"},
            {{"silent", 1000, 0, false, 1}, {"talk", 0, 500, false, 1}, {"talk in a flood", 0, 500, true, 4}});
    }
    void ConnectionsAreKept()
    {
        QFETCH(int, silent);
        QFETCH(int, talking);
        QFETCH(bool, flood);
        QFETCH(int, tries);
        const CSilentConnections silentOnes(m_usPort, silent);
        QCOMPARE(silentOnes.Count(), silent);
        std::vector<std::unique_ptr<CGameClient>> talkingOnes;
        for (int i = 0; i < talking; ++i) {
            talkingOnes.push_back(std::make_unique<CGameClient>(m_usPort));
            talkingOnes.back()->write(Payload::ToPackets(LobbyProtocol::GROUP, {LobbyProtocol::GET_LIST}));
            talkingOnes.back()->flush();
        }
        const CFlood others(flood ? m_usPort : 0);
        char answer = '?';
        for (int i = 0; i < tries && answer != '+'; ++i)
            answer = CGameClient(m_usPort).LogIn(CGameClient::TokenLogin(NICKNAME, m_strToken));
        QCOMPARE(answer, '+');
        QVERIFY(!flood || others.Count() > 500);
    }

private:
    // Gives the installation in which the process is what the user has, and what the operator says.
    void PrepareClient(const QString &web) const
    {
        const QDir contents(QStringLiteral(CONTENTS_PATH));
        const QFileInfoList resources =
            QDir(contents.filePath("Resources"_s)).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot);
        for (const QFileInfo &file : resources)
            QFile::link(file.filePath(), Pathes::Resources() + u'/' + file.fileName());
        QVERIFY(QFile::link(contents.filePath("Client/Plugins"_s), "Plugins"_s));
        QVERIFY(QFile::remove(Pathes::ConfigDB()));
        QVERIFY(QFile::copy(contents.filePath("Resources/config.sqlite"_s), Pathes::ConfigDB()));
        CLocalDB config(Pathes::ConfigDB(), true, true);
        config.Init();
        config.Exec("UPDATE tbl_config SET COV_cValue = '%1/sync' WHERE COV_cKey = 'link_settingssync'"_s.arg(web));
        CSettingsDB::GetInstance()->Init();
        CSettings::GetInstance()->SetLastUserName(NICKNAME);
        CSettings::GetInstance()->SetLastUserPwd(m_strToken);
        CSettings::GetInstance()->slot_SaveSettings(true);
        DestroySingletons();
    }

    // Returns the status of a request of which the first half of the session is known.
    int Fetch(const QString &session) const
    {
        QNetworkRequest request(
            QUrl(m_web.toString() + "/sync?usersettings=0&playerinfos=0&session="_s + session.left(32)));
        QSslConfiguration configuration;
        configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
        request.setSslConfiguration(configuration);
        QNetworkAccessManager manager;
        const QScopedPointer<QNetworkReply> reply(manager.get(request));
        QSignalSpy finished(reply.data(), &QNetworkReply::finished);
        finished.wait();
        return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    }

    CCertificates m_certificates;
    QTemporaryDir m_dir;
    QStringList m_keys; // options
    QProcess m_webServer;
    QUrl m_web;
    QProcess m_gameServer;
    quint16 m_usPort = 0;
    QString m_strToken;
};

QTEST_GUILESS_MAIN(tst_attacks)
#include "tst_attacks.moc"
