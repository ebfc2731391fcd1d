#pragma once

#include <Export.h>

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QSharedPointer>
#include <QSslError>

/// The network access manager for all requests of the client to web servers.
///
/// It uses no proxy, not even the application's, unless setProxy() is called. Every request has the client's user
/// agent. TLS errors are ignored: data received over https is no more trustworthy than over http, so nothing secret
/// may be sent. A server that asks for credentials gets none. The caller owns the reply to its request. Main thread.
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

    /// Creates the request for get(), post() and head().
    QNetworkReply *createRequest(QNetworkAccessManager::Operation op, const QNetworkRequest &request,
                                 QIODevice *outgoingData) override;

public Q_SLOTS:
    /// Provides no credentials, so the reply finishes with an error.
    void slot_AuthenticationRequired(QNetworkReply *reply, QAuthenticator *auth);
    /// Provides user and password of the application's proxy, if it has any.
    void slot_ProxyAuthenticationRequired(QNetworkProxy proxy, QAuthenticator *auth);

private Q_SLOTS:
    void slot_RequestFinished(QNetworkReply *reply);
    void slot_SslErrors(QNetworkReply *reply, QList<QSslError> error);

private:
    static QSharedPointer<CNetworkAccessManager> m_Instance;
};
