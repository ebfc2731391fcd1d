#pragma once

#include <Export.h>
#include <network/ServerTrust.h>

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QSharedPointer>
#include <QSslError>

/// The network access manager for all requests of the client to web servers.
///
/// It uses no proxy, not even the application's, unless setProxy() is called. Every request has the client's user
/// agent. A server that asks for credentials gets none. The caller owns the reply to its request. Main thread.
///
/// TLS errors are ignored by default: data received over https is no more trustworthy than over http, so nothing
/// secret may be sent. With SetServerTrust() a host names the certificates that count, and then relies on https.
class PLUGININTERFACE_EXPORT CNetworkAccessManager : public QNetworkAccessManager
{
    Q_OBJECT

public:
    /// Creates an object in addition to the shared one.
    explicit CNetworkAccessManager(QObject *parent = nullptr);
    ~CNetworkAccessManager() override;

    /// Returns the shared object, creating it on first use; the library owns it.
    static CNetworkAccessManager *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the shared object and its replies at the next turn of the event loop. A running CDownload then fails.
    static void DestroyInstance();

    /// Sets the certificates by which servers are recognised; an empty object restores the default. It applies to the
    /// requests that are made from then on. Those under way are aborted, and all connections end.
    ///
    /// A request over https to a host that \a trust covers ends in QNetworkReply::SslHandshakeFailedError if the
    /// server's certificate isn't trusted, is for another host or isn't valid now. Nothing of the request has been
    /// sent then. GetError() and CDownload::GetError() tell the reason. The TLS configuration of
    /// the request doesn't count, but for a certificate of the client.
    ///
    /// Redirects don't leave TLS, on any host: CDownload follows none from https to http. A request that asks Qt to
    /// follow redirects only follows those to the same scheme, host and port. A request over http is made as before,
    /// so a host uses https wherever it matters.
    void SetServerTrust(const CServerTrust &trust);
    /// Returns what SetServerTrust() has set.
    CServerTrust GetServerTrust() const;
    /// Returns why a reply of any manager of this class has failed, in English, with all that is wrong with the
    /// certificate; empty if it hasn't failed.
    static QString GetError(const QNetworkReply &reply);
    /// Lets only proxies have the application proxy's user and password. By default any server gets them that answers
    /// with status 407.
    void SetProxyCredentialsGuarded(bool on);

    /// Creates the request for get(), post() and head().
    QNetworkReply *createRequest(QNetworkAccessManager::Operation op, const QNetworkRequest &request,
                                 QIODevice *outgoingData) override;

public Q_SLOTS:
    /// Provides no credentials, so the reply finishes with an error.
    void slot_AuthenticationRequired(QNetworkReply *reply, QAuthenticator *auth);
    /// Provides user and password of the application's proxy, if it has any and SetProxyCredentialsGuarded() doesn't
    /// prevent it.
    void slot_ProxyAuthenticationRequired(QNetworkProxy proxy, QAuthenticator *auth);

private Q_SLOTS:
    void slot_RequestFinished(QNetworkReply *reply);
    void slot_SslErrors(QNetworkReply *reply, QList<QSslError> error);

private:
    static QSharedPointer<CNetworkAccessManager> m_Instance;
};
