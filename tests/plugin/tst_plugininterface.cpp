#include <plugin/PluginInterface.h>

#include <QtTest>

#include <functional>
#include <memory>
#include <thread>

namespace {

const QString CHAT = QStringLiteral("CHAT");
const QString TEXT = QStringLiteral("TEXT");
const QString EURO = QChar(0x20ac); // three bytes in UTF-8, nothing in Latin-1

QByteArray ToText(const CEvent &event)
{
    return QByteArray(event.tag1, 4) + ' ' + QByteArray(event.tag2, 4) + ' ' + QByteArray::number(event.moduleID) +
           ' ' + QByteArray::number(event.targetID) + ' ' + event.data.toHex();
}

// Writes down what arrives.
class CRecordingPlugin : public CPluginInterface
{
public:
    QString GetName() const override { return QStringLiteral("recording"); }
    QString GetVersion() const override { return QStringLiteral("1"); }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override {}
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }

    void ReceiveEvent(CEvent e) override { m_calls << "event " + ToText(e); }
    void RegisterForEvents() override
    {
        for (const char *tags : {"CHAT/", "CHAT/TEXT", "LONGER/TEXTS", "CHA/", "/", "CHAT/TEX", "CHAT/T"}) {
            const QStringList parts = QString::fromLatin1(tags).split(QLatin1Char('/'));
            RegisterForEvent(parts.at(0), parts.at(1));
        }
    }
    void ConnectionEstablished(unsigned short value) override { m_calls << "link " + QByteArray::number(value); }
    void ConnectionStateChanged(EConnectionState::type s) override { m_calls << "state " + QByteArray::number(s); }
    void LoginFailed(QString message) override { m_calls << "refused " + message.toUtf8(); }

    QByteArrayList m_calls;
};

} // namespace

using TCall = std::function<void(CPluginInterface &)>;
Q_DECLARE_METATYPE(TCall)

