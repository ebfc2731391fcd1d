#include <network/Download.h>
#include <network/NetworkAccessManager.h>

#include <support/Rows.h>
#include <support/TlsServer.h>

#include <QtTest>

// Servers on loopback that aren't those that the client means, and what they get to read.
class tst_servertrust : public QObject
{
    Q_OBJECT

    // Loads an address, and returns the body, or the reason why there is none in brackets.
    static QString Load(const QString &url)
    {
        CDownload download(nullptr, url, QByteArray(), false);
        QSignalSpy finished(&download, &CDownload::signal_Finished);
        download.Start();
        if (!finished.wait())
            return QString();
        const bool isGood = finished.at(0).at(0).toBool();
        return isGood ? QString::fromUtf8(finished.at(0).at(1).toByteArray()) : u'[' + download.GetError() + u']';
    }

    void Trust(const QSslCertificate &certificate, const QString &host = QString())
    {
        CServerTrust trust;
        trust.Add({certificate}, host);
        CNetworkAccessManager::GetInstance()->SetServerTrust(trust);
    }

private Q_SLOTS:
    void init() { CNetworkAccessManager::DestroyInstance(); }
    void cleanup()
    {
        QSslConfiguration::setDefaultConfiguration(m_system);
        QNetworkProxy::setApplicationProxy(QNetworkProxy());
    }
    void cleanupTestCase() { CNetworkAccessManager::DestroyInstance(); }

    void Certificates_data()
    {
        const QString ok = "data"_s;
        const QString by = "localhost"_s;
        AddRows<QString, QString, QString, bool, QString>(
            {"trusted", "signer", "host", "isExpired", "answer"},
            {{"nothing is chosen", ""_s, ""_s, "else"_s, true, ok},
             {"the authority's", "A"_s, "A"_s, by, false, ok},
             {"of another authority", "A"_s, "B"_s, by, false, "untrusted"_s},
             {"signed by itself", "A"_s, ""_s, by, false, "self-signed"_s},
             {"for another host", "A"_s, "A"_s, "example.org"_s, false, "The host name did not match"_s},
             {"expired", "A"_s, "A"_s, by, true, "The certificate has expired"_s},
             {"the server's own", "server"_s, ""_s, by, false, ok},
             {"the server's own from an authority", "server"_s, "B"_s, by, false, ok},
             {"the server's own for another host", "server"_s, ""_s, "example.org"_s, false, "The host name did"_s},
             {"the server's own, expired", "server"_s, ""_s, by, true, "The certificate has expired"_s}});
    }
    void Certificates()
    {
        QFETCH(QString, trusted);
        QFETCH(QString, signer);
        QFETCH(QString, host);
        QFETCH(bool, isExpired);
        QFETCH(QString, answer);
        CTlsServer server(m_certificates);
        server.m_certificate = m_certificates.Make(signer, host, isExpired);
        QVERIFY(!server.m_certificate.isNull());
        // That the system trusts an authority doesn't count.
        QSslConfiguration generous = m_system;
        generous.addCaCertificates({m_certificates.Get("B"_s)});
        QSslConfiguration::setDefaultConfiguration(generous);
        if (!trusted.isEmpty())
            Trust(trusted == "server"_s ? server.m_certificate : m_certificates.Get(trusted));
        const QString got = Load(server.GetUrl("localhost"_s));
        const bool isGood = answer == "data"_s;
        QVERIFY2(isGood ? got == answer : got.startsWith(u'[') && got.contains(answer), qPrintable(got));
        QCOMPARE(!server.m_received.isEmpty(), isGood);
        // What the request itself says about certificates doesn't count, either.
        QNetworkRequest request(QUrl(server.GetUrl("localhost"_s)));
        QSslConfiguration careless = generous;
        careless.setPeerVerifyMode(QSslSocket::VerifyNone);
        request.setSslConfiguration(careless);
        const QScopedPointer<QNetworkReply> reply(CNetworkAccessManager::GetInstance()->get(request));
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(reply->error() == QNetworkReply::NoError, isGood);
    }

