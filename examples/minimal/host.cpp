#include <plugin/PluginInterface.h>

#include <QApplication>
#include <QFileInfo>
#include <QPluginLoader>

// Returns the file's plugin, or null if it has none for this host.
static CPluginInterface *Load(const QString &file)
{
    QPluginLoader loader(QFileInfo(file).absoluteFilePath()); // Qt looks for relative names in folders of its own
    // The version of the interface is read without running any code of the file.
    const QString version = loader.metaData().value(QLatin1String("IID")).toString();
    if (!version.isEmpty() && version != QLatin1String(CPluginInterface_iid))
        qCritical("\"%s\" is built for %s, this host for %s", qPrintable(file), qPrintable(version),
                  CPluginInterface_iid);
    else if (auto *plugin = qobject_cast<CPluginInterface *>(loader.instance()))
        return plugin;
    else
        qCritical("\"%s\" is no plugin: %s", qPrintable(file), qPrintable(loader.errorString()));
    return nullptr;
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    CPluginInterface *plugin = Load(QApplication::arguments().value(1));
    if (!plugin)
        return 1;
    QObject::connect(plugin, &CPluginInterface::signal_SendEvent, [plugin](const CEvent &event) {
        if (event.HasTags("P2ME", "RSRV")) { // a packet for the game server, which this host plays
            CEvent answer = CEvent::Create(QStringLiteral("LOBB"), QStringLiteral("LEND"));
            answer.data = QByteArray("LEND\3\0\0\0", 8);
            plugin->emit_ReceiveEvent(answer);
        }
    });
    plugin->RegisterEvents();
    if (!plugin->Initialize())
        return 1;
    plugin->Start();
    CEvent connected = CEvent::Create(QStringLiteral("M2PE"), QStringLiteral("SCOE"));
    connected.data = QByteArray("\1\0", 2); // for the first time
    plugin->emit_ReceiveEvent(connected);
    plugin->Shutdown();
    return 0;
}
