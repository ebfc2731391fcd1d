#include "LinkServer.h"

#include <QDateTime>
#include <QFile>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>

#include <memory>

#include <openssl/x509.h>
#include <sys/socket.h>

namespace {

QSslKey ReadKey(QFile &file)
{
    const QByteArray content = file.readAll();
    for (const QSsl::KeyAlgorithm algorithm : {QSsl::Ec, QSsl::Rsa}) {
        const QSslKey key(content, algorithm);
        if (!key.isNull())
            return key;
    }
    return QSslKey();
}

// Qt tells only when a client comes.
bool IsKeyOf(const QSslCertificate &certificate, const QSslKey &key)
{
    const QByteArray certificateBytes = certificate.toDer();
    const QByteArray keyBytes = key.toDer();
    const auto *at = reinterpret_cast<const unsigned char *>(certificateBytes.constData());
    const std::unique_ptr<X509, decltype(&X509_free)> x509(d2i_X509(nullptr, &at, certificateBytes.size()),
                                                           &X509_free);
    at = reinterpret_cast<const unsigned char *>(keyBytes.constData());
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> pair(d2i_AutoPrivateKey(nullptr, &at, keyBytes.size()),
                                                                   &EVP_PKEY_free);
    return x509 && pair && X509_check_private_key(x509.get(), pair.get()) == 1;
}

} // namespace

bool CLinkServer::Listen(quint16 port)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 3, 0)
    setListenBacklogSize(SOMAXCONN);
#endif
    const bool isGood = listen(QHostAddress::LocalHost, port);
#if QT_VERSION < QT_VERSION_CHECK(6, 3, 0)
    if (isGood)
        ::listen(static_cast<int>(socketDescriptor()), SOMAXCONN); // again, since Qt lets 50 wait
#endif
    return isGood;
}

bool CLinkServer::ReadConfiguration(const QString &certificate, const QString &privateKey,
                                    QSslConfiguration &configuration, QString &error)
{
    QFile chainFile(certificate);
    QFile keyFile(privateKey);
    for (QFile *file : {&chainFile, &keyFile}) {
        if (!file->open(QIODevice::ReadOnly)) {
            error = file->fileName() + QStringLiteral(": ") + file->errorString();
            return false;
        }
    }
    const QList<QSslCertificate> chain = QSslCertificate::fromDevice(&chainFile);
    const QSslKey key = ReadKey(keyFile);
    if (chain.isEmpty())
        error = certificate + QStringLiteral(": not a PEM file of certificates");
    else if (key.isNull())
        error = privateKey + QStringLiteral(": not a PEM file of a private key");
    else if (chain.constFirst().expiryDate() < QDateTime::currentDateTimeUtc())
        error = certificate + QStringLiteral(": has expired");
    else if (!IsKeyOf(chain.constFirst(), key))
        error = privateKey + QStringLiteral(": isn't the key of ") + certificate;
    configuration.setLocalCertificateChain(chain);
    configuration.setPrivateKey(key);
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone); // users have passwords, not certificates
    return error.isEmpty();
}

void CLinkServer::incomingConnection(qintptr descriptor)
{
    auto *socket = new QSslSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    if (IsEncrypted()) {
        socket->setSslConfiguration(m_configuration);
        socket->startServerEncryption();
    }
    addPendingConnection(socket);
}
