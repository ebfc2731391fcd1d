#pragma once

#include <QtGlobal>

// Everything in the library is hidden but what bears this macro: host and plugins see the public classes and
// functions and nothing else.
#if defined(PLUGININTERFACE_LIBRARY)
#define PLUGININTERFACE_EXPORT Q_DECL_EXPORT
#else
#define PLUGININTERFACE_EXPORT Q_DECL_IMPORT
#endif