    void TrustIsForHosts()
    {
        CTlsServer server(m_certificates);
        server.m_certificate = m_certificates.Make("B"_s, "localhost"_s, false);
        const QString url = server.GetUrl("LocalHost"_s);
        Trust(m_certificates.Get("A"_s), "127.0.0.1"_s);
        QCOMPARE(Load(url), "data"_s);
        CServerTrust trust = CNetworkAccessManager::GetInstance()->GetServerTrust();
        QString error;
        QVERIFY2(trust.AddFile(m_certificates.GetFile("B.pem"_s), "LOCALHOST"_s, &error), qPrintable(error));
        CNetworkAccessManager::GetInstance()->SetServerTrust(trust);
        QCOMPARE(Load(url), "data"_s);
        QVERIFY(Load(server.GetUrl("127.0.0.1"_s)).startsWith(u'['));
        for (const char *name : {"A.key", "cnf", "missing"}) {
            error.clear();
            QVERIFY(!trust.AddFile(m_certificates.GetFile(QLatin1String(name)), QString(), &error));
            QVERIFY2(error.contains(m_certificates.GetFile(QLatin1String(name)) + ": "_s), qPrintable(error));
        }
    }

    // Of a server that was connected before the host has said whom it trusts.
    void OldConnectionIsNotUsed()
    {
        CTlsServer server(m_certificates);
        server.m_certificate = m_certificates.Make("B"_s, "localhost"_s, false);
        QCOMPARE(Load(server.GetUrl("localhost"_s)), "data"_s);
        server.m_received.clear();
        CTlsServer slow(m_certificates);
        slow.m_certificate = server.m_certificate;
        slow.m_answer.clear();
        CDownload waiting(nullptr, slow.GetUrl("localhost"_s), QByteArray(), false);
        QSignalSpy finished(&waiting, &CDownload::signal_Finished);
        waiting.Start();
        QTRY_VERIFY(!slow.m_received.isEmpty());
        Trust(m_certificates.Get("A"_s));
        QCOMPARE(finished.size(), 1);
        QVERIFY(Load(server.GetUrl("localhost"_s)).startsWith(u'['));
        QCOMPARE(server.m_received, QByteArray());
    }

    void RedirectsStayInTls()
    {
        QTcpServer plain;
        QVERIFY(plain.listen(QHostAddress::LocalHost));
        CTlsServer server(m_certificates);
        server.m_certificate = m_certificates.Make("A"_s, "localhost"_s, false);
        const QString target = "http://localhost:%1/x"_s.arg(plain.serverPort());
        server.m_answer = "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + target.toUtf8() + "\r\n\r\n";
        Trust(m_certificates.Get("A"_s));
        QCOMPARE(Load(server.GetUrl("localhost"_s)), "[A redirect to "_s + target + " isn't followed]"_s);
        // Nor does Qt leave the server if it is asked to follow.
        CTlsServer other(m_certificates);
        other.m_certificate = server.m_certificate;
        for (const QString &address : {target, other.GetUrl("localhost"_s)}) {
            server.m_answer = "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + address.toUtf8() + "\r\n\r\n";
            QNetworkRequest request(QUrl(server.GetUrl("localhost"_s)));
            request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
            const QScopedPointer<QNetworkReply> reply(CNetworkAccessManager::GetInstance()->get(request));
            QTRY_VERIFY(reply->isFinished());
            QCOMPARE(reply->error(), QNetworkReply::InsecureRedirectError);
        }
        QVERIFY(!plain.hasPendingConnections() && other.m_received.isEmpty());
    }

    void ProxysCredentials()
    {
        QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, "127.0.0.1"_s, 9, "user"_s, "secret"_s});
        CTlsServer server(m_certificates);
        server.m_certificate = m_certificates.Make("A"_s, "localhost"_s, false);
        server.m_answer = "HTTP/1.1 407 Who?\r\nProxy-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n";
        for (const bool isGuarded : {true, false}) {
            CNetworkAccessManager::GetInstance()->SetProxyCredentialsGuarded(isGuarded);
            QVERIFY(Load(server.GetUrl("localhost"_s)).startsWith(u'['));
            QCOMPARE(server.m_received.contains("Proxy-Authorization"), !isGuarded);
        }
    }

private:
    CCertificates m_certificates;
    const QSslConfiguration m_system = QSslConfiguration::defaultConfiguration();
};

QTEST_GUILESS_MAIN(tst_servertrust)
#include "tst_servertrust.moc"
