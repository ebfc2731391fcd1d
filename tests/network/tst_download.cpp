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

// Longer than what is read in one turn, and no two parts of it alike.
const QByteArray &LongBody()
{
    static const QByteArray body = [] {
        QByteArray numbers;
        while (numbers.size() < 3 << 20)
            numbers += QByteArray::number(numbers.size());
        return numbers;
    }();
    return body;
}

QByteArray InChunks(const QByteArray &body)
{
    QByteArray chunks;
    for (int at = 0; at < body.size(); at += 100000) {
        const QByteArray chunk = body.mid(at, 100000);
        chunks += QByteArray::number(chunk.size(), 16) + "\r\n" + chunk + "\r\n";
    }
    return chunks + "0\r\n\r\n";
}

// A web server and proxy on loopback, which closes a connection after its answer. What it answers needn't be HTTP.
class CServer : public QTcpServer
{
public:
    CServer()
    {
        m_answers = {{"/long", MakeAnswer("Content-Length: " + QByteArray::number(LongBody().size()), LongBody())},
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
        if (target == "/endless")
            WriteForEver(socket, 1 << 20, 0);
        else if (target == "/trickle")
            WriteForEver(socket, 100, 20);
        else if (socket->write(m_answers.value(target, Echo(QString::fromLatin1(request)))))
            socket->disconnectFromHost();
    }
    // The request but for what Qt alone decides, in one line.
    static QByteArray Echo(QString request)
    {
        const bool refused = request.contains(" http://"_s) && !request.contains("Proxy-Authorization"_s);
        request.remove(QRegularExpression("(Proxy-)?(Connection|Accept-Language|Host): [^\r]*\r\n"_s));
        return refused ? MakeAnswer("Content-Length: 0\r\nProxy-Authenticate: Basic realm=\"x\"", "", "407 Who?")
                       : MakeAnswer("Connection: close", request.replace("\r\n"_s, "|"_s).toLatin1());
    }
    static void WriteForEver(QTcpSocket *socket, int bytes, int pauseMs)
    {
        auto *timer = new QTimer(socket);
        connect(timer, &QTimer::timeout, socket, [socket, chunk = QByteArray(bytes, 'x')] {
            if (socket->bytesToWrite() < chunk.size())
                socket->write(chunk);
        });
        connect(socket, &QTcpSocket::disconnected, timer, &QTimer::stop);
        socket->write(MakeAnswer("Content-Type: text/plain", ""));
        timer->start(pauseMs);
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
        const QByteArray form = " /echo HTTP/1.1|Content-Type: application/x-www-form-urlencoded|";
        const QByteArray get = "GET" + form + "Content-Length: 0|Accept-Encoding: identity|User-Agent: QT-Win||";
        const QByteArray post =
            "POST" + form + "Accept-Encoding: identity|User-Agent: QT-Win|Content-Length: 3||" + POST;
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
            {{"long", m_server.m_answers["/long"], true, LongBody(), LongBody().size()},
             {"in chunks", MakeAnswer("Transfer-Encoding: chunked", InChunks(LongBody())), true, LongBody(), 0},
             {"500", MakeAnswer(ofLength("5"), "sorry", "500 Fault"), false, "sorry", 5},
             {"credentials", MakeAnswer("WWW-Authenticate: Basic realm=\"x\"", "", "401 Who?"), false, "", 0},
             {"redirect off the web", Redirect("file:///etc/hostname"), false, "moved", 5},
             {"compressed", MakeAnswer(coding + "GZip", gzip), false, "", 25},
             {"compressed redirect", MakeAnswer(coding + "GZip\r\nLocation: /long", gzip, "302 Found"), true,
              LongBody(), LongBody().size()},
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

    void Starts_data()
    {
        AddRows<QByteArray, int, QList<bool>>(
            {"calls", "started", "finished"}, // s starts, p stops
            {{"again", "ss", 2, {true}}, {"stopped between", "spps", 1, {false, false, true}}});
    }

    void Starts()
    {
        QFETCH(QByteArray, calls);
        QFETCH(QList<bool>, finished);
        CDownload download(nullptr, m_server.GetUrl("/echo"_s), QByteArray(), false);
        QSignalSpy started(&download, &CDownload::signal_Started);
        QList<bool> ends;
        connect(&download, &CDownload::signal_Finished, this, [&](bool status) { ends.append(status); });
        for (const char call : calls)
            call == 's' ? download.Start() : download.Stop();
        QCOMPARE(started.size(), 0); // the event loop starts it
        QTRY_VERIFY(ends.contains(true));
        QVERIFY(!QSignalSpy(&download, &CDownload::signal_Finished).wait(100));
        QCOMPARE(ends, finished);
        QTEST(started.size(), "started");
        download.Start();
        finished.append(true);
        QTRY_COMPARE(ends, finished);
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
        CDownload download(nullptr, m_server.GetUrl("/trickle"_s), QByteArray(), false);
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
        CDownload download(nullptr, m_server.GetUrl("/endless"_s), QByteArray(), false);
        QSignalSpy progress(&download, &CDownload::signal_Progress);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        QVERIFY(finished.wait(120000));
        QVERIFY(!progress.isEmpty());
        QCOMPARE(finished.at(0).at(0).toBool(), false);
        const int size = finished.at(0).at(1).toByteArray().size();
        QVERIFY2(size > 0 && size <= int(CDownload::MaxBytes), QByteArray::number(size));
        QVERIFY(!finished.wait(100)); // once
    }

    void Bytes_data() { AddRows("0|0.0 bytes;1023|1023.0 bytes;1536|1.5 kB;5242880|5.0 MB"_s); }

    void Bytes()
    {
        QFETCH(QStringList, in);
        QCOMPARE(CDownload::FormatBytes(in[0].toLongLong()), in[1]);
    }

    void Proxy_data()
    {
        AddRows<QString, bool>(
            {"settings", "good"},
            {{"empty", QString(), false},
             {"no object", "[]"_s, false},
             {"no port", R"({"host": "a"})"_s, false},
             {"port as text", R"({"host": "a", "port": "80"})"_s, false},
             {"large port", R"({"host": "a", "port": 65617})"_s, false},
             {"unknown type", R"({"host": "a", "port": 81, "type": "socks4"})"_s, false},
             {"good", R"({"host": "a", "port": 81, "type": "HTTP", "user": "u", "password": "p"})"_s, true},
             {"as it is", "{}"_s, true}});
    }

    void Proxy()
    {
        QFETCH(QString, settings);
        QFETCH(bool, good);
        CConfig::GetInstance()->SetConfigs({{"proxysettings"_s, settings}});
        const QNetworkProxy before = QNetworkProxy::applicationProxy();
        QCOMPARE(Globals::SetApplicationProxy(), good);
        const QNetworkProxy expected(QNetworkProxy::HttpProxy, "a"_s, 81, "u"_s, "p"_s);
        QCOMPARE(QNetworkProxy::applicationProxy(), good ? expected : before);
        QCOMPARE(CNetworkAccessManager::GetInstance()->proxy().type(), QNetworkProxy::NoProxy);
    }

    void ProxyCredentials_data()
    {
        AddRows<QString, bool>({"user", "status"},
                               {{"none", QString(), false}, {"the application's", "ann"_s, true}});
    }

    // A host may send the library's traffic through the application's proxy, whose credentials are known.
    void ProxyCredentials()
    {
        QFETCH(QString, user);
        QNetworkProxy::setApplicationProxy(
            {QNetworkProxy::NoProxy, QString(), 0, user, user.isEmpty() ? user : "secret"_s});
        auto *manager = CNetworkAccessManager::GetInstance();
        manager->setProxy({QNetworkProxy::HttpCachingProxy, "127.0.0.1"_s, m_server.serverPort()});
        CDownload download(nullptr, "http://casino.invalid/a"_s, QByteArray(), false);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        const bool answered = finished.wait();
        manager->setProxy(QNetworkProxy::NoProxy);
        QVERIFY(answered);
        QTEST(finished.at(0).at(0).toBool(), "status");
        const QByteArray body = finished.at(0).at(1).toByteArray();
        const QByteArray credentials = "|Proxy-Authorization: Basic " + QByteArray("ann:secret").toBase64() + '|';
        QVERIFY2(user.isEmpty() == body.isEmpty() && body.contains(user.isEmpty() ? "" : credentials), body);
    }

private:
    CServer m_server;
};

QTEST_GUILESS_MAIN(tst_download)
#include "tst_download.moc"
