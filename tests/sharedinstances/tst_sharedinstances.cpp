#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>

#include <QPluginLoader>
#include <QtTest>

using TLoadHints = QLibrary::LoadHints;
Q_DECLARE_METATYPE(TLoadHints)

// What a plugin sends on this event: the shared addresses as it sees them, and the texts in the console.
static QPair<QMap<QString, quint64>, QStringList> Ask(CPluginInterface *plugin, const QString &tag2)
{
    const QSignalSpy sent(plugin, &CPluginInterface::signal_SendEvent);
    plugin->emit_ReceiveEvent(CEvent::Create("TEST"_s, tag2));
    QPair<QMap<QString, quint64>, QStringList> report;
    QDataStream in(sent.value(0).value(0).value<CEvent>().data);
    in >> report;
    return report;
}

// A host and two real plugins, and what they see of each other through the library.
class tst_sharedinstances : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        CConsole::Clear();
        DestroySingletons();
    }

    void OneOfEach_data()
    {
        AddRows<TLoadHints>({"hints"}, {{"as the loader does by itself", QPluginLoader().loadHints()},
                                        {"all symbols at once", QLibrary::ResolveAllSymbolsHint},
                                        {"global symbols", QLibrary::ExportExternalSymbolsHint}});
#if defined(TEST_DEEP_BIND)
        QTest::newRow("own symbols first") << TLoadHints(QLibrary::DeepBindHint);
#endif
    }

    void OneOfEach()
    {
        QFETCH(TLoadHints, hints);
        // A file is loaded once in a process, under the first hints, so each row has copies of its own.
        const CInstallationTree tree;
        QPluginLoader loaders[2];
        CPluginInterface *plugins[2] = {};
        for (int i = 0; i < 2; ++i) {
            const QString file = tree.GetPath("Client/%1.so"_s.arg(i));
            QVERIFY(QFile::copy(i == 0 ? QStringLiteral(PLUGIN_FIRST) : QStringLiteral(PLUGIN_SECOND), file));
            loaders[i].setFileName(file);
            loaders[i].setLoadHints(hints);
            plugins[i] = qobject_cast<CPluginInterface *>(loaders[i].instance());
            QVERIFY2(plugins[i], qPrintable(loaders[i].errorString()));
        }

        const QString report = "RPRT"_s;
        const auto seen = Ask(plugins[0], report).first; // the plugin is the one that creates the singletons
        QVERIFY(!seen.isEmpty());
        QCOMPARE(seen.key(0), QString());
        QCOMPARE(GetSharedAddresses(), seen);

        const QSignalSpy added(CConsole::GetInstance(), &CConsole::signal_MessageAdded);
        Ask(plugins[1], "LOGM"_s);
        QCOMPARE(added.size(), 1);
        for (CPluginInterface *plugin : plugins)
            QCOMPARE(Ask(plugin, report), qMakePair(seen, QStringList{"second"_s}));

        QVERIFY(loaders[0].unload());
        QCOMPARE(Ask(plugins[1], report).first, seen); // they don't go with the plugin that created them
        QVERIFY(loaders[1].unload());
        QCOMPARE(CConsole::GetMessages().value(0).strMessage, "second"_s);
    }
};

QTEST_MAIN(tst_sharedinstances)
#include "tst_sharedinstances.moc"
