#include <network/ApplicationProxy.h>
#include <network/Download.h>
#include <network/NetworkAccessManager.h>

#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>

#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <algorithm>

namespace {

constexpr char POST[] = "a=b";

QByteArray MakeAnswer(const QByteArray &headers, const QByteArray &body, const QByteArray &status = "200 OK")
{
    return "HTTP/1.1 " + status + "\r\n" + headers + "\r\n\r\n" + body;
}

QByteArray Redirect(const QByteArray &target)
{
    return MakeAnswer("Content-Length: 5\r\nLocation: " + target, "moved", "302 Found");
}

// Longer than what is read in one turn.
const QByteArray LONG_BODY = QByteArray("0123456789").repeated(300000);

// A web server and proxy on loopback, which closes a connection after its answer, except for that to /open. What it
// answers needn't be HTTP.
class CServer : public QTcpServer
{
public:
    CServer()
    {
        m_answers = {{"/long", MakeAnswer("Content-Length: " + QByteArray::number(LONG_BODY.size()), LONG_BODY)},
                     {"/hop0", Redirect("/hop1")},
                     {"/hop1", Redirect("hop2")},
                     {"/hop2", Redirect("/hop3")}};
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Answer(socket); });
        });
        listen(QHostAddress::LocalHost);
        m_answers["/hop3"] = Redirect(GetUrl("/echo"_s).toLatin1());
    }
    QString GetUrl(const QString &path) const { return "http://127.0.0.1:%1"_s.arg(serverPort()) + path; }

    QHash<QByteArray, QByteArray> m_answers; ///< by path; to other paths what it was asked

private:
    void Answer(QTcpSocket *socket)
    {
        const QByteArray request = socket->peek(10000);
        if (!request.endsWith(QByteArray("\r\n\r\n") + (request.startsWith("POST") ? POST : "")))
            return; // there is more to come
        socket->readAll();
        const QByteArray target = request.split(' ').at(1);
        socket->write(m_answers.value(target, Echo(QString::fromLatin1(request))));
        if (target != "/open")
            socket->disconnectFromHost();
    }
    // The request but for what Qt alone decides, and the order of its headers, in one line.
    static QByteArray Echo(QString request)
    {
        const bool refused = request.contains(" http://"_s) && !request.contains("Proxy-Authorization"_s);
        request.remove(QRegularExpression("(Proxy-)?(Connection|Accept-Language|Host): [^\r]*\r\n"_s));
        QStringList lines = request.split("\r\n"_s);
        std::sort(lines.begin() + 1, lines.end() - 2);
        return refused ? MakeAnswer("Content-Length: 0\r\nProxy-Authenticate: Basic realm=\"x\"", "", "407 Who?")
                       : MakeAnswer("Connection: close", lines.join(u'|').toLatin1());
    }
};

} // namespace

