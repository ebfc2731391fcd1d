#include <support/Literal.h>
#include <support/Rows.h>
#include <support/StubPlugin.h>

#include <QtTest>

#include <memory>
#include <thread>

namespace {

const QString CHAT = "CHAT"_s;
const QString TEXT = "TEXT"_s;
const QString EURO = QChar(0x20ac); // three bytes in UTF-8, nothing in Latin-1

QByteArray ToText(const CEvent &event)
{
    return QByteArray(event.tag1, 4) + ' ' + QByteArray(event.tag2, 4) + ' ' + QByteArray::number(event.moduleID) +
           ' ' + QByteArray::number(event.targetID) + ' ' + event.data.toHex();
}

// Writes down what arrives and what it sends.
class CRecordingPlugin : public CStubPlugin
{
public:
    CRecordingPlugin()
    {
        connect(this, &CPluginInterface::signal_SendEvent, this, [this](const CEvent &e) { m_sent << ToText(e); });
        connect(this, &CPluginInterface::signal_RegisterForEvent, this,
                [this](const QString &tag1, const QString &tag2) {
                    m_sent << (tag1 + QLatin1Char('/') + tag2).toLatin1();
                });
    }

    void ReceiveEvent(CEvent e) override { m_calls << "event " + ToText(e); }
    void RegisterForEvents() override
    {
        for (const QString &tags : {"CHAT/"_s, "CHAT/TEXT"_s, "LONGER/TEXTS"_s, "CHA/"_s, "/"_s, "CHAT/TEX"_s})
            RegisterForEvent(tags.section(QLatin1Char('/'), 0, 0), tags.section(QLatin1Char('/'), 1));
    }
    void ConnectionEstablished(unsigned short value) override { m_calls << "link " + QByteArray::number(value); }
    void ConnectionStateChanged(EConnectionState::type s) override { m_calls << "state " + QByteArray::number(s); }
    void LoginFailed(QString message) override { m_calls << "refused " + message.toUtf8(); }

    QByteArrayList m_calls;
    QByteArrayList m_sent;
};

} // namespace

