// The host's side of the bus in the example client: who gets which event, which plugins are taken in which order,
// what becomes of a plugin's requests, and a link whose server does what it wants.

#include <client/Host.h>
#include <files/Console.h>
#include <tour/TourServers.h>

#include <QtTest>

#include <memory>

namespace {

class CTestPlugin : public CPluginInterface
{
    Q_OBJECT

public:
    explicit CTestPlugin(const QString &name = QString(), const QStringList &dependencies = {})
        : m_strName(name)
        , m_dependencies(dependencies)
    {
    }

    void ReceiveEvent(CEvent e) override
    {
        m_events.append(e);
        if (m_onEvent)
            m_onEvent();
    }
    void LoginFailed(QString message) override { m_strLoginMessage = message; }

    QString GetName() const override { return m_strName; }
    QString GetVersion() const override { return QStringLiteral("1"); }
    QStringList GetDependencies() const override { return m_dependencies; }
    bool Initialize() override { return true; }
    void Start() override {}
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }

    QString m_strName;
    QStringList m_dependencies;
    QVector<CEvent> m_events;
    QString m_strLoginMessage;
    std::function<void()> m_onEvent;
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

QString LastMessage()
{
    const auto messages = CConsole::GetMessages();
    return messages.isEmpty() ? QString() : messages.last().strMessage;
}

// A free port that a server of the test can take.
quint16 FreePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

} // namespace

class tst_client : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { CConsole::Clear(); }

    void RouterDeliversOnceToWhoRegistered();
    void RouterSurvivesPluginsThatGo();
    void PluginsAreSorted_data();
    void PluginsAreSorted();
    void PluginForOtherInterfaceIsNotRun();
    void StreamIsCutBack_data();
    void StreamIsCutBack();
    void BrokenStreamGivesNothing_data();
    void BrokenStreamGivesNothing();
    void HostServesRequests();
    void HostOpensWebPagesOnly_data();
    void HostOpensWebPagesOnly();
    void LinkCarriesPacketsBothWays();
    void LinkOutlivesBadServers_data();
    void LinkOutlivesBadServers();
};

void tst_client::RouterDeliversOnceToWhoRegistered()
{
    CEventRouter router;
    CTestPlugin all;
    CTestPlugin one;
    CTestPlugin both;
    router.Register(&all, QStringLiteral("LOBB"), QString());
    router.Register(&one, QStringLiteral("LOBBY"), QStringLiteral("TBLE"));
    router.Register(&both, QStringLiteral("LOBB"), QString());
    router.Register(&both, QStringLiteral("LOBB"), QStringLiteral("TBLE"));

    router.Deliver(Event("LOBB", "TBLE"));
    router.Deliver(Event("LOBB", "LEND"));
    router.Deliver(Event("lobb", "TBLE"));
    router.Deliver(Event("LOBB", ""));
    QCOMPARE(all.m_events.size(), 3);
    QCOMPARE(both.m_events.size(), 3);
    QCOMPARE(one.m_events.size(), 1);

    router.Unregister(&both);
    router.Deliver(Event("LOBB", "TBLE"));
    QCOMPARE(both.m_events.size(), 3);
    QCOMPARE(all.m_events.size(), 4);
}

void tst_client::RouterSurvivesPluginsThatGo()
{
    CEventRouter router;
    CTestPlugin first;
    auto second = std::make_unique<CTestPlugin>();
    CTestPlugin third;
    for (CTestPlugin *plugin : {&first, second.get(), &third})
        router.Register(plugin, QStringLiteral("LOBB"), QString());
    first.m_onEvent = [&] {
        second.reset();
        router.Unregister(&first);
    };

    router.Deliver(Event("LOBB", "TBLE"));
    router.Deliver(Event("LOBB", "TBLE"));
    QCOMPARE(first.m_events.size(), 1);
    QCOMPARE(third.m_events.size(), 2);
}

void tst_client::PluginsAreSorted_data()
{
    QTest::addColumn<QString>("plugins"); // name:dependency,dependency name:...
    QTest::addColumn<QString>("sorted");
    QTest::newRow("independent") << "c: a: b:"
                                 << "c a b";
    QTest::newRow("chain, last first") << "c:b b:a a:"
                                       << "a b c";
    QTest::newRow("diamond") << "d:b,c b:a c:a a:"
                             << "a b c d";
    QTest::newRow("missing, directly and not") << "a:x b:a c:"
                                               << "c";
    QTest::newRow("circle") << "a:b b:a c:a d:"
                            << "d";
    QTest::newRow("needs itself") << "a:a"
                                  << "";
}

void tst_client::PluginsAreSorted()
{
    QFETCH(QString, plugins);
    std::vector<std::unique_ptr<CTestPlugin>> owned;
    QVector<CPluginInterface *> given;
    const QStringList list = plugins.split(QLatin1Char(' '));
    for (const QString &plugin : list) {
        const QString dependencies = plugin.section(QLatin1Char(':'), 1);
        owned.push_back(std::make_unique<CTestPlugin>(plugin.section(QLatin1Char(':'), 0, 0),
                                                      dependencies.split(QLatin1Char(','), Qt::SkipEmptyParts)));
        given.append(owned.back().get());
    }
    QStringList names;
    for (const CPluginInterface *plugin : CPluginManager::SortByDependencies(given))
        names.append(plugin->GetName());
    QTEST(names.join(QLatin1Char(' ')), "sorted");
}

