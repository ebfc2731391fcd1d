#include <plugin/PluginInterface.h>

class CHelloPlugin : public CPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID CPluginInterface_iid)

public:
    QString GetName() const override { return QStringLiteral("hello"); }
    QString GetVersion() const override { return QStringLiteral("1.0"); }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override { SendToServer("HELO", 0, 0, "GRET", 4, false); }
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }

    void RegisterForEvents() override { RegisterForEvent(QStringLiteral("HELO"), QString()); }
    void ReceiveEvent(CEvent e) override { qInfo("answer: %s", e.data.constData()); }
};

#include "plugin.moc"
