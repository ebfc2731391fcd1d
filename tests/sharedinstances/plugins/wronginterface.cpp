#include "../../support/StubPlugin.h"

#include <QFile>

// Whether any code of this plugin ran shows in the file that the environment names.
[[maybe_unused]] static const bool MARKED = QFile(qEnvironmentVariable("PLUGIN_MARKER")).open(QIODevice::WriteOnly);

// Built against an interface version that never existed.
class CWrongInterfacePlugin : public CStubPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "plugininterface.CPluginInterface/0.0")
};

#include "wronginterface.moc"
