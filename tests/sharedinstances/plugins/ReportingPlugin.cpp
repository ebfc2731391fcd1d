#include <support/Singletons.h>
#include <support/StubPlugin.h>

#include <QDataStream>

// On "TEST" "RPRT" it sends what it sees: the shared addresses, then the texts in the console, in an event of the
// same tags. On "TEST" "LOGM" it adds its name to the console.
class CReportingPlugin : public CStubPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID CPluginInterface_iid)

public:
    void ReceiveEvent(CEvent e) override
    {
        if (e.HasTags("TEST", "LOGM")) {
            // A literal: its letters go with this file when it is unloaded, the message stays.
            CConsole::AddMessage(QStringLiteral(PLUGIN_NAME), CConsole::MC_Plugin, CConsole::ML_Info, QString(), 0);
        } else if (e.HasTags("TEST", "RPRT")) {
            QStringList messages;
            const QList<CConsole::SConsoleMessage> all = CConsole::GetMessages();
            for (const CConsole::SConsoleMessage &message : all)
                messages << message.strMessage;
            e.data.clear();
            QDataStream out(&e.data, QIODevice::WriteOnly);
            out << GetSharedAddresses() << messages;
            SendInternEvent(e, false);
        }
    }
};

#include "ReportingPlugin.moc"
