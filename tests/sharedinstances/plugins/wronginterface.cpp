#include <plugin/PluginInterface.h>

#include <QFile>

// Whether any code of this plugin ran shows in the file that the environment names.
[[maybe_unused]] static const bool MARKED = QFile(qEnvironmentVariable("PLUGIN_MARKER")).open(QIODevice::WriteOnly);

// Built against an interface version that never existed.
class CWrongInterfacePlugin : public CPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "plugininterface.CPluginInterface/0.0")

public:
    QString GetName() const override { return QStringLiteral("wronginterface"); }
    QString GetVersion() const override { return QStringLiteral("1.0"); }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override {}
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }
};

#include "wronginterface.moc"
