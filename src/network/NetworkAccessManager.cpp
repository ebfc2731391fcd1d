#include "NetworkAccessManager.h"

#include <Singleton_p.h>
#include <network/WebRequest.h>

#include <QAuthenticator>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

namespace {

// What a host has chosen for a manager. It isn't in the object, whose layout plugins with classes of their own know.
struct SChoices
{
    CServerTrust trust;
    bool bGuarded = false;
};

using TChoices = QHash<const CNetworkAccessManager *, SChoices>;
Q_GLOBAL_STATIC(TChoices, choices)

// What is wrong with the certificate that a server has shown.
constexpr char FAULTS_PROPERTY[] = "plugininterface_tls_faults";

// A redirect that Qt follows has the TLS configuration of the first request, so it mustn't lead to another host.
void Protect(QNetworkRequest *request, const CServerTrust &trust, int managersPolicy)
{
    QSslConfiguration configuration = request->sslConfiguration();
    trust.Protect(&configuration, request->url().host());
    request->setSslConfiguration(configuration);
    const auto policy = QNetworkRequest::RedirectPolicyAttribute;
    if (request->attribute(policy, managersPolicy).toInt() != QNetworkRequest::ManualRedirectPolicy)
        request->setAttribute(policy, QNetworkRequest::SameOriginRedirectPolicy);
}

} // namespace

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

CNetworkAccessManager::~CNetworkAccessManager()
{
    if (!choices.isDestroyed()) // an object that lives to the end of the process
        choices->remove(this);
}

void CNetworkAccessManager::SetServerTrust(const CServerTrust &trust)
{
    (*choices)[this].trust = trust;
    // Connections may be to servers that aren't trusted. Qt leaves the replies that use one without an end, so they
    // are aborted, but only then: whoever hears of it may make a request.
    QList<QPointer<QNetworkReply>> replies;
    const auto children = findChildren<QNetworkReply *>(QString(), Qt::FindDirectChildrenOnly);
    for (QNetworkReply *reply : children)
        replies.append(reply);
    clearConnectionCache();
    for (const QPointer<QNetworkReply> &reply : qAsConst(replies)) {
        if (reply && !reply->isFinished())
            reply->abort();
    }
}

CServerTrust CNetworkAccessManager::GetServerTrust() const
{
    return choices->value(this).trust;
}

QString CNetworkAccessManager::GetError(const QNetworkReply &reply)
{
    if (reply.error() == QNetworkReply::NoError)
        return QString();
    const QString faults = reply.property(FAULTS_PROPERTY).toString(); // Qt says no more than that there are some
    return faults.isEmpty() ? reply.errorString() : faults;
}

void CNetworkAccessManager::SetProxyCredentialsGuarded(bool on)
{
    (*choices)[this].bGuarded = on;
}

// There are no credentials to provide, so the reply finishes with an error.
void CNetworkAccessManager::slot_AuthenticationRequired(QNetworkReply *, QAuthenticator *) {}

void CNetworkAccessManager::slot_ProxyAuthenticationRequired(QNetworkProxy asking, QAuthenticator *auth)
{
    const QNetworkProxy proxy = QNetworkProxy::applicationProxy();
    if (proxy.user().isEmpty() && proxy.password().isEmpty())
        return;
    const bool isProxy = asking.hostName() == proxy.hostName() && asking.port() == proxy.port();
    if (choices->value(this).bGuarded && !isProxy)
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
    const CServerTrust trust = GetServerTrust();
    if (!trust.IsEmpty())
        Protect(&stamped, trust, redirectPolicy());
    return QNetworkAccessManager::createRequest(op, stamped, outgoingData);
}

// The caller that made the request deletes the reply.
void CNetworkAccessManager::slot_RequestFinished(QNetworkReply *) {}

void CNetworkAccessManager::slot_SslErrors(QNetworkReply *reply, QList<QSslError> errors)
{
    const CServerTrust trust = GetServerTrust();
    const QString host = reply->url().host();
    if (!trust.Covers(host) || trust.Excuses(errors, reply->sslConfiguration().peerCertificate(), host))
        return reply->ignoreSslErrors();
    QStringList faults;
    for (const QSslError &error : errors)
        faults.append(error.errorString());
    reply->setProperty(FAULTS_PROPERTY, faults.join(QLatin1String(", ")));
}
