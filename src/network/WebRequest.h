#pragma once

#include <Export.h>

class QNetworkRequest;

/// What all requests to web servers have in common. No state, any thread.
namespace WebRequest {

/// Stamps the request with the client's user agent, "QT-Win".
PLUGININTERFACE_EXPORT void SetUserAgent(QNetworkRequest *request);

} // namespace WebRequest
