#pragma once

#include <Export.h>

#include <QHash>
#include <QList>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslError>
#include <QString>

/// The certificates by which a client recognises its servers: those of authorities, or the servers' own. An authority
/// that only the system trusts doesn't count. Give it to CNetworkAccessManager::SetServerTrust(), or use
/// Protect() for a socket. A value; may be used in any thread.
class PLUGININTERFACE_EXPORT CServerTrust
{
public:
    /// Trusts certificates for a host, in place of those for all hosts, or for all hosts if \a host is empty. \a host
    /// is a name or an address as in a URL, in any case, without a port. Each call adds to those before.
    void Add(const QList<QSslCertificate> &certificates, const QString &host = QString());
    /// Adds the certificates of a PEM file. Returns false if there is anything else than certificates in it, or none,
    /// or if it can't be read. \a error is then the reason, in English and with the file's name; nothing has been
    /// added.
    bool AddFile(const QString &fileName, const QString &host, QString *error);

    /// Returns whether nothing has been added.
    bool IsEmpty() const { return m_certificates.isEmpty(); }
    /// Returns whether the host has to show one of certain certificates, or has one that they vouch for.
    bool Covers(const QString &host) const;
    /// Returns the certificates that count for the host.
    QList<QSslCertificate> GetCertificates(const QString &host) const;

    /// Sets up a connection to \a host so that its handshake only succeeds with a certificate that is valid now, for
    /// this host, and trusted, whatever \a configuration said before. Does nothing for a host that isn't covered.
    void Protect(QSslConfiguration *configuration, const QString &host) const;
    /// Returns whether a handshake that has found these errors may go on: all that is wrong with the certificate that
    /// \a host has shown is that no authority vouches for it, but it is trusted itself. \a shown is the certificate.
    bool Excuses(const QList<QSslError> &errors, const QSslCertificate &shown, const QString &host) const;

private:
    QHash<QString, QList<QSslCertificate>> m_certificates; // by host in lower case; empty for all
};
