#include <network/ApplicationProxy.h>
#include <network/Download.h>
#include <network/NetworkAccessManager.h>

#include <support/Literal.h>
#include <support/Singletons.h>

#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <httplib.h>

#include <chrono>
#include <thread>

namespace {

using namespace std::chrono_literals;

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

// A web server on loopback, in a thread of its own.
class CWebServer
{
public:
    CWebServer()
    {
        const auto redirect = [this](const char *from, const std::string &to) {
            m_server.Get(from, [to](const httplib::Request &, httplib::Response &answer) {
                answer.set_redirect(to);
                answer.body = "moved";
            });
        };
        const auto echo = [](const httplib::Request &request, httplib::Response &answer) {
            answer.set_content(request.method + ' ' + request.get_header_value("Content-Type") + ' ' +
                                   request.get_header_value("Content-Length") + ' ' +
                                   request.get_header_value("User-Agent") + ' ' + request.body,
                               "text/plain");
        };
        m_server.Get("/echo", echo);
        m_server.Post("/echo", echo);
        redirect("/dir/1", "2"); // relative
        redirect("/dir/2", "/dir/3");
        m_server.Get("/fault", [](const httplib::Request &, httplib::Response &answer) {
            answer.status = 500;
            answer.set_content("sorry", "text/plain");
        });
        m_server.Get("/credentials", [](const httplib::Request &, httplib::Response &answer) {
            answer.status = 401;
            answer.set_header("WWW-Authenticate", "Basic realm=\"x\"");
        });
        // So long as they are asked for, without a length.
        const auto endless = [this](const char *path, std::size_t size, std::chrono::milliseconds pause) {
            m_server.Get(path, [size, pause](const httplib::Request &, httplib::Response &answer) {
                answer.set_chunked_content_provider("text/plain", [=](std::size_t, httplib::DataSink &sink) {
                    std::this_thread::sleep_for(pause);
                    const std::string chunk(size, 'x');
                    return sink.write(chunk.data(), chunk.size());
                });
            });
        };
        endless("/endless", 1 << 20, 0ms);
        endless("/trickle", 100, 20ms);
        m_server.Get("/cut", [](const httplib::Request &, httplib::Response &answer) {
            answer.set_content_provider(1000, "text/plain",
                                        [](std::size_t offset, std::size_t, httplib::DataSink &sink) {
                                            return offset == 0 && sink.write("half", 4);
                                        });
        });
        m_server.Get("/long", [](const httplib::Request &, httplib::Response &answer) {
            answer.set_content(LongBody().toStdString(), "text/plain");
        });
        m_server.Get("/long/chunks", [](const httplib::Request &, httplib::Response &answer) {
            answer.set_chunked_content_provider("text/plain", [](std::size_t offset, httplib::DataSink &sink) {
                const std::string part = LongBody().mid(int(offset), 100000).toStdString();
                if (part.empty())
                    sink.done();
                return part.empty() || sink.write(part.data(), part.size());
            });
        });
        // As a proxy that wants to know who asks.
        m_server.set_pre_routing_handler([](const httplib::Request &request, httplib::Response &answer) {
            if (request.target.rfind("http://", 0) != 0)
                return httplib::Server::HandlerResponse::Unhandled;
            const std::string who = request.get_header_value("Proxy-Authorization");
            answer.status = who.empty() ? 407 : 200;
            answer.set_header("Proxy-Authenticate", "Basic realm=\"x\"");
            answer.set_content(request.target + ' ' + who, "text/plain");
            return httplib::Server::HandlerResponse::Handled;
        });
        m_iPort = m_server.bind_to_any_port("127.0.0.1");
        redirect("/dir/3", "http://127.0.0.1:" + std::to_string(m_iPort) + "/echo");
        redirect("/dir/0", "/dir/1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~CWebServer()
    {
        m_server.stop();
        m_thread.join();
    }
    QString GetUrl(const QString &path) const { return "http://127.0.0.1:%1"_s.arg(m_iPort) + path; }

private:
    httplib::Server m_server;
    int m_iPort = 0;
    std::thread m_thread;
};

// Answers each request with the same bytes, true to HTTP or not, and closes.
class CRawServer : public QTcpServer
{
public:
    explicit CRawServer(const QByteArray &answer)
    {
        connect(this, &QTcpServer::newConnection, this, [this, answer] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [socket, answer] {
                if (socket->readAll().endsWith("\r\n\r\n") && socket->write(answer))
                    socket->disconnectFromHost();
            });
        });
        listen(QHostAddress::LocalHost);
    }
    QString GetUrl() const { return "http://127.0.0.1:%1/"_s.arg(serverPort()); }
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

