#pragma once

#include <Export.h>

namespace Globals {

/// Sets the application's proxy to the operator's proxy, the configuration value `proxysettings`. That is a JSON
/// object with "host", "port", "user", "password" and "type": "default", "socks5", "http", "httpcaching" or
/// "ftpcaching", in any case. What is missing keeps its current value.
///
/// Returns false and leaves the proxy unchanged if the value is empty or no JSON object, if the type is unknown, or
/// if there would be no host or port. CNetworkAccessManager doesn't use this proxy. Main thread.
PLUGININTERFACE_EXPORT bool SetApplicationProxy();

} // namespace Globals
