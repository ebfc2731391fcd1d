#include <plugin/PluginInterface.h>

#include <sharedinstances/Singletons.h>
#include <support/InstallationTree.h>

#include <QDataStream>
#include <QJsonObject>
#include <QPluginLoader>
#include <QSignalSpy>
#include <QtTest>

using TLoadHints = QLibrary::LoadHints;
Q_DECLARE_METATYPE(TLoadHints)

namespace {

struct SReport
{
    QMap<QString, quint64> addresses;
    QStringList messages;
};

SReport Ask(CPluginInterface *plugin)
{
    const QSignalSpy sent(plugin, &CPluginInterface::signal_SendEvent);
    plugin->emit_ReceiveEvent(CEvent::Create(QStringLiteral("TEST"), QStringLiteral("RPRT")));
    SReport report;
    QDataStream in(sent.value(0).value(0).value<CEvent>().data);
    in >> report.addresses >> report.messages;
    return report;
}

} // namespace

// A host and two real plugins, and what they see of each other through the library.
class tst_SharedInstances : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneOfEach_data();
    void oneOfEach();
    void wrongInterface();
    void cleanup();
};

void tst_SharedInstances::cleanup()
{
    CConsole::Clear();
    DestroySingletons();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_SharedInstances::oneOfEach_data()
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

void tst_SharedInstances::oneOfEach()
{
    QFETCH(TLoadHints, hints);

    // A file is loaded once in a process, under the first hints, so each row has copies of its own.
    const CInstallationTree tree;
    const QString firstFile = tree.GetPath(QStringLiteral("Client/first.so"));
    const QString secondFile = tree.GetPath(QStringLiteral("Client/second.so"));
    QVERIFY(QFile::copy(QStringLiteral(PLUGIN_FIRST), firstFile));
    QVERIFY(QFile::copy(QStringLiteral(PLUGIN_SECOND), secondFile));
    QPluginLoader firstLoader(firstFile);
    QPluginLoader secondLoader(secondFile);
    firstLoader.setLoadHints(hints);
    secondLoader.setLoadHints(hints);
    const auto first = qobject_cast<CPluginInterface *>(firstLoader.instance());
    const auto second = qobject_cast<CPluginInterface *>(secondLoader.instance());
    QVERIFY2(first, qPrintable(firstLoader.errorString()));
    QVERIFY2(second, qPrintable(secondLoader.errorString()));
    QCOMPARE(first->GetName(), QStringLiteral("first"));
    QCOMPARE(second->GetName(), QStringLiteral("second"));

    const SReport report = Ask(first); // it is the one that creates the singletons
    QVERIFY(!report.addresses.isEmpty() && !report.addresses.values().contains(0));
    QCOMPARE(Ask(second).addresses, report.addresses);
    QCOMPARE(GetSharedAddresses(), report.addresses);

    const QSignalSpy added(CConsole::GetInstance(), &CConsole::signal_MessageAdded);
    second->emit_ReceiveEvent(CEvent::Create(QStringLiteral("TEST"), QStringLiteral("LOGM")));
    QCOMPARE(added.size(), 1);
    const QStringList messages{QStringLiteral("second")};
    QCOMPARE(CConsole::GetMessages().value(0).strMessage, messages.at(0));
    QCOMPARE(Ask(first).messages, messages);
    QCOMPARE(Ask(second).messages, messages);

    QVERIFY(firstLoader.unload());
    QCOMPARE(Ask(second).addresses, report.addresses); // they don't go with the plugin that created them
    QCOMPARE(GetSharedAddresses(), report.addresses);
    QVERIFY(secondLoader.unload());
}

// A host can tell by the metadata, and no code of the plugin runs for that.
void tst_SharedInstances::wrongInterface()
{
    const CInstallationTree tree;
    const QString marker = tree.GetPath(QStringLiteral("Tmp/marker"));
    qputenv("PLUGIN_MARKER", marker.toUtf8());

    QPluginLoader loader(QStringLiteral(PLUGIN_WRONGINTERFACE));
    const QJsonValue interface = loader.metaData().value(QLatin1String("IID"));
    QVERIFY(interface.isString());
    QVERIFY(interface.toString() != QLatin1String(CPluginInterface_iid));
    QVERIFY(!QFile::exists(marker));

    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    QVERIFY(QFile::exists(marker)); // it would have shown
    qunsetenv("PLUGIN_MARKER");
}

QTEST_GUILESS_MAIN(tst_SharedInstances)
#include "tst_sharedinstances.moc"
