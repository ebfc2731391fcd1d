#include "WebRequest.h"

#include <QNetworkRequest>

void WebRequest::SetUserAgent(QNetworkRequest *request)
{
    request->setRawHeader(QByteArrayLiteral("User-Agent"), QByteArrayLiteral("QT-Win"));
}