    void Transfers_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("post");
        QTest::addColumn<bool>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("lastPath");
        const QByteArray form = "application/x-www-form-urlencoded ";
        QTest::newRow("get") << "/echo"_s << QByteArray() << true << "GET " + form + "0 QT-Win "
                             << "/echo"_s;
        QTest::newRow("post") << "/echo"_s << QByteArray("a=b") << true << "POST " + form + "3 QT-Win a=b"
                              << "/echo"_s;
        QTest::newRow("3 redirects") << "/dir/1"_s << QByteArray() << true << "GET " + form + "0 QT-Win "
                                     << "/echo"_s;
        QTest::newRow("4 redirects") << "/dir/0"_s << QByteArray() << false << QByteArray("moved") << "/dir/3"_s;
        QTest::newRow("500") << "/fault"_s << QByteArray() << false << QByteArray("sorry") << "/fault"_s;
        QTest::newRow("credentials") << "/credentials"_s << QByteArray() << false << QByteArray() << "/credentials"_s;
        QTest::newRow("cut off") << "/cut"_s << QByteArray() << false << QByteArray("half") << "/cut"_s;
        for (const QString &path : {"/long"_s, "/long/chunks"_s})
            QTest::newRow(qPrintable(path)) << path << QByteArray() << true << LongBody() << path;
    }

