#include "NetworkAccessManager.h"

#include <Singleton_p.h>
#include <network/WebRequest.h>

#include <QAuthenticator>
#include <QNetworkReply>
#include <QNetworkRequest>

PLUGININTERFACE_DEFINE_SINGLETON(CNetworkAccessManager);

CNetworkAccessManager::CNetworkAccessManager(QObject *parent)
    : QNetworkAccessManager(parent)
{
    setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    connect(this, &QNetworkAccessManager::sslErrors, this, &CNetworkAccessManager::slot_SslErrors);
    connect(this, &QNetworkAccessManager::authenticationRequired, this,
            &CNetworkAccessManager::slot_AuthenticationRequired);
    connect(this, &QNetworkAccessManager::proxyAuthenticationRequired, this,
            &CNetworkAccessManager::slot_ProxyAuthenticationRequired);
    connect(this, &QNetworkAccessManager::finished, this, &CNetworkAccessManager::slot_RequestFinished);
}

CNetworkAccessManager::~CNetworkAccessManager() = default;

// There are no credentials to provide, so the reply finishes with an error.
void CNetworkAccessManager::slot_AuthenticationRequired(QNetworkReply *, QAuthenticator *) {}

void CNetworkAccessManager::slot_ProxyAuthenticationRequired(QNetworkProxy, QAuthenticator *auth)
{
    const QNetworkProxy proxy = QNetworkProxy::applicationProxy();
    if (proxy.user().isEmpty() && proxy.password().isEmpty())
        return;
    auth->setUser(proxy.user());
    auth->setPassword(proxy.password());
}

QNetworkReply *CNetworkAccessManager::createRequest(QNetworkAccessManager::Operation op,
                                                    const QNetworkRequest &request, QIODevice *outgoingData)
{
    QNetworkRequest stamped(request);
    stamped.setAttribute(QNetworkRequest::HttpPipeliningAllowedAttribute, true);
    WebRequest::SetUserAgent(&stamped);
    return QNetworkAccessManager::createRequest(op, stamped, outgoingData);
}

// The caller that made the request deletes the reply.
void CNetworkAccessManager::slot_RequestFinished(QNetworkReply *) {}

void CNetworkAccessManager::slot_SslErrors(QNetworkReply *reply, QList<QSslError>)
{
    reply->ignoreSslErrors();
}