// Both directions of the bus between a plugin and its host.
class tst_PluginInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sentEvents_data()
    {
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<TCall>("call");

        const auto add = [](const char *name, const QByteArray &sent, const TCall &call) {
            QTest::newRow(name) << sent << call;
        };
        using TPlugin = CPluginInterface;
        static char bytes[] = "TAG1\x05\x06";
        static const QByteArray tooLong(65536 + 6, 'T');
        const QByteArray packet = QByteArray::fromHex("41424344 07 04030201 1300 0800 544147310506").toHex();
        const QByteArray toServer = "P2ME RSRV 0 0 " + packet;
        const QByteArray toWebServer = "P2ME RWEB 0 0 " + packet;
        const QByteArray cut = "ffff" + QByteArray(65535, 's').toHex() + "040043484154";
        const QByteArray login = "P2ME LGND 0 0 ";

        add("login", login, [](TPlugin &p) { p.OpenLoginDialog(); });
        add("shut down", "P2ME RSHD 0 0 ", [](TPlugin &p) { p.RequestShutDown(); });
        add("bytes", "P2ME RSRV 0 0 544147", [](TPlugin &p) { p.SendToServer(bytes, 3, false); });
        add("web bytes", "P2ME RWEB 0 0 544147", [](TPlugin &p) { p.SendToWebServer(bytes, 3, false); });
        add("packet", toServer, [](TPlugin &p) { p.SendToServer("ABCD", 7, 0x01020304, bytes, 6, false); });
        add("web packet", toWebServer, [](TPlugin &p) { p.SendToWebServer("ABCD", 7, 0x01020304, bytes, 6, false); });
        add("empty record", "P2ME RSRV 0 0 4142000000000000000d000200",
            [](TPlugin &p) { p.SendToServer("AB", 0, 0, nullptr, 0, false); });
        add("length beyond 16 bits", "P2ME RSRV 0 0 41420000000000000013000800545454545454",
            [](TPlugin &p) { p.SendToServer("AB", 0, 0, tooLong.constData(), tooLong.size(), false); });
        add("page by id", "P2ME WLID 0 0 12000000", [](TPlugin &p) { p.OpenWebPage(WebLinks::Cashier, false); });
        add("unknown page", "P2ME WLID 0 0 feffffff", [](TPlugin &p) { p.OpenWebPage(WebLinks::id(-2), false); });
        add("page by address", "P2ME WLNK 0 0 e282ac", [](TPlugin &p) { p.OpenWebPage(EURO, false); });
        add("two texts", "P2ME WEBW 0 0 01003f040043484154", [](TPlugin &p) { p.OpenWebPage(CHAT, EURO, false); });
        add("text beyond 16 bits", "P2ME WEBW 0 0 " + cut,
            [](TPlugin &p) { p.OpenWebPage(CHAT, QString(70000, QLatin1Char('s')), false); });
        add("event", "CHAT TEXT 200 4294967295 ", [](TPlugin &p) { p.SendInternEvent(200, ~0u, CHAT, TEXT, false); });

        // The login dialog at once, the event itself not.
        add("packet after login", login, [](TPlugin &p) { p.SendToServer("ABCD", 7, 8, "TAG1", 4, true); });
        add("page after login", login, [](TPlugin &p) { p.OpenWebPage(WebLinks::Cashier, true); });
        add("event after login", login, [](TPlugin &p) { p.SendInternEvent(1, 2, CHAT, TEXT, true); });
        add("cashier, always after login", login, [](TPlugin &p) { p.RequestCashierInformation(); });

        add("too long", "", [](TPlugin &p) { p.SendToServer("AB", 0, 0, tooLong.constData(), 32755, false); });
        add("negative length", "", [](TPlugin &p) { p.SendToServer(bytes, -1, false); });
        add("negative length to frame", "", [](TPlugin &p) { p.SendToServer("AB", 0, 0, bytes, -1, false); });
        add("null bytes", "", [](TPlugin &p) { p.SendToWebServer(nullptr, 4, false); });
        add("null bytes to frame", "", [](TPlugin &p) { p.SendToWebServer("AB", 0, 0, nullptr, 4, false); });
        add("empty address", "", [](TPlugin &p) { p.OpenWebPage(QString(), false); });
    }

    void sentEvents()
    {
        QFETCH(TCall, call);
        CRecordingPlugin plugin;
        QByteArrayList sent;
        connect(&plugin, &CPluginInterface::signal_SendEvent, this, [&](const CEvent &e) { sent << ToText(e); });
        call(plugin);
        QTEST(sent.join('\n'), "sent");
    }

    void designerPage_data()
    {
        QTest::addColumn<int>("letters"); // before two characters of three bytes each
        QTest::addColumn<int>("length");

        QTest::newRow("whole name") << 0 << 6;
        QTest::newRow("cut between characters") << 65532 << 65535;
        QTest::newRow("one byte left") << 65534 << 65534;
        QTest::newRow("two bytes left") << 65533 << 65533;
    }

    void designerPage()
    {
        QFETCH(int, letters);
        QFETCH(int, length);
        const QString name = QString(letters, QLatin1Char('a')) + EURO + EURO;
        const QByteArray data = QByteArray(1, char(length & 0xff)) + char(length >> 8) + name.toUtf8().left(length);
        QList<CEvent> events; // as they arrive directly, and from the queue
        const auto record = [&events](const CEvent &e) { events << e; };
        CRecordingPlugin plugin;
        connect(&plugin, &CPluginInterface::signal_SendEvent, &plugin, record);
        connect(&plugin, &CPluginInterface::signal_SendEvent, &plugin, record, Qt::QueuedConnection);

        auto page = std::make_unique<QWidget>();
        plugin.AddDesignerPage(QString(), page.get());
        plugin.AddDesignerPage(name, nullptr);
        QCOMPARE(events.size(), 0);
        plugin.AddDesignerPage(name, page.get());
        QCOMPARE(events.size(), 1);
        QCOMPARE(ToText(events.at(0)), "DESI ADDW 0 0 " + data.toHex());
        QCOMPARE(events.at(0).widget.data(), page.get());

        page.reset();
        QTRY_COMPARE(events.size(), 2);
        QVERIFY(!events.at(1).widget);
    }

    void receivedEvents_data()
    {
        QTest::addColumn<QByteArray>("call");

        QTest::newRow("M2PE SCOE 0180ffff") << QByteArray("link 32769");
        QTest::newRow("M2PE SCOE 01") << QByteArray("link 0");
        QTest::newRow("M2PE SCOC 02000000ff") << QByteArray("state 2");
        QTest::newRow("M2PE SCOC feffffff") << QByteArray("state -2");
        QTest::newRow("M2PE SCOC 020000") << QByteArray("state 0");
        QTest::newRow("M2PE LGNF e282ac61006162") << QByteArray("refused \u20aca");
        QTest::newRow("M2PE LGNF 6162") << QByteArray("refused ab");
        QTest::newRow("M2PE LGNF ") << QByteArray("refused ");
        QTest::newRow("M2PE SCOX 0102") << QByteArray("event M2PE SCOX 0 0 0102");
        QTest::newRow("M2PE scoe 0102") << QByteArray("event M2PE scoe 0 0 0102");
        QTest::newRow("P2ME SCOE 0102") << QByteArray("event P2ME SCOE 0 0 0102");
    }

    void receivedEvents()
    {
        const QString received = QString::fromLatin1(QTest::currentDataTag());
        CEvent event = CEvent::Create(received.left(4), received.mid(5));
        event.data = QByteArray::fromHex(received.mid(10).toLatin1());
        CRecordingPlugin plugin;
        plugin.emit_ReceiveEvent(event);
        QTEST(plugin.m_calls.join('\n'), "call");
    }

    void registration()
    {
        CRecordingPlugin plugin;
        QStringList registered;
        connect(&plugin, &CPluginInterface::signal_RegisterForEvent, this,
                [&](const QString &tag1, const QString &tag2) { registered << tag1 + QLatin1Char('/') + tag2; });
        plugin.RegisterEvents();
        QCOMPARE(registered.join(QLatin1Char(' ')), QStringLiteral("M2PE/ CHAT/ CHAT/TEXT LONGER/TEXTS"));
    }

    void otherThread()
    {
        CRecordingPlugin plugin;
        const CEvent event = CEvent::Create(CHAT, TEXT);
        std::thread([&plugin, event] { plugin.emit_ReceiveEvent(event); }).join();
        QCOMPARE(plugin.m_calls, QByteArrayList()); // it waits for this thread's event loop
        QTRY_COMPARE(plugin.m_calls, QByteArrayList{"event CHAT TEXT 0 0 "});
    }
};

QTEST_MAIN(tst_PluginInterface)
#include "tst_plugininterface.moc"
