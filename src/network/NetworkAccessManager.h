#pragma once

#include <Export.h>

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QSharedPointer>
#include <QSslError>

/// The one way to web servers for the whole client.
///
/// It goes direct, without the application's proxy, unless somebody calls setProxy(). Every request bears the
/// client's user agent. TLS errors stop no request: what arrives over https is as trustworthy as over http, so
/// nothing secret goes this way. A server that asks for credentials gets none. A reply belongs to who asked for it.
/// Main thread.
class PLUGININTERFACE_EXPORT CNetworkAccessManager : public QNetworkAccessManager
{
    Q_OBJECT

public:
    /// Makes an object beside the shared one.
    explicit CNetworkAccessManager(QObject *parent = nullptr);
    ~CNetworkAccessManager() override;

    /// Creates the object on first use; the library owns it.
    static CNetworkAccessManager *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop, and its replies with it; a CDownload that runs then fails.
    static void DestroyInstance();

    /// What get(), post() and head() pass through.
    QNetworkReply *createRequest(QNetworkAccessManager::Operation op, const QNetworkRequest &request,
                                 QIODevice *outgoingData) override;

public Q_SLOTS:
    /// Gives no credentials, and the reply ends in its error.
    void slot_AuthenticationRequired(QNetworkReply *reply, QAuthenticator *auth);
    /// Answers with user and password of the application's proxy, if it has any.
    void slot_ProxyAuthenticationRequired(QNetworkProxy proxy, QAuthenticator *auth);

private Q_SLOTS:
    void slot_RequestFinished(QNetworkReply *reply);
    void slot_SslErrors(QNetworkReply *reply, QList<QSslError> error);

private:
    static QSharedPointer<CNetworkAccessManager> m_Instance;
};