class tst_download : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { DestroySingletons(); }
    // A host may want redirects followed elsewhere.
    void init()
    {
        CNetworkAccessManager::GetInstance()->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    }

    void Requests_data()
    {
        const QByteArray begin = " /echo HTTP/1.1|Accept-Encoding: identity|Content-Length: ";
        const QByteArray end = "|Content-Type: application/x-www-form-urlencoded|User-Agent: QT-Win||";
        const QByteArray get = "GET" + begin + '0' + end;
        const QByteArray post = "POST" + begin + '3' + end + POST;
        AddRows<QString, QByteArray, bool, bool, QByteArray, QString>(
            {"path", "post", "headOnly", "status", "body", "lastPath"},
            {{"get", "/echo"_s, "", false, true, get, "/echo"_s},
             {"post", "/echo"_s, POST, false, true, post, "/echo"_s},
             {"3 redirects", "/hop1"_s, "", false, true, get, "/echo"_s},
             {"4 redirects", "/hop0"_s, "", false, false, "moved", "/hop3"_s},
             {"head", "/hop1"_s, POST, true, true, "", "/echo"_s}});
    }

    void Requests()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, post);
        QFETCH(bool, headOnly);
        CDownload download(nullptr, m_server.GetUrl(path), post, headOnly);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        QVERIFY(finished.wait());
        QTEST(finished.at(0).at(0).toBool(), "status");
        QTEST(finished.at(0).at(1).toByteArray(), "body");
        QTEST(download.GetName(), "lastPath");
        QCOMPARE(download.GetCurUrl(), QUrl(m_server.GetUrl(download.GetName())));
        QCOMPARE(download.GetBaseUrl(), QUrl(m_server.GetUrl(path)));
        QCOMPARE(download.GetContentLength(), 0u);
    }

    void Answers_data()
    {
        const auto ofLength = [](const char *length) { return QByteArray("Content-Length: ") + length; };
        const QByteArray gzip = QByteArray::fromBase64("H4sIAAAAAAACA8tIzcnJBwCGphA2BQAAAA=="); // "hello"
        const QByteArray coding = ofLength("25\r\nContent-Encoding: ");
        AddRows<QByteArray, bool, QByteArray, unsigned int>(
            {"answer", "status", "body", "length"},
            {{"long", m_server.m_answers["/long"], true, LONG_BODY, LONG_BODY.size()},
             {"in chunks", MakeAnswer("Transfer-Encoding: chunked", "2\r\nhe\r\n3\r\nllo\r\n0\r\n\r\n"), true,
              "hello", 0},
             {"500", MakeAnswer(ofLength("5"), "sorry", "500 Fault"), false, "sorry", 5},
             {"credentials", MakeAnswer("WWW-Authenticate: Basic realm=\"x\"", "", "401 Who?"), false, "", 0},
             {"redirect off the web", Redirect("file:///etc/hostname"), false, "moved", 5},
             {"compressed", MakeAnswer(coding + "GZip", gzip), false, "", 25},
             {"no compression", MakeAnswer(coding + "utf-8", gzip), true, gzip, 25},
             {"length below 0", MakeAnswer(ofLength("-5"), "hello"), true, "hello", 0},
             {"cut off, length beyond 32 bits", MakeAnswer(ofLength("4294967301"), "hello"), false, "hello",
              4294967295u},
             {"length of what isn't sent", MakeAnswer(ofLength("5"), "", "304 Not Modified"), true, "", 5}});
    }

    void Answers()
    {
        QFETCH(QByteArray, answer);
        m_server.m_answers["/"] = answer;
        for (int run = 0; run < 10; ++run) { // now and then Qt takes a body that is cut off for a whole one
            CDownload download(nullptr, m_server.GetUrl("/"_s), QByteArray(), false);
            unsigned int length = 1;
            connect(&download, &CDownload::signal_Progress, this, [&] { length = download.GetContentLength(); });
            QSignalSpy finished(&download, &CDownload::signal_Finished);
            download.Start();
            QVERIFY(finished.wait());
            QTEST(finished.at(0).at(0).toBool(), "status");
            QTEST(finished.at(0).at(1).toByteArray(), "body");
            QTEST(length, "length");
        }
    }

    void Starts()
    {
        CDownload download(nullptr, m_server.GetUrl("/echo"_s), QByteArray(), false);
        QSignalSpy started(&download, &CDownload::signal_Started);
        QList<bool> ends;
        connect(&download, &CDownload::signal_Finished, this, [&](bool status) { ends.append(status); });
        download.Start();
        download.Stop();
        download.Start();
        download.Start();
        QCOMPARE(started.size(), 0); // the event loop starts it
        QTRY_COMPARE(ends, (QList<bool>{false, true}));
        QVERIFY(!QSignalSpy(&download, &CDownload::signal_Finished).wait(100));
        QCOMPARE(started.size(), 2);
        download.Start();
        QTRY_COMPARE(ends, (QList<bool>{false, true, true}));
    }

    void DeletedInASignal()
    {
        const auto ends = [this](auto signal) {
            QPointer<CDownload> download(new CDownload(nullptr, m_server.GetUrl("/echo"_s), QByteArray(), false));
            connect(download, signal, this, [&] { delete download; });
            download->Start();
            return QTest::qWaitFor([&] { return !download; });
        };
        QVERIFY(ends(&CDownload::signal_Started));
        QVERIFY(ends(&CDownload::signal_Progress));
        QVERIFY(ends(&CDownload::signal_Finished));
    }

    void EndsEarly_data() { AddRows<bool>({"byManager"}, {{"stopped", false}, {"the manager ends", true}}); }

    void EndsEarly()
    {
        QFETCH(bool, byManager);
        CDownload download(nullptr, m_server.GetUrl("/open"_s), QByteArray(), false);
        QSignalSpy progress(&download, &CDownload::signal_Progress);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        QVERIFY(progress.wait());
        byManager ? CNetworkAccessManager::DestroyInstance() : download.Stop();
        QCOMPARE(finished.size(), byManager ? 0 : 1);
        QTRY_COMPARE(finished, (QList<QVariantList>{{false, QByteArray()}})); // well before the stall counts
        QVERIFY(!finished.wait(200)); // what the reply still has to tell counts for nothing
    }

    void TooLongABody()
    {
        m_server.m_answers["/"] = MakeAnswer("Server: x", QByteArray(int(CDownload::MaxBytes) + 1, 'x'));
        CDownload download(nullptr, m_server.GetUrl("/"_s), QByteArray(), false);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        QVERIFY(finished.wait(120000));
        QCOMPARE(finished.at(0).at(0).toBool(), false);
        const auto size = finished.at(0).at(1).toByteArray().size();
        QVERIFY2(size > 0 && size <= int(CDownload::MaxBytes), QByteArray::number(size));
        QVERIFY(!finished.wait(100)); // once
    }

    void Bytes()
    {
        QCOMPARE(CDownload::FormatBytes(1023), "1023.0 bytes"_s);
        QCOMPARE(CDownload::FormatBytes(1536), "1.5 kB"_s);
        QCOMPARE(CDownload::FormatBytes(5 << 20), "5.0 MB"_s);
    }

    void Proxy_data()
    {
        AddRows(R"(|refused;[]|refused;{"host": "a"}|refused;{"host": "a", "port": 65617}|refused;)"
                R"({"host": "a", "port": 81, "type": "socks4"}|refused;)"
                R"({"host": "a", "port": 81, "type": "HTTP", "user": "u", "password": "p"}|good)"_s);
    }

    void Proxy()
    {
        QFETCH(QStringList, in); // settings, result
        const bool good = in[1] == "good"_s;
        CConfig::GetInstance()->SetConfigs({{"proxysettings"_s, in[0]}});
        const QNetworkProxy before = QNetworkProxy::applicationProxy();
        QCOMPARE(Globals::SetApplicationProxy(), good);
        const QNetworkProxy expected(QNetworkProxy::HttpProxy, "a"_s, 81, "u"_s, "p"_s);
        QCOMPARE(QNetworkProxy::applicationProxy(), good ? expected : before);
        QCOMPARE(CNetworkAccessManager::GetInstance()->proxy().type(), QNetworkProxy::NoProxy);
    }

    // A host may send the library's traffic through the application's proxy, whose credentials are known.
    void ProxyCredentials()
    {
        CNetworkAccessManager::GetInstance()->setProxy(
            {QNetworkProxy::HttpCachingProxy, "127.0.0.1"_s, m_server.serverPort()});
        for (const bool known : {false, true}) {
            QNetworkProxy::setApplicationProxy(
                {QNetworkProxy::NoProxy, QString(), 0, known ? "ann"_s : QString(), known ? "secret"_s : QString()});
            CDownload download(nullptr, "http://casino.invalid/a"_s, QByteArray(), false);
            QSignalSpy finished(&download, &CDownload::signal_Finished);
            download.Start();
            QVERIFY(finished.wait());
            QCOMPARE(finished.at(0).at(0).toBool(), known);
            const QByteArray body = finished.at(0).at(1).toByteArray();
            QCOMPARE(body.contains("|Proxy-Authorization: Basic " + QByteArray("ann:secret").toBase64() + '|'),
                     known);
        }
    }

private:
    CServer m_server;
};

QTEST_GUILESS_MAIN(tst_download)
#include "tst_download.moc"
