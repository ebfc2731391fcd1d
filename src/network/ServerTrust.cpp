#include "ServerTrust.h"

#include <QDateTime>
#include <QFile>
#include <QSslSocket>

#include <algorithm>

namespace {

// Returns the certificates of a PEM file's content; none if there is anything else in it.
QList<QSslCertificate> ReadPem(const QByteArray &content)
{
    const QList<QSslCertificate> certificates = QSslCertificate::fromData(content, QSsl::Pem);
    const bool isUsable = std::none_of(certificates.begin(), certificates.end(),
                                       [](const QSslCertificate &certificate) { return certificate.isNull(); });
    return isUsable && content.count("-----BEGIN ") == certificates.size() ? certificates : QList<QSslCertificate>();
}

} // namespace

void CServerTrust::Add(const QList<QSslCertificate> &certificates, const QString &host)
{
    if (!certificates.isEmpty())
        m_certificates[host.toLower()] += certificates;
}

bool CServerTrust::AddFile(const QString &fileName, const QString &host, QString *error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = fileName + QStringLiteral(": ") + file.errorString();
        return false;
    }
    const QList<QSslCertificate> certificates = ReadPem(file.readAll());
    if (certificates.isEmpty()) {
        *error = fileName + QStringLiteral(": not a PEM file of certificates");
        return false;
    }
    Add(certificates, host);
    return true;
}

bool CServerTrust::Covers(const QString &host) const
{
    return !GetCertificates(host).isEmpty();
}

QList<QSslCertificate> CServerTrust::GetCertificates(const QString &host) const
{
    const auto own = m_certificates.constFind(host.toLower());
    return own != m_certificates.constEnd() ? *own : m_certificates.value(QString());
}

void CServerTrust::Protect(QSslConfiguration *configuration, const QString &host) const
{
    if (!Covers(host))
        return;
    configuration->setCaCertificates(GetCertificates(host));
    configuration->setPeerVerifyMode(QSslSocket::VerifyPeer);
    configuration->setPeerVerifyDepth(0); // as deep as the chain is
    configuration->setProtocol(QSsl::TlsV1_2OrLater);
}

bool CServerTrust::Excuses(const QList<QSslError> &errors, const QSslCertificate &shown, const QString &host) const
{
    const auto isOfChain = [](const QSslError &error) {
        switch (error.error()) {
        case QSslError::UnableToGetIssuerCertificate:
        case QSslError::UnableToGetLocalIssuerCertificate:
        case QSslError::UnableToVerifyFirstCertificate:
        case QSslError::SelfSignedCertificate:
        case QSslError::SelfSignedCertificateInChain:
        case QSslError::CertificateUntrusted:
            return true;
        default:
            return false;
        }
    };
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const bool isValidNow = !shown.isNull() && shown.effectiveDate() <= now && now <= shown.expiryDate();
    return isValidNow && GetCertificates(host).contains(shown) &&
           std::all_of(errors.begin(), errors.end(), isOfChain);
}
