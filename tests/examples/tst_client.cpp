// The example client without its window: the bus, the loading of plugins and the link to the game server.

#include <client/Host.h>
#include <client/NewFile.h>
#include <client/OptionsDialog.h>
#include <client/OptionsPages.h>
#include <files/FileHelpers.h>
#include <tour/TourServers.h>

#include <support/Singletons.h>
#include <support/StubPlugin.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QListWidget>
#include <QNetworkProxy>
#include <QtTest>

#include <unistd.h>

#include <list>
#include <memory>
#include <numeric>

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

bool IsInMessage(int index, const char *text)
{
    return CConsole::GetMessages().value(index).strMessage.contains(QLatin1String(text));
}

} // namespace

class tst_client : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { CConsole::Clear(); }

    void cleanupTestCase() { DestroySingletons(); }

    void RouterDeliversOnceToWhoRegistered()
    {
        CEventRouter router;
        CTestPlugin one;
        auto both = std::make_unique<CTestPlugin>();
        CTestPlugin all;
        router.Register(&one, QStringLiteral("LOBBY"), QStringLiteral("TBLE"));
        router.Register(both.get(), QStringLiteral("LOBB"), QString());
        router.Register(both.get(), QStringLiteral("LOBB"), QStringLiteral("TBLE"));
        router.Register(&all, QStringLiteral("LOBB"), QString());
        for (const CEvent &event : {Event("LOBB", "TBLE"), Event("LOBB", "LEND"), Event("lobb", "TBLE")})
            router.Deliver(event);
        QCOMPARE(one.m_events.size(), 1);
        QCOMPARE(both->m_events.size(), 2);

        connect(&one, &CTestPlugin::signal_ReceiveEvent, this, [&] { both.reset(); }); // which is the next to get it
        router.Deliver(Event("LOBB", "TBLE"));
        router.Unregister(&one);
        router.Deliver(Event("LOBB", "TBLE"));
        QCOMPARE(one.m_events.size(), 2);
        QCOMPARE(all.m_events.size(), 4);
    }

    void PluginsAreSorted_data()
    {
        QTest::addColumn<QString>("plugins"); // name:dependencies, each of one letter
        QTest::addColumn<QString>("sorted");
        const auto row = [](const char *name, const char *plugins, const char *sorted) {
            QTest::newRow(name) << QString::fromLatin1(plugins) << QString::fromLatin1(sorted);
        };
        row("independent", "c: a: b:", "cab");
        row("chain, last first", "c:b b:a a:", "abc");
        row("diamond", "d:bc b:a c:a a:", "abcd");
        row("missing, directly and not", "a:x b:a c:", "c");
        row("circle", "a:b b:a c:a d:", "d");
    }

    void PluginsAreSorted()
    {
        QFETCH(QString, plugins);
        std::list<CTestPlugin> owned;
        QVector<CPluginInterface *> given;
        const QStringList words = plugins.split(QLatin1Char(' '));
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
        QTEST(names, "sorted");
    }

    void PluginForOtherInterfaceIsNotRun()
    {
        QTemporaryDir directory;
        qputenv("PLUGIN_MARKER", directory.filePath(QStringLiteral("plugin-code-ran")).toLocal8Bit());
        QVERIFY(QFile::copy(QStringLiteral(WRONG_PLUGIN_PATH), directory.filePath(QStringLiteral("a_wrong.so"))));
        QVERIFY(QFile::copy(QStringLiteral(PLUGIN_PATH), directory.filePath(QStringLiteral("lobby.so"))));
        const QString broken = directory.filePath(QStringLiteral("z_broken.so"));
        QVERIFY(QFile::copy(QStringLiteral(PLUGIN_PATH), broken) && QFile::resize(broken, 5000));

        CPluginManager manager;
        manager.Load(directory.path());
        QCOMPARE(manager.GetPlugins().size(), 1);
        QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("plugin-code-ran"))));
        QVERIFY(IsInMessage(0, "a_wrong.so is built for") && IsInMessage(1, "z_broken.so is no plugin"));
    }

    void PluginIsLoadedOnce_data()
    {
        QTest::addColumn<int>("messages");
        QTest::newRow("link") << 0;
        QTest::newRow("hard link") << 0;
        QTest::newRow("copy") << 1;
    }

    void PluginIsLoadedOnce()
    {
        const QByteArray other(QTest::currentDataTag());
        QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("lobby.so.1"));
        const QString name = directory.filePath(QStringLiteral("lobby.so"));
        QVERIFY(QFile::copy(QStringLiteral(PLUGIN_PATH), file));
        QVERIFY(other == "link"   ? QFile::link(file, name)
                : other == "copy" ? QFile::copy(file, name)
                                  : link(QFile::encodeName(file), QFile::encodeName(name)) == 0);
        CPluginManager manager;
        manager.Load(directory.path());
        QCOMPARE(manager.GetPlugins().size(), 1);
        QTEST(CConsole::GetMessages().size(), "messages");
    }

    void NewFilesSpareOthers_data()
    {
        QTest::addColumn<QString>("file");
        const auto row = [](const char *name, const char *file) { QTest::newRow(name) << QString::fromUtf8(file); };
        row("rules.html", "rules (3).html"); // beside a file, a folder, and a link that leads nowhere
        row("..", "download");
        row("..\\.a\nb|.exe", "ab.exe");
    }

    void NewFilesSpareOthers()
    {
        QTemporaryDir parent;
        const QDir folder(parent.filePath(QStringLiteral("made/by/it")));
        QVERIFY(!WriteNewFile(folder.path(), QStringLiteral("rules.html"), "own").isEmpty());
        QVERIFY(folder.mkdir(QStringLiteral("rules (1).html")));
        QVERIFY(QFile::link(QStringLiteral("nowhere"), folder.filePath(QStringLiteral("rules (2).html"))));
        const QString file = WriteNewFile(folder.path(), QString::fromUtf8(QTest::currentDataTag()), "new");
        QTEST(folder.relativeFilePath(file), "file");
        QByteArray contents;
        QVERIFY(Globals::GetContents(file, contents) && contents == "new");
        QVERIFY(Globals::GetContents(folder.filePath(QStringLiteral("rules.html")), contents) && contents == "own");
        const QString longName = QString(300, QChar(0x20AC)) + QLatin1String(".html");
        for (const QString &expected : {QStringLiteral("\u20AC.html"), QStringLiteral("\u20AC (1).html")})
            QVERIFY(WriteNewFile(folder.path(), longName, "new").endsWith(expected));
    }

    void OptionsAreAppliedWhenAsked()
    {
        const CSettings *settings = CSettings::GetInstance();
        QObject owner;
        AddOptionsPages(&owner);
        COptionsPage *page = COptionsDialogManager::GetInstance()->GetPages().constLast();
        const QPointer<COptionsDialog> dialog = new COptionsDialog;
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->findChild<QListWidget *>(QStringLiteral("optionsPages"))->setCurrentRow(1);
        auto *box = dialog->findChild<QCheckBox *>(QStringLiteral("winningsounds"));
        box->click();
        QVERIFY(page->IsModified() && !settings->GetWinningSounds());
        dialog->findChild<QAbstractButton *>(QStringLiteral("OPTIONS_APPLY"))->click();
        QVERIFY(!page->IsModified() && settings->GetWinningSounds());
        dialog->findChild<QAbstractButton *>(QStringLiteral("OPTIONS_DEFAULTS"))->click();
        QVERIFY(!box->isChecked() && settings->GetWinningSounds());
        delete page;
        QTRY_VERIFY(!dialog);
    }

    void StreamIsCutBack()
    {
        const QVector<QByteArray> packets{Packet("AAAA", "TAG1"), Packet("BBBB", QByteArray(70, 'x')),
                                          Packet("CCCC", ""), Packet("DDDD", "TAG4 and more")};
        const QByteArray bytes = std::accumulate(packets.begin(), packets.end(), QByteArray());
        for (int piece = 1; piece <= bytes.size(); ++piece) {
            CPacketStream stream;
            CPacketLayerWrapper packet;
            QVector<QByteArray> received;
            for (int at = 0; at < bytes.size(); at += piece) {
                stream.Append(bytes.mid(at, piece));
                while (stream.TakePacket(packet))
                    received.append(QByteArray(packet.GetPacket(), packet.GetPacketSize()));
            }
            QVERIFY2(received == packets, qPrintable(QStringLiteral("in pieces of %1 bytes").arg(piece)));
        }
    }

    void BrokenStreamGivesNothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const auto header = [](quint16 size) {
            return QByteArray("ABCD\x01\x02\x00\x00\x00", 9) + char(size & 0xff) + char(size >> 8);
        };
        QTest::newRow("size 10") << header(10);
        QTest::newRow("size 32768") << header(32768);
        QTest::newRow("record length 0") << header(13) + QByteArray(2, '\0');
        QTest::newRow("record length 1") << header(14) + QByteArray("\x01\x00\x00", 3);
        QTest::newRow("record past the end") << header(15) + QByteArray("\x05\x00zz", 4);
        QTest::newRow("a byte too many") << header(16) + QByteArray("\x04\x00zzz", 5);
    }

    void BrokenStreamGivesNothing()
    {
        QFETCH(QByteArray, bytes);
        CPacketStream stream;
        CPacketLayerWrapper packet;
        stream.Append(bytes + Packet("AAAA", "TAG1"));
        QVERIFY(!stream.TakePacket(packet) && stream.IsBroken());
        stream.Reset();
        stream.Append(Packet("AAAA", "TAG1"));
        QVERIFY(stream.TakePacket(packet));
    }

    void HostServesRequests()
    {
        CHost host(QStringLiteral("127.0.0.1"), 0);
        CTestPlugin plugin;
        CTestPlugin designer;
        QSignalSpy shutDown(&host, &CHost::signal_ShutDownRequested);
        host.ConnectPlugin(&plugin);
        host.ConnectPlugin(&designer);
        designer.RegisterForEvent(QStringLiteral("DESI"), QString());

        plugin.RequestShutDown();
        QCOMPARE(shutDown.size(), 1);
        QSignalSpy login(&host, &CHost::signal_LoginRequested);
        plugin.OpenLoginDialog();
        CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Magnolia"));
        plugin.OpenLoginDialog(); // which a user who is logged in needn't see
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(login.size(), 1);
        host.GetSession().LogIn(QStringLiteral("Magnolia"), QString()); // without a link
        QVERIFY(!plugin.m_strLoginMessage.isEmpty());
        QWidget page;
        plugin.AddDesignerPage(QStringLiteral("Colours"), &page);
        QCOMPARE(designer.m_events.value(0).widget.data(), &page);
        plugin.SendInternEvent(0, 0, QStringLiteral("M2PE"), QStringLiteral("FAKE"), false); // the host's own group
        QVERIFY(plugin.m_events.isEmpty());
        plugin.SendToServer("LOBB", 1, 2, "GLST", 4, false); // without a link
        QVERIFY(IsInMessage(1, "17 bytes"));                 // behind the one on the event

        QString pages;
        connect(&host, &CHost::signal_PageRequested, this, [&](const QUrl &url) { pages += url.toString() + u' '; });
        for (const char *address : {"https://room.example/news", "file:///etc/hostname", "javascript:alert(1)", "%%",
                                    "http://", "https:news", "http://:80/", "HTTP://room.example"})
            plugin.OpenWebPage(QLatin1String(address), false);
        plugin.OpenWebPage(QStringLiteral("http://room.example/"), QStringLiteral("id=7"), false);
        QCOMPARE(pages, QStringLiteral("https://room.example/news http://room.example http://room.example/?id=7 "));
        CConfig::GetInstance()->SetConfigs(
            {{QStringLiteral("link_cashier"), QStringLiteral("https://room.example/cash")},
             {QStringLiteral("link_website"), QStringLiteral("file:///etc/hostname")},
             {QStringLiteral("link_settingssync"), QStringLiteral("http://room.example/sync")}});
        pages.clear();
        CConsole::Clear();
        for (const int id : {18, 1, 19, 38, -1}) // one with an address, and others with a bad one or none
            plugin.OpenWebPage(WebLinks::id(id), false);
        QCOMPARE(pages, QStringLiteral("https://room.example/cash "));
        QCOMPARE(CConsole::GetMessages().size(), 4);
    }

    void LinkCarriesPacketsBothWays()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        CHost host(QStringLiteral("127.0.0.1"), server.serverPort());
        CTestPlugin plugin;
        host.ConnectPlugin(&plugin);
        plugin.RegisterForEvent(QStringLiteral("LOBB"), QString());
        plugin.RegisterForEvent(QStringLiteral("ACCT"), QString());
        host.OpenLink();
        QTRY_VERIFY(host.GetServerLink().GetState() == EConnectionState::Connected && server.hasPendingConnections());
        QTcpSocket *socket = server.nextPendingConnection();

        plugin.SendToServer("ACCT", 1, 2, "LGOT", 4, false); // which is the session's alone, both ways
        plugin.SendToServer("LOBB", 1, 2, "GLST", 4, false);
        QByteArray sent;
        QTRY_COMPARE(sent += socket->readAll(), Packet("LOBB", "GLST"));
        CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Magnolia"));
        plugin.RequestCashierInformation();
        const QByteArray request = Payload::ToPackets(AccountProtocol::GROUP, {AccountProtocol::GET_BALANCES});
        sent.clear();
        QTRY_COMPARE(sent += socket->readAll(), request);
        CUserInfo::GetInstance()->SetLoggedIn(QString());

        // The host's own group in a packet of the server reaches nobody: it would be taken for the host's word.
        socket->write(Packet("M2PE", "LGNFyou are out") + Packet("ACCT", "LGOK") + Packet("LOBB", "TBLEbody"));
        QTRY_COMPARE(plugin.m_events.size(), 1);
        const CEvent &event = plugin.m_events.first();
        QVERIFY(event.HasTags("LOBB", "TBLE") && event.moduleID == 1 && event.targetID == 2);
        QCOMPARE(event.data, QByteArray("TBLEbody"));
        QVERIFY(plugin.m_strLoginMessage.isEmpty());
    }

    void LinkSaysThatAProxyIsOfNoUse()
    {
        const QNetworkProxy before = QNetworkProxy::applicationProxy();
        QNetworkProxy::setApplicationProxy({QNetworkProxy::FtpCachingProxy, QStringLiteral("127.0.0.1"), 9});
        CServerLink link(QStringLiteral("room.example"), 1);
        QSignalSpy problems(&link, &CServerLink::signal_Problem);
        link.Open();
        QTRY_VERIFY(problems.size() > 1);
        QCOMPARE(link.GetState(), EConnectionState::Reconnecting);
        QNetworkProxy::setApplicationProxy(before);
    }

    void LinkOutlivesBadServers_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("hangs up at once") << QByteArray();
        QTest::newRow("half a packet") << Packet("LOBB", QByteArray(300, 'x')).left(150);
        QTest::newRow("garbage behind a packet") << Packet("LOBB", "TBLE") + QByteArray(100, '\0');
    }

    void LinkOutlivesBadServers()
    {
        QFETCH(QByteArray, bytes);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const quint16 port = server.serverPort();
        server.close();
        CServerLink link(QStringLiteral("127.0.0.1"), port);
        link.SetPacketLimit(200);
        link.Open(); // before there is a server
        QTRY_COMPARE(link.GetState(), EConnectionState::Reconnecting);
        auto badServer = std::make_unique<CBadServer>(port, bytes, bytes.isEmpty());
        QTRY_VERIFY(badServer->GetLinkCount() > 1);
        badServer.reset();

        QVERIFY(server.listen(QHostAddress::LocalHost, port));
        QSignalSpy packets(&link, &CServerLink::signal_PacketReceived);
        QTRY_VERIFY_WITH_TIMEOUT(server.hasPendingConnections(), 20000);
        server.nextPendingConnection()->write(Packet("LOBB", "TBLE"));
        QTRY_COMPARE(packets.size(), 1);
    }
};

QTEST_MAIN(tst_client)
#include "tst_client.moc"
