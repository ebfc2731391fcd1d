// The example client without its window: the bus, the loading of plugins and the link to the game server.

#include <client/ConsoleWindow.h>
#include <client/Host.h>
#include <client/NewFile.h>
#include <client/PictureChooser.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>
#include <support/StubPlugin.h>

#include <QComboBox>
#include <QTableView>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <unistd.h>

#include <list>
#include <memory>

namespace {

class CTestPlugin : public CStubPlugin
{
public:
    void ReceiveEvent(CEvent e) override { m_events.append(e); }
    void LoginFailed(QString message) override { m_strLoginMessage = message; }
    QString GetName() const override { return m_strName; }
    QStringList GetDependencies() const override { return m_dependencies; }

    QString m_strName;
    QStringList m_dependencies;
    QVector<CEvent> m_events;
    QString m_strLoginMessage;
};

CEvent Event(const char *tag1, const char *tag2)
{
    return CEvent::Create(QLatin1String(tag1), QLatin1String(tag2));
}

QByteArray Packet(const char *group, const QByteArray &payload)
{
    CPacketLayerWrapper packet(group, 1, 2);
    packet.AddPacket(payload.constData(), static_cast<unsigned short>(payload.size()));
    return QByteArray(packet.GetPacket(), packet.GetPacketSize());
}

// What the console says, a line each.
QString GetMessages()
{
    QString messages;
    for (const auto &message : CConsole::GetMessages())
        messages += message.strMessage + u'\n';
    return messages;
}

} // namespace

