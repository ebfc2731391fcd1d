#include <plugin/PluginInterface.h>

#include <QtEndian>

class CHelloPlugin : public CPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID CPluginInterface_iid)

public:
    QString GetName() const override { return QStringLiteral("hello"); }
    QString GetVersion() const override { return QStringLiteral("1.0"); }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override {}
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }

    void RegisterForEvents() override { RegisterForEvent(QStringLiteral("LOBB"), QStringLiteral("LEND")); }
    void ConnectionEstablished(unsigned short) override { SendToServer("LOBB", 0, 0, "GLST", 4, false); }
    void ReceiveEvent(CEvent e) override
    {
        if (e.HasTags("LOBB", "LEND") && e.data.size() >= 8) // the end of the list of tables, and their number
            qInfo("the game server has %u tables", qFromLittleEndian<quint32>(e.data.constData() + 4));
    }
};

#include "plugin.moc"