void tst_client::PluginForOtherInterfaceIsNotRun()
{
    QTemporaryDir directory;
    const QString marker = directory.filePath(QStringLiteral("plugin-code-ran"));
    qputenv("PLUGIN_MARKER", marker.toLocal8Bit());
    QVERIFY(QFile::copy(QStringLiteral(WRONG_PLUGIN_PATH), directory.filePath(QStringLiteral("a_wrong.so"))));
    QVERIFY(QFile::copy(QStringLiteral(PLUGIN_PATH), directory.filePath(QStringLiteral("lobby.so"))));
    QFile noLibrary(directory.filePath(QStringLiteral("z_broken.so")));
    QVERIFY(noLibrary.open(QIODevice::WriteOnly) && noLibrary.write("no shared object") > 0);
    noLibrary.close();

    CPluginManager manager;
    manager.Load(directory.path());
    QCOMPARE(manager.GetPlugins().size(), 1);
    QCOMPARE(manager.GetPlugins().first()->GetName(), QStringLiteral("lobby"));
    QVERIFY(!QFile::exists(marker));
    const auto messages = CConsole::GetMessages();
    QCOMPARE(messages.size(), 2);
    QVERIFY(messages.at(0).strMessage.contains(QStringLiteral("a_wrong.so is built for")));
    QVERIFY(messages.at(1).strMessage.contains(QStringLiteral("z_broken.so is no plugin")));
}

void tst_client::StreamIsCutBack_data()
{
    QTest::addColumn<int>("piece");
    for (const int piece : {1, 2, 10, 11, 12, 13, 40, 1000})
        QTest::newRow(qPrintable(QString::number(piece))) << piece;
}

void tst_client::StreamIsCutBack()
{
    QFETCH(int, piece);
    const QVector<QByteArray> packets{Packet("AAAA", "TAG1"), Packet("BBBB", QByteArray(700, 'x')),
                                      Packet("CCCC", ""), Packet("DDDD", "TAG4 and more")};
    QByteArray bytes;
    for (const QByteArray &packet : packets)
        bytes += packet;

    CPacketStream stream;
    CPacketLayerWrapper packet;
    QVector<QByteArray> received;
    for (int at = 0; at < bytes.size(); at += piece) {
        stream.Append(bytes.mid(at, piece));
        while (stream.TakePacket(packet))
            received.append(QByteArray(packet.GetPacket(), packet.GetPacketSize()));
    }
    QCOMPARE(received, packets);
    QVERIFY(!stream.IsBroken());
}

void tst_client::BrokenStreamGivesNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto header = [](quint16 size) {
        QByteArray bytes("ABCD\x01\x02\x00\x00\x00", 9);
        return bytes + char(size & 0xff) + char(size >> 8);
    };
    QTest::newRow("size 0") << header(0);
    QTest::newRow("size 10") << header(10);
    QTest::newRow("size 32768") << header(32768);
    QTest::newRow("record length 0") << header(13) + QByteArray(2, '\0');
    QTest::newRow("record length 1") << header(14) + QByteArray("\x01\x00\x00", 3);
    QTest::newRow("record past the end") << header(15) + QByteArray("\x05\x00zz", 4);
    QTest::newRow("a byte too many") << header(16) + QByteArray("\x04\x00zzz", 5);
}

void tst_client::BrokenStreamGivesNothing()
{
    QFETCH(QByteArray, bytes);
    CPacketStream stream;
    CPacketLayerWrapper packet;
    stream.Append(bytes + Packet("AAAA", "TAG1"));
    QVERIFY(!stream.TakePacket(packet));
    QVERIFY(stream.IsBroken());

    stream.Append(Packet("AAAA", "TAG1"));
    QVERIFY(!stream.TakePacket(packet));
    stream.Reset();
    stream.Append(Packet("AAAA", "TAG1"));
    QVERIFY(stream.TakePacket(packet));
}

void tst_client::HostServesRequests()
{
    CHost host(QStringLiteral("127.0.0.1"), FreePort());
    CTestPlugin plugin;
    CTestPlugin designer;
    QSignalSpy shutDown(&host, &CHost::signal_ShutDownRequested);
    host.ConnectPlugin(&plugin);
    host.ConnectPlugin(&designer);
    designer.RegisterForEvent(QStringLiteral("DESI"), QString());

    plugin.RequestShutDown();
    QCOMPARE(shutDown.size(), 1);

    plugin.OpenLoginDialog();
    QVERIFY(!plugin.m_strLoginMessage.isEmpty());

    QWidget page;
    plugin.AddDesignerPage(QStringLiteral("Colours"), &page);
    QCOMPARE(designer.m_events.size(), 1);
    QCOMPARE(designer.m_events.first().widget.data(), &page);
    QVERIFY(plugin.m_events.isEmpty());

    // Without a link a request is lost, and the console says so.
    plugin.SendToServer("LOBB", 1, 2, "GLST", 4, false);
    QVERIFY(LastMessage().contains(QStringLiteral("17 bytes")));
}