class tst_client : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { CConsole::Clear(); }

    void cleanupTestCase() { DestroySingletons(); }

    void RouterDeliversOnce()
    {
        CEventRouter router;
        CTestPlugin one;
        auto both = std::make_unique<CTestPlugin>();
        router.Register(&one, "LOBB"_s, "TBLE"_s);
        router.Register(both.get(), "LOBB"_s, QString());
        router.Register(both.get(), "LOBB"_s, "TBLE"_s);
        for (const CEvent &event : {Event("LOBB", "TBLE"), Event("LOBB", "LEND"), Event("lobb", "TBLE")})
            router.Deliver(event);
        QCOMPARE(one.m_events.size(), 1);
        QCOMPARE(both->m_events.size(), 2);
        connect(&one, &CTestPlugin::signal_ReceiveEvent, this, [&] { both.reset(); }); // which is the next to get it
        router.Deliver(Event("LOBB", "TBLE"));
        router.Unregister(&one);
        router.Deliver(Event("LOBB", "TBLE"));
        QCOMPARE(one.m_events.size(), 2);
    }

    // Plugins are "name:dependencies", each of one letter.
    void PluginsAreSorted_data() { AddRows("d:bc b:a c:a a:|abcd;a:x b:a c:|c;a:b b:a c:a d:|d"_s); }
    void PluginsAreSorted()
    {
        QFETCH(QStringList, in);
        std::list<CTestPlugin> owned;
        QVector<CPluginInterface *> given;
        const QStringList words = in.at(0).split(u' ');
        for (const QString &plugin : words) {
            owned.emplace_back();
            owned.back().m_strName = plugin.at(0);
            owned.back().m_dependencies = plugin.mid(2).split(QString(), Qt::SkipEmptyParts);
            given.append(&owned.back());
        }
        const auto sorted = CPluginManager::SortByDependencies(given);
        QString names;
        for (const CPluginInterface *plugin : sorted)
            names += plugin->GetName();
        QCOMPARE(names, in.at(1));
    }

    // A plugin is loaded once, whatever other names its file has, and nothing is run of what is built for another
    // interface.
    void FilesOfAFolderArePlugins()
    {
        QTemporaryDir folder;
        const auto path = [&folder](const QString &name) { return folder.filePath(name); };
        const QString lobby = path("lobby.so"_s);
        qputenv("PLUGIN_MARKER", path("plugin-code-ran"_s).toLocal8Bit());
        QVERIFY(QFile::copy(QStringLiteral(WRONG_PLUGIN_PATH), path("a_wrong.so"_s)));
        QVERIFY(QFile::copy(QStringLiteral(PLUGIN_PATH), lobby));
        QVERIFY(QFile::copy(lobby, path("m_copy.so"_s)));
        QVERIFY(QFile::link(lobby, path("m_link.so"_s)));
        QCOMPARE(link(QFile::encodeName(lobby), QFile::encodeName(path("m_hard_link.so"_s))), 0);
        QVERIFY(QFile::copy(lobby, path("z_broken.so"_s)));
        QVERIFY(QFile::resize(path("z_broken.so"_s), 5000));

        CPluginManager manager;
        manager.Load(folder.path());
        QCOMPARE(manager.GetPlugins().size(), 1);
        QVERIFY(!QFile::exists(path("plugin-code-ran"_s)));
        QCOMPARE(manager.GetUnusableFiles(), QStringList({path("a_wrong.so"_s), path("z_broken.so"_s)}));
        const QString expected =
            "^.*a_wrong.so is built for .*\nm_copy.so: there is .*\n.*z_broken.so is no plugin\n$"_s;
        QVERIFY2(QRegularExpression(expected).match(GetMessages()).hasMatch(), qPrintable(GetMessages()));
    }

    void NewFilesSpareOthers_data()
    {
        const QString longName(300, QChar(0x20AC));
        AddRows<QString, QString>({"name", "file"},
                                  {{"file, folder and dead link there", "rules.html"_s, "rules (3).html"_s},
                                   {"folder above", ".."_s, "download"_s},
                                   {"characters that no name may have", "..\\.a\nb|.exe"_s, "ab.exe"_s},
                                   {"too long", longName + ".html"_s, longName.left(75) + ".html"_s},
                                   {"too long, and there", longName, longName.left(76) + " (1)"_s}});
    }
    void NewFilesSpareOthers()
    {
        QFETCH(QString, name);
        QTemporaryDir parent;
        const QDir folder(parent.filePath("made/by/it"_s));
        const QString own = WriteNewFile(folder.path(), "rules.html"_s, "own");
        QVERIFY(!WriteNewFile(folder.path(), QString(80, QChar(0x20AC)), "own").isEmpty());
        QVERIFY(folder.mkdir("rules (1).html"_s));
        QVERIFY(QFile::link("nowhere"_s, folder.filePath("rules (2).html"_s)));
        const QString file = WriteNewFile(folder.path(), name, "new");
        QTEST(folder.relativeFilePath(file), "file");
        QCOMPARE(ReadFile(file), "new");
        QCOMPARE(ReadFile(own), "own");
    }

    // The user may have one that the brand doesn't offer, or no more.
    void PicturesOfTheUser()
    {
        const CInstallationTree tree;
        tree.WriteFile("Resources/brand/Qt/common/Qt/client/pictures.json"_s, R"([7, 1001, "x", -3, 7])");
        CSettings::GetInstance()->SetCustomCurrent(4242);
        const QScopedPointer<QComboBox> box(CreatePictureChooser(nullptr));
        CSettings::GetInstance()->SetCustomCurrent(5);
        QStringList numbers;
        for (int entry = 0; entry < box->count(); ++entry)
            numbers.append(box->itemData(entry).toString());
        QCOMPARE(numbers.join(u' '), "0 7 1001 4242 5"_s);
    }

    void OnlyWebPagesAreOpened()
    {
        CHost host("127.0.0.1"_s, 0);
        CTestPlugin plugin;
        host.ConnectPlugin(&plugin);
        QString pages;
        connect(&host, &CHost::signal_PageRequested, this, [&](const QUrl &url) { pages += url.toString() + u' '; });
        for (const char *address : {"https://room.example/news", "file:///etc/hostname", "javascript:alert(1)", "%%",
                                    "http://", "https:news", "http://:80/", "HTTP://room.example"})
            plugin.OpenWebPage(QLatin1String(address), false);
        plugin.OpenWebPage("http://room.example/"_s, "id=7"_s, false);
        plugin.OpenWebPage(WebLinks::id(-1), false); // without an address
        QCOMPARE(pages, "https://room.example/news http://room.example http://room.example/?id=7 "_s);
    }

    // However long a developer has it open.
    void ConsoleForgetsOldEvents()
    {
        CHost host("127.0.0.1"_s, 0);
        CTestPlugin plugin;
        host.ConnectPlugin(&plugin);
        const CConsoleWindow window(host, nullptr);
        const QAbstractItemModel *events = window.widget(1)->findChild<QTableView *>()->model();
        for (int i = 0; i < 2600; ++i)
            plugin.SendInternEvent(Event("EVNT", "CODE"), false); // from it and to all
        QCOMPARE(events->rowCount(), qBound(4800, events->rowCount(), 5000));
        CEvent huge = Event("EVNT", "HUGE");
        huge.data = QByteArray(5 << 20, 'x');
        plugin.SendInternEvent(huge, false);
        QCOMPARE(events->rowCount(), 1);
    }

    // Who is logged in is a matter of the session's alone, and the host's own group would be taken for its word.
    void LinkKeepsToTheRights()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        CHost host("127.0.0.1"_s, server.serverPort());
        host.SetTrust({}, true);
        CTestPlugin plugin;
        host.ConnectPlugin(&plugin);
        for (const QString &group : {"LOBB"_s, "ACCT"_s})
            plugin.RegisterForEvent(group, QString());
        host.OpenLink();
        QTRY_COMPARE(host.GetServerLink().GetState(), EConnectionState::Connected);
        QTRY_VERIFY(server.hasPendingConnections());
        QTcpSocket *socket = server.nextPendingConnection();

        CConsole::Clear();
        plugin.SendInternEvent(0, 0, "M2PE"_s, "FAKE"_s, false);
        plugin.SendToServer("ACCT", 1, 2, "LGOT", 4, false);
        QCOMPARE(CConsole::GetMessages().size(), 2);
        plugin.SendToServer("LOBB", 1, 2, "GLST", 4, false);
        QByteArray sent;
        QTRY_COMPARE(sent += socket->readAll(), Packet("LOBB", "GLST"));

        socket->write(Packet("M2PE", "LGNFyou are out") + Packet("ACCT", "LGOK") + Packet("LOBB", "TBLEbody"));
        QTRY_COMPARE(plugin.m_events.size(), 1);
        const CEvent &event = plugin.m_events.first();
        QVERIFY(event.HasTags("LOBB", "TBLE"));
        QCOMPARE(std::tuple(event.moduleID, event.targetID, event.data), std::tuple(1, 2, QByteArray("TBLEbody")));
        QVERIFY(plugin.m_strLoginMessage.isEmpty());
    }

    void LinkOutlivesBadServers_data()
    {
        AddRows<QByteArray>({"bytes"}, {{"hangs up at once", {}},
                                        {"half a packet", Packet("LOBB", QByteArray(300, 'x')).left(150)},
                                        {"garbage after a packet", Packet("LOBB", "TBLE") + QByteArray(100, '\0')}});
    }
    void LinkOutlivesBadServers()
    {
        QFETCH(QByteArray, bytes);
        int links = 0;
        QString lastTag;
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const quint16 port = server.serverPort();
        server.close();
        CServerLink link("127.0.0.1"_s, port);
        link.SetPlain();
        link.SetPacketLimit(200);
        link.Open(); // before there is a server
        QTRY_COMPARE(link.GetState(), EConnectionState::Reconnecting);

        connect(&server, &QTcpServer::newConnection, &server, [&] {
            QTcpSocket *socket = server.nextPendingConnection();
            socket->write(++links > 2 ? Packet("LOBB", "GOOD") : bytes);
            if (bytes.isEmpty())
                socket->disconnectFromHost();
        });
        connect(&link, &CServerLink::signal_PacketReceived, &link, [&lastTag](CPacketLayerWrapper packet) {
            packet.GetNext();
            lastTag = packet.GetPayloadTag();
        });
        QVERIFY(server.listen(QHostAddress::LocalHost, port));
        QTRY_COMPARE_WITH_TIMEOUT(lastTag, "GOOD"_s, 30000);
    }
};

QTEST_MAIN(tst_client)
#include "tst_client.moc"
