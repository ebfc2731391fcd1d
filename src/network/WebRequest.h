#pragma once

#include <Export.h>

class QNetworkRequest;

/// Functions for all requests to web servers. They have no state and may be called from any thread.
namespace WebRequest {

/// Sets the client's user agent, "QT-Win", in the request.
PLUGININTERFACE_EXPORT void SetUserAgent(QNetworkRequest *request);

} // namespace WebRequest
