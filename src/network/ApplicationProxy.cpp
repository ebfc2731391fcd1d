#include "ApplicationProxy.h"

#include <settings/Config.h>

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkProxy>

#include <limits>

namespace {

const QLatin1String KEY_HOST("host");
const QLatin1String KEY_PORT("port");
const QLatin1String KEY_USER("user");
const QLatin1String KEY_PASSWORD("password");
const QLatin1String KEY_TYPE("type");

// Returns 0, an invalid port, for a number out of range.
quint16 ToPort(const QJsonValue &value)
{
    const int port = value.toInt(0);
    return port >= 0 && port <= std::numeric_limits<quint16>::max() ? static_cast<quint16>(port) : quint16(0);
}

bool SetType(QNetworkProxy &proxy, const QString &text)
{
    static const QHash<QString, QNetworkProxy::ProxyType> types{
        {QStringLiteral("default"), QNetworkProxy::DefaultProxy},
        {QStringLiteral("socks5"), QNetworkProxy::Socks5Proxy},
        {QStringLiteral("http"), QNetworkProxy::HttpProxy},
        {QStringLiteral("httpcaching"), QNetworkProxy::HttpCachingProxy},
        {QStringLiteral("ftpcaching"), QNetworkProxy::FtpCachingProxy},
    };
    const auto type = types.constFind(text.toLower());
    if (type == types.constEnd())
        return false;
    proxy.setType(*type);
    return true;
}

} // namespace

bool Globals::SetApplicationProxy()
{
    const QString &text = CConfig::GetInstance()->GetProxySettings();
    if (text.isEmpty())
        return false;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isObject())
        return false;
    const QJsonObject settings = document.object();
    QNetworkProxy proxy = QNetworkProxy::applicationProxy();
    if (settings.contains(KEY_HOST))
        proxy.setHostName(settings.value(KEY_HOST).toString());
    if (settings.contains(KEY_PORT))
        proxy.setPort(ToPort(settings.value(KEY_PORT)));
    if (settings.contains(KEY_USER))
        proxy.setUser(settings.value(KEY_USER).toString());
    if (settings.contains(KEY_PASSWORD))
        proxy.setPassword(settings.value(KEY_PASSWORD).toString());
    if (settings.contains(KEY_TYPE) && !SetType(proxy, settings.value(KEY_TYPE).toString()))
        return false;
    if (proxy.hostName().isEmpty() || proxy.port() == 0)
        return false;
    QNetworkProxy::setApplicationProxy(proxy);
    return true;
}
