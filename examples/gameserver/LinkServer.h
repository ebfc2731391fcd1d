#pragma once

#include <QSslConfiguration>
#include <QTcpServer>

/// Accepts connections as QSslSocket objects, which begin their handshake at once if the server has a certificate.
class CLinkServer : public QTcpServer
{
public:
    /// Sets the certificate and its key, and so encrypts all further connections.
    void SetConfiguration(const QSslConfiguration &configuration) { m_configuration = configuration; }
    /// Listens on 127.0.0.1; with \a port 0 on any free port. As many clients as the system allows may wait to be
    /// accepted, so that those who only connect don't keep the others out.
    bool Listen(quint16 port);
    bool IsEncrypted() const { return !m_configuration.localCertificate().isNull(); }

    /// Reads them from two PEM files. Returns false, with the reason in \a error, if one of them lacks what it should
    /// have, the certificate has expired, or the key is of another one.
    static bool ReadConfiguration(const QString &certificate, const QString &privateKey,
                                  QSslConfiguration &configuration, QString &error);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    QSslConfiguration m_configuration;
};
