#pragma once

#include <QtGlobal>

// Exports a class or function. Everything else in the library is hidden, so the host and the plugins see the public
// classes and functions only.
#if defined(PLUGININTERFACE_LIBRARY)
#define PLUGININTERFACE_EXPORT Q_DECL_EXPORT
#else
#define PLUGININTERFACE_EXPORT Q_DECL_IMPORT
#endif
