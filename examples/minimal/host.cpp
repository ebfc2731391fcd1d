#include <plugin/PluginInterface.h>

#include <QApplication>
#include <QPluginLoader>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QPluginLoader loader(application.arguments().value(1));
    if (loader.metaData().value(QLatin1String("IID")).toString() != QLatin1String(CPluginInterface_iid))
        qFatal("no plugin for this host");
    auto plugin = qobject_cast<CPluginInterface *>(loader.instance());
    if (!plugin)
        qFatal("%s", qPrintable(loader.errorString()));
    QObject::connect(plugin, &CPluginInterface::signal_SendEvent, [plugin](const CEvent &event) {
        if (event.HasTags("P2ME", "RSRV")) { // a packet for the game server; this host answers it by itself
            CEvent answer = CEvent::Create(QStringLiteral("HELO"), QStringLiteral("GRET"));
            answer.data = "GRET from the host";
            plugin->emit_ReceiveEvent(answer);
        }
    });
    plugin->RegisterEvents();
    plugin->Start();
    return 0;
}
