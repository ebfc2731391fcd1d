#include <support/InstallationTree.h>
#include <support/Singletons.h>

#include <QPluginLoader>
#include <QSignalSpy>
#include <QtTest>

using TLoadHints = QLibrary::LoadHints;
Q_DECLARE_METATYPE(TLoadHints)

// What a plugin sends on this event: the shared addresses as it sees them, and the texts in the console.
static QPair<QMap<QString, quint64>, QStringList> Ask(CPluginInterface *plugin, const QString &tag2)
{
    const QSignalSpy sent(plugin, &CPluginInterface::signal_SendEvent);
    plugin->emit_ReceiveEvent(CEvent::Create(QStringLiteral("TEST"), tag2));
    QPair<QMap<QString, quint64>, QStringList> report;
    QDataStream in(sent.value(0).value(0).value<CEvent>().data);
    in >> report;
    return report;
}

// A host and two real plugins, and what they see of each other through the library.
class tst_SharedInstances : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        CConsole::Clear();
        DestroySingletons();
    }

    void oneOfEach_data()
    {
        QTest::addColumn<TLoadHints>("hints");

        QTest::newRow("as the loader does by itself") << QPluginLoader().loadHints();
        QTest::newRow("local symbols") << TLoadHints();
        QTest::newRow("all symbols at once") << TLoadHints(QLibrary::ResolveAllSymbolsHint);
        QTest::newRow("global symbols") << TLoadHints(QLibrary::ExportExternalSymbolsHint);
#if defined(TEST_DEEP_BIND)
        QTest::newRow("own symbols first") << TLoadHints(QLibrary::DeepBindHint);
#endif
    }

    void oneOfEach()
    {
        QFETCH(TLoadHints, hints);
        // A file is loaded once in a process, under the first hints, so each row has copies of its own.
        const CInstallationTree tree;
        QPluginLoader loaders[2];
        CPluginInterface *plugins[2] = {};
        for (int i = 0; i < 2; ++i) {
            const QString file = tree.GetPath(QStringLiteral("Client/%1.so").arg(i));
            QVERIFY(QFile::copy(i == 0 ? QStringLiteral(PLUGIN_FIRST) : QStringLiteral(PLUGIN_SECOND), file));
            loaders[i].setFileName(file);
            loaders[i].setLoadHints(hints);
            plugins[i] = qobject_cast<CPluginInterface *>(loaders[i].instance());
            QVERIFY2(plugins[i], qPrintable(loaders[i].errorString()));
        }

        const QString report = QStringLiteral("RPRT");
        const auto seen = Ask(plugins[0], report).first; // the plugin is the one that creates the singletons
        QVERIFY(!seen.isEmpty() && seen.key(0).isEmpty());
        QCOMPARE(GetSharedAddresses(), seen);

        const QSignalSpy added(CConsole::GetInstance(), &CConsole::signal_MessageAdded);
        Ask(plugins[1], QStringLiteral("LOGM"));
        QCOMPARE(added.size(), 1);
        for (CPluginInterface *plugin : plugins)
            QCOMPARE(Ask(plugin, report), qMakePair(seen, QStringList{QStringLiteral("second")}));

        QVERIFY(loaders[0].unload());
        QCOMPARE(Ask(plugins[1], report).first, seen); // they don't go with the plugin that created them
        QVERIFY(loaders[1].unload());
        QCOMPARE(CConsole::GetMessages().value(0).strMessage, QStringLiteral("second"));
    }

    // A host can tell by the metadata, and no code of the plugin runs for that.
    void wrongInterface()
    {
        const CInstallationTree tree;
        const QString marker = tree.GetPath(QStringLiteral("Tmp/marker"));
        qputenv("PLUGIN_MARKER", marker.toUtf8());
        QPluginLoader loader(QStringLiteral(PLUGIN_WRONGINTERFACE));
        const QJsonValue interface = loader.metaData().value(QLatin1String("IID"));
        QVERIFY(interface.isString() && interface.toString() != QLatin1String(CPluginInterface_iid));
        QVERIFY(!QFile::exists(marker));
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        QVERIFY(QFile::exists(marker)); // it would have shown
    }
};

QTEST_MAIN(tst_SharedInstances)
#include "tst_sharedinstances.moc"