    void Transfers()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, post);
        CDownload download(nullptr, m_server.GetUrl(path), post, false);
        QSignalSpy started(&download, &CDownload::signal_Started);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        for (int run = 1; run <= 2 && path == "/echo"_s; ++run) { // it can be started again
            download.Start();
            QCOMPARE(started.size(), run - 1);
            QTRY_COMPARE(finished.size(), run);
        }
        if (finished.isEmpty())
            download.Start();
        QTRY_VERIFY(!finished.isEmpty());
        QTEST(finished.last().at(0).toBool(), "status");
        QTEST(finished.last().at(1).toByteArray(), "body");
        QTEST(download.GetName(), "lastPath");
        QCOMPARE(download.GetBaseUrl(), QUrl(m_server.GetUrl(path)));
        QCOMPARE(download.GetContentLength(), 0u);
    }

    void Answers_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<unsigned int>("length");
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray gzip = QByteArray::fromBase64("H4sIAAAAAAACA8tIzcnJBwCGphA2BQAAAA=="); // "hello"
        const QByteArray packed = "Content-Encoding: GZip\r\nContent-Length: 25\r\n\r\n" + gzip;
        QTest::newRow("compressed") << ok + packed << false << QByteArray() << 25u;
        QTest::newRow("compressed, with a redirect")
            << "HTTP/1.1 302 Found\r\nLocation: " + m_server.GetUrl("/long"_s).toLatin1() + "\r\n" + packed << true
            << LongBody() << uint(LongBody().size());
        QTest::newRow("no compression") << ok + "Content-Encoding: utf-8\r\nContent-Length: 5\r\n\r\nhello" << true
                                        << QByteArray("hello") << 5u;
        QTest::newRow("length below 0") << ok + "Content-Length: -5\r\n\r\nhello" << true << QByteArray("hello")
                                        << 0u;
        QTest::newRow("cut off, length beyond 32 bits")
            << ok + "Content-Length: 4294967301\r\n\r\nhello" << false << QByteArray("hello") << 4294967295u;
        QTest::newRow("length of what isn't sent")
            << QByteArray("HTTP/1.1 304 Not Modified\r\nContent-Length: 5\r\n\r\n") << true << QByteArray() << 5u;
    }

    void Answers()
    {
        QFETCH(QByteArray, answer);
        for (int run = 0; run < 10; ++run) { // now and then Qt takes a body that is cut off for a whole one
            const CRawServer server(answer);
            CDownload download(nullptr, server.GetUrl(), QByteArray(), false);
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
        QTest::addColumn<QByteArray>("calls"); // s starts, p stops
        QTest::addColumn<int>("started");
        QTest::addColumn<QList<bool>>("finished");
        QTest::newRow("again") << QByteArray("ss") << 2 << QList<bool>{true};
        QTest::newRow("stopped between") << QByteArray("spps") << 1 << QList<bool>{false, false, true};
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
        QTRY_VERIFY(ends.contains(true));
        QVERIFY(!QSignalSpy(&download, &CDownload::signal_Finished).wait(100));
        QCOMPARE(ends, finished);
        QTEST(started.size(), "started");
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

    void ManagerEnds()
    {
        CDownload download(nullptr, m_server.GetUrl("/trickle"_s), QByteArray(), false);
        QSignalSpy progress(&download, &CDownload::signal_Progress);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        QVERIFY(progress.wait());
        CNetworkAccessManager::DestroyInstance();
        QVERIFY(finished.wait()); // well before the stall counts
        QCOMPARE(finished, (QList<QVariantList>{{false, QByteArray()}}));
    }

    void HeadOnly()
    {
        CDownload download(nullptr, m_server.GetUrl("/dir/1"_s), "a=b", true);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        QVERIFY(finished.wait());
        QVERIFY(finished.at(0).at(0).toBool() && finished.at(0).at(1).toByteArray().isEmpty());
        QCOMPARE(download.GetCurUrl(), QUrl(m_server.GetUrl("/echo"_s)));
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
        QVERIFY(size > 0 && size <= int(CDownload::MaxBytes));
        QVERIFY(!finished.wait(100)); // once
    }

    void Stopped()
    {
        CDownload download(nullptr, m_server.GetUrl("/trickle"_s), QByteArray(), false);
        QSignalSpy progress(&download, &CDownload::signal_Progress);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        QVERIFY(progress.wait());
        download.Stop();
        QCOMPARE(finished, (QList<QVariantList>{{false, QByteArray()}}));
        QVERIFY(!finished.wait(200)); // what the reply still has to tell counts for nothing
    }

    void Bytes()
    {
        for (const auto &[bytes, text] :
             {std::pair(0, "0.0 bytes"), {1023, "1023.0 bytes"}, {1536, "1.5 kB"}, {5 << 20, "5.0 MB"}})
            QCOMPARE(CDownload::FormatBytes(bytes), QLatin1String(text));
    }

    void Proxy_data()
    {
        QTest::addColumn<QString>("settings");
        QTest::addColumn<bool>("good");
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("no object") << "[]"_s << false;
        QTest::newRow("no port") << R"({"host": "a"})"_s << false;
        QTest::newRow("port as text") << R"({"host": "a", "port": "80"})"_s << false;
        QTest::newRow("large port") << R"({"host": "a", "port": 65617})"_s << false;
        QTest::newRow("unknown type") << R"({"host": "a", "port": 81, "type": "socks4"})"_s << false;
        QTest::newRow("good") << R"({"host": "a", "port": 81, "type": "HTTP", "user": "u", "password": "p"})"_s
                              << true;
        QTest::newRow("as it is") << "{}"_s << true;
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

    // A host may send the library's traffic through the application's proxy, whose credentials are known.
    void ProxyCredentials()
    {
        const QUrl server(m_server.GetUrl(QString()));
        auto *manager = CNetworkAccessManager::GetInstance();
        manager->setProxy({QNetworkProxy::HttpCachingProxy, server.host(), quint16(server.port())});
        for (const QString &user : {QString(), "ann"_s}) {
            QNetworkProxy::setApplicationProxy(
                {QNetworkProxy::NoProxy, QString(), 0, user, user.isEmpty() ? user : "secret"_s});
            CDownload download(nullptr, "http://casino.invalid/a"_s, QByteArray(), false);
            QSignalSpy finished(&download, &CDownload::signal_Finished);
            download.Start();
            QVERIFY(finished.wait());
            QCOMPARE(finished.at(0).at(0).toBool(), !user.isEmpty());
            QCOMPARE(finished.at(0).at(1).toByteArray(),
                     QByteArray("http://casino.invalid/a ") +
                         (user.isEmpty() ? "" : "Basic " + QByteArray("ann:secret").toBase64()));
        }
        manager->setProxy(QNetworkProxy::NoProxy);
    }

private:
    CWebServer m_server;
};

QTEST_GUILESS_MAIN(tst_download)
#include "tst_download.moc"