void tst_client::HostOpensWebPagesOnly_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("page");
    QTest::newRow("https") << "https://room.example/news" << QString() << "https://room.example/news";
    QTest::newRow("with a query") << "http://room.example/"
                                  << "id=7"
                                  << "http://room.example/?id=7";
    QTest::newRow("file") << "file:///etc/hostname" << QString() << QString();
    QTest::newRow("script") << "javascript:alert(1)" << QString() << QString();
    QTest::newRow("no address") << "%%" << QString() << QString();
}

void tst_client::HostOpensWebPagesOnly()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, page);
    CHost host(QStringLiteral("127.0.0.1"), FreePort());
    CTestPlugin plugin;
    host.ConnectPlugin(&plugin);
    QSignalSpy pages(&host, &CHost::signal_PageRequested);

    plugin.OpenWebPage(first, second, false);
    if (second.isEmpty())
        plugin.OpenWebPage(first, false);
    QCOMPARE(pages.size(), page.isEmpty() ? 0 : second.isEmpty() ? 2 : 1);
    for (const auto &arguments : qAsConst(pages))
        QCOMPARE(arguments.first().toUrl(), QUrl(page));
}

void tst_client::LinkCarriesPacketsBothWays()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    CHost host(QStringLiteral("127.0.0.1"), server.serverPort());
    CTestPlugin plugin;
    host.ConnectPlugin(&plugin);
    plugin.RegisterForEvent(QStringLiteral("LOBB"), QString());
    host.OpenLink();
    QTRY_COMPARE(host.GetServerLink().GetState(), EConnectionState::Connected);
    QTRY_VERIFY(server.hasPendingConnections());
    QTcpSocket *socket = server.nextPendingConnection();

    plugin.SendToServer("LOBB", 1, 2, "GLST", 4, false);
    QByteArray halfPacket("LOBB", 4);
    plugin.SendToServer(halfPacket.data(), halfPacket.size(), false);
    const QByteArray expected = Packet("LOBB", "GLST");
    QTRY_COMPARE(socket->bytesAvailable(), qint64(expected.size()));
    QCOMPARE(socket->readAll(), expected);
    QVERIFY(LastMessage().contains(QStringLiteral("4 bytes")));

    // The host's own group in a packet of the server reaches nobody: it would be taken for the host's word.
    socket->write(Packet("M2PE", "LGNFyou are out") + Packet("LOBB", "TBLEbody"));
    QTRY_COMPARE(plugin.m_events.size(), 1);
    const CEvent &event = plugin.m_events.first();
    QVERIFY(event.HasTags("LOBB", "TBLE"));
    QCOMPARE(event.moduleID, static_cast<unsigned char>(1));
    QCOMPARE(event.targetID, 2u);
    QCOMPARE(event.data, QByteArray("TBLEbody"));
    QVERIFY(plugin.m_strLoginMessage.isEmpty());
}

void tst_client::LinkOutlivesBadServers_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("hangUp");
    QTest::newRow("hangs up at once") << QByteArray() << true;
    QTest::newRow("half a packet") << Packet("LOBB", QByteArray(300, 'x')).left(150) << true;
    QTest::newRow("garbage") << QByteArray(100, '\xff') << false;
    QTest::newRow("text that looks like the front of a packet")
        << QByteArray("HTTP/1.1 400 Bad Request\r\n\r\n") << false;
    QTest::newRow("garbage behind a packet") << Packet("LOBB", "TBLE") + QByteArray(100, '\0') << false;
}

void tst_client::LinkOutlivesBadServers()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, hangUp);
    const quint16 port = FreePort();
    CServerLink link(QStringLiteral("127.0.0.1"), port);
    link.SetPacketLimit(200);
    link.Open(); // before there is a server
    QTRY_COMPARE(link.GetState(), EConnectionState::Reconnecting);
    {
        CBadServer server(port, bytes, hangUp);
        QTRY_VERIFY(server.GetLinkCount() > 1);
    }

    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, port));
    QSignalSpy packets(&link, &CServerLink::signal_PacketReceived);
    QTRY_VERIFY_WITH_TIMEOUT(server.hasPendingConnections(), 20000);
    server.nextPendingConnection()->write(Packet("LOBB", "TBLE"));
    QTRY_COMPARE(packets.size(), 1);
    QTRY_COMPARE(link.GetState(), EConnectionState::Connected);

    link.Close();
    QCOMPARE(link.GetState(), EConnectionState::Disconnected);
    QVERIFY(!link.Send(Packet("LOBB", "GLST")));
}

QTEST_MAIN(tst_client)
#include "tst_client.moc"
