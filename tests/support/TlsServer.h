#pragma once

#include <support/Literal.h>

#include <QProcess>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>
#include <QTemporaryDir>

/// Certificates that openssl makes in a folder of their own, each by its name. Keys are shared.
class CCertificates
{
public:
    /// Makes authorities "A" and "B" and a key. Failures show as missing certificates.
    CCertificates()
    {
        Write("cnf", "[req]\ndistinguished_name=dn\nprompt=no\n[dn]\nCN=test\n[ca]\ndefault_ca=one\n"
                     "[authority]\nbasicConstraints=critical,CA:TRUE\nkeyUsage=critical,keyCertSign\n"
                     "[one]\nnew_certs_dir=.\ndatabase=index\nserial=serial\ndefault_md=sha256\npolicy=any\n"
                     "[any]\ncommonName=supplied\n");
        Write("index", "");
        Write("serial", "01\n");
        for (const char *key : {"A", "B", "server"})
            Run("genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out %1.key"_s.arg(QLatin1String(key)));
        for (const char *name : {"A", "B"})
            Run("req -x509 -new -config cnf -extensions authority -key %1.key -subj /CN=%1 -days 2 -out %1.pem"_s.arg(
                QLatin1String(name)));
        Run("req -new -config cnf -key server.key -subj /CN=server -out csr"_s);
    }

    /// Makes a certificate for a host that an authority has signed, or that is signed by itself.
    QSslCertificate Make(const QString &authority, const QString &host, bool isExpired)
    {
        const QString kind = QRegularExpression("^[0-9.]+$"_s).match(host).hasMatch() ? "IP"_s : "DNS"_s;
        Write("extensions", "subjectAltName=%1:%2\nbasicConstraints=CA:FALSE\n"_s.arg(kind, host).toUtf8());
        QFile::remove(m_folder.filePath("made.pem"_s));
        const QString dates = isExpired ? "-startdate 20200101000000Z -enddate 20200201000000Z"_s : "-days 2"_s;
        const QString signer =
            authority.isEmpty() ? "-selfsign -keyfile server.key"_s : "-cert %1.pem -keyfile %1.key"_s.arg(authority);
        Run("ca -batch -notext -config cnf %1 %2 -extfile extensions -in csr -out made.pem"_s.arg(signer, dates));
        Write("index", ""); // the same name may be signed again
        return Get("made"_s);
    }

    QSslCertificate Get(const QString &name) const
    {
        return QSslCertificate::fromPath(GetFile(name + ".pem"_s)).value(0);
    }
    QSslKey GetKey() const
    {
        QFile file(GetFile("server.key"_s));
        return file.open(QIODevice::ReadOnly) ? QSslKey(&file, QSsl::Ec) : QSslKey();
    }
    QString GetFile(const QString &name) const { return m_folder.filePath(name); }

private:
    void Write(const char *name, const QByteArray &content)
    {
        QFile file(m_folder.filePath(QLatin1String(name)));
        if (file.open(QIODevice::WriteOnly))
            file.write(content);
    }
    void Run(const QString &arguments)
    {
        QProcess program;
        program.setWorkingDirectory(m_folder.path());
        program.start("openssl"_s, arguments.split(u' '));
        if (!program.waitForFinished() || program.exitCode() != 0)
            qWarning("openssl %s: %s", qPrintable(arguments), program.readAllStandardError().constData());
    }

    QTemporaryDir m_folder;
};

/// A web server on loopback over TLS, which remembers what it is asked.
class CTlsServer : public QTcpServer
{
public:
    explicit CTlsServer(const CCertificates &certificates)
        : m_key(certificates.GetKey())
    {
        listen(QHostAddress::LocalHost);
    }

    QString GetUrl(const QString &host) const { return "https://%1:%2/"_s.arg(host).arg(serverPort()); }

    QSslCertificate m_certificate;
    QByteArray m_answer = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\ndata";
    QByteArray m_received; ///< what came through TLS

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto *socket = new QSslSocket(this);
        socket->setSocketDescriptor(descriptor);
        socket->setLocalCertificate(m_certificate);
        socket->setPrivateKey(m_key);
        connect(socket, &QIODevice::readyRead, this, [this, socket] {
            m_received += socket->readAll();
            if (m_received.endsWith("\r\n\r\n"))
                socket->write(m_answer);
        });
        connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
        socket->startServerEncryption();
    }

private:
    QSslKey m_key;
};