// Both directions of the bus between a plugin and its host.
class tst_plugininterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void SentEvents()
    {
        CRecordingPlugin plugin;
        char bytes[] = "TAG1\x05\x06";
        const QByteArray tooLong(65536 + 6, 'T');
        plugin.OpenLoginDialog();
        plugin.RequestShutDown();
        plugin.SendToServer(bytes, 3, false);
        plugin.SendToWebServer(bytes, 3, false);
        plugin.SendToServer("ABCD", 7, 0x01020304, bytes, 6, false);
        plugin.SendToWebServer("ABCD", 7, 0x01020304, bytes, 6, false);
        plugin.SendToServer("AB", 0, 0, nullptr, 0, false);
        plugin.SendToServer("AB", 0, 0, tooLong.constData(), tooLong.size(), false);
        plugin.OpenWebPage(WebLinks::Cashier, false);
        plugin.OpenWebPage(WebLinks::id(-2), false);
        plugin.OpenWebPage(EURO, false);
        plugin.OpenWebPage(CHAT, EURO, false);
        plugin.OpenWebPage(CHAT, QString(70000, QLatin1Char('s')), false);
        plugin.SendInternEvent(200, ~0u, CHAT, TEXT, false);
        QCOMPARE(plugin.m_sent,
                 (QByteArrayList{"P2ME LGND 0 0 ", "P2ME RSHD 0 0 ", "P2ME RSRV 0 0 544147", "P2ME RWEB 0 0 544147",
                                 "P2ME RSRV 0 0 41424344070403020113000800544147310506",
                                 "P2ME RWEB 0 0 41424344070403020113000800544147310506",
                                 "P2ME RSRV 0 0 4142000000000000000d000200",
                                 "P2ME RSRV 0 0 41420000000000000013000800545454545454", "P2ME WLID 0 0 12000000",
                                 "P2ME WLID 0 0 feffffff", "P2ME WLNK 0 0 e282ac", "P2ME WEBW 0 0 01003f040043484154",
                                 "P2ME WEBW 0 0 ffff" + QByteArray(65535, 's').toHex() + "040043484154",
                                 "CHAT TEXT 200 4294967295 "}));
    }

    // The login dialog at once, the event itself not.
    void SentAfterLogin()
    {
        CRecordingPlugin plugin;
        plugin.SendToServer("ABCD", 7, 8, "TAG1", 4, true);
        plugin.OpenWebPage(WebLinks::Cashier, true);
        plugin.SendInternEvent(1, 2, CHAT, TEXT, true);
        plugin.RequestCashierInformation();
        const QByteArray login = "P2ME LGND 0 0 ";
        QCOMPARE(plugin.m_sent, (QByteArrayList{login, login, login, login}));
    }

    void NeverSent()
    {
        CRecordingPlugin plugin;
        char bytes[32755] = {};
        plugin.SendToServer("AB", 0, 0, bytes, sizeof bytes, false); // one more than a packet holds
        plugin.SendToServer(bytes, -1, false);
        plugin.SendToServer("AB", 0, 0, bytes, -1, false);
        plugin.SendToWebServer(nullptr, 4, false);
        plugin.SendToWebServer("AB", 0, 0, nullptr, 4, false);
        plugin.OpenWebPage(QString(), false);
        QCOMPARE(plugin.m_sent, QByteArrayList());
    }

    // Letters before two characters of three bytes each, and how many bytes are sent of it.
    void DesignerPage_data()
    {
        AddRows<int, int>({"letters", "length"}, {{"short", 0, 6},
                                                  {"the longest", 65532, 65535},
                                                  {"cut in the second", 65534, 65534},
                                                  {"cut before the first", 65533, 65533}});
    }

    void DesignerPage()
    {
        QFETCH(int, letters);
        QFETCH(int, length);
        const QString name = QString(letters, QLatin1Char('a')) + EURO + EURO;
        const QByteArray data = QByteArray(1, char(length & 0xff)) + char(length >> 8) + name.toUtf8().left(length);
        CRecordingPlugin plugin;
        QList<CEvent> events; // as they arrive directly, and from the queue
        const auto record = [&events](const CEvent &e) { events << e; };
        connect(&plugin, &CPluginInterface::signal_SendEvent, &plugin, record);
        connect(&plugin, &CPluginInterface::signal_SendEvent, &plugin, record, Qt::QueuedConnection);
        auto page = std::make_unique<QWidget>();
        plugin.AddDesignerPage(QString(), page.get());
        plugin.AddDesignerPage(name, nullptr);
        QCOMPARE(plugin.m_sent, QByteArrayList());
        plugin.AddDesignerPage(name, page.get());
        QCOMPARE(plugin.m_sent, QByteArrayList{"DESI ADDW 0 0 " + data.toHex()});
        QCOMPARE(events.at(0).widget.data(), page.get());
        page.reset();
        QTRY_COMPARE(events.size(), 2);
        QVERIFY(!events.at(1).widget);
    }

    void ReceivedEvents()
    {
        const auto receive = [](const QString &tags, const QByteArray &data) {
            CEvent event = CEvent::Create(tags.left(4), tags.mid(5));
            event.data = QByteArray::fromHex(data);
            CRecordingPlugin plugin;
            plugin.emit_ReceiveEvent(event);
            return plugin.m_calls.join(", ");
        };
        QCOMPARE(receive("M2PE SCOE"_s, "0180ffff"), QByteArray("link 32769"));
        QCOMPARE(receive("M2PE SCOE"_s, "01"), QByteArray("link 0"));
        QCOMPARE(receive("M2PE SCOC"_s, "02000000ff"), QByteArray("state 2"));
        QCOMPARE(receive("M2PE SCOC"_s, "feffffff"), QByteArray("state -2"));
        QCOMPARE(receive("M2PE SCOC"_s, "020000"), QByteArray("state 0"));
        QCOMPARE(receive("M2PE LGNF"_s, "e282ac61006162"), QByteArray("refused \u20aca"));
        QCOMPARE(receive("M2PE LGNF"_s, ""), QByteArray("refused "));
        for (const QString &tags : {"M2PE SCOX"_s, "M2PE scoe"_s, "P2ME SCOE"_s})
            QCOMPARE(receive(tags, "0102"), "event " + tags.toLatin1() + " 0 0 0102");
    }

    void Registration()
    {
        CRecordingPlugin plugin;
        plugin.RegisterEvents();
        QCOMPARE(plugin.m_sent.join(' '), QByteArray("M2PE/ CHAT/ CHAT/TEXT LONGER/TEXTS"));
        QPointer<CRecordingPlugin> unwanted = new CRecordingPlugin;
        connect(unwanted, &CPluginInterface::signal_RegisterForEvent, this, [unwanted] { delete unwanted; });
        unwanted->RegisterEvents();
        QVERIFY(!unwanted);
    }

    void OtherThread()
    {
        CRecordingPlugin plugin;
        const CEvent event = CEvent::Create(CHAT, TEXT);
        std::thread([&plugin, event] { plugin.emit_ReceiveEvent(event); }).join();
        QCOMPARE(plugin.m_calls, QByteArrayList()); // it waits for this thread's event loop
        QTRY_COMPARE(plugin.m_calls, QByteArrayList{"event CHAT TEXT 0 0 "});
    }
};

QTEST_MAIN(tst_plugininterface)
#include "tst_plugininterface.moc"
