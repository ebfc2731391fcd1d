#pragma once

#include <Export.h>

namespace Globals {

/// Makes the operator's proxy, the configuration value `proxysettings`, the application's. That is a JSON object with
/// "host", "port", "user", "password" and "type", one of "default", "socks5", "http", "httpcaching" and "ftpcaching"
/// in any case; what it lacks stays as it is.
///
/// False, and the application's proxy as it was, if the value is empty or no JSON object, if the type is unknown, or
/// if there would be no host or no port. CNetworkAccessManager goes direct all the same. Main thread.
PLUGININTERFACE_EXPORT bool SetApplicationProxy();

} // namespace Globals
