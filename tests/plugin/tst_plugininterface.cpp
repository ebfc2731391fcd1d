#include <plugin/PacketLayerWrapper.h>
#include <plugin/PluginInterface.h>

#include <QPointer>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <functional>
#include <memory>
#include <thread>

namespace {

// Overrides nothing that it needn't.
class CQuietPlugin : public CPluginInterface
{
public:
    QString GetName() const override { return QStringLiteral("quiet"); }
    QString GetVersion() const override { return QStringLiteral("1"); }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override {}
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }
};

QString ToText(const CEvent &event)
{
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(QString::fromLatin1(event.tag1, 4), QString::fromLatin1(event.tag2, 4))
        .arg(int(event.moduleID))
        .arg(event.targetID)
        .arg(QString::fromLatin1(event.data.toHex()));
}

// Writes down what arrives, and in which thread the last call did.
class CRecordingPlugin : public CQuietPlugin
{
public:
    void ReceiveEvent(CEvent e) override { Record(QStringLiteral("event ") + ToText(e)); }
    void RegisterForEvents() override
    {
        RegisterForEvent(QStringLiteral("CHAT"), QString());
        RegisterForEvent(QStringLiteral("CHAT"), QStringLiteral("TEXT"));
        RegisterForEvent(QStringLiteral("LONGER"), QStringLiteral("TEXTS"));
        RegisterForEvent(QStringLiteral("CHA"), QString());
        RegisterForEvent(QString(), QString());
        RegisterForEvent(QStringLiteral("CHAT"), QStringLiteral("TEX"));
        RegisterForEvent(QStringLiteral("CHAT"), QStringLiteral("T"));
    }
    void ConnectionEstablished(unsigned short value) override { Record(QStringLiteral("link %1").arg(value)); }
    void ConnectionStateChanged(EConnectionState::type state) override
    {
        Record(QStringLiteral("state %1").arg(int(state)));
    }
    void LoginFailed(QString message) override { Record(QStringLiteral("refused ") + message); }

    QStringList m_calls;
    QThread *m_pThread = nullptr;

private:
    void Record(const QString &call)
    {
        m_calls << call;
        m_pThread = QThread::currentThread();
    }
};

QStringList ToTexts(const QSignalSpy &sent)
{
    QStringList texts;
    for (const QVariantList &arguments : sent)
        texts << ToText(arguments.at(0).value<CEvent>());
    return texts;
}

CEvent MakeEvent(const QString &tag1, const QString &tag2, const QByteArray &data)
{
    CEvent event = CEvent::Create(tag1, tag2);
    event.data = data;
    return event;
}

const QString LOGIN_DIALOG = QStringLiteral("P2ME LGND 0 0 ");

} // namespace

using TCall = std::function<void(CPluginInterface &)>;
Q_DECLARE_METATYPE(TCall)

// Both directions of the bus between a plugin and its host.
class tst_PluginInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sentEvents_data();
    void sentEvents();
    void afterLogin_data();
    void afterLogin();
    void designerPage();
    void longDesignerPageName_data();
    void longDesignerPageName();
    void longTexts();
    void receivedEvents_data();
    void receivedEvents();
    void registration();
    void quietPlugin();
    void otherThread();
};

void tst_PluginInterface::sentEvents_data()
{
    QTest::addColumn<TCall>("call");
    QTest::addColumn<QStringList>("sent");

    const auto add = [](const char *name, const TCall &call, const QStringList &sent) {
        QTest::newRow(name) << call << sent;
    };
    using TPlugin = CPluginInterface;
    static char bytes[] = "TAG1\x05\x06";
    static const std::vector<char> tooLong(65536 + 6, 'T');
    // 41424344 07 04030201 1300 0800 544147310506
    const QString framed = QStringLiteral("4142434407040302011300") + QStringLiteral("0800544147310506");

    add("login dialog", [](TPlugin &p) { p.OpenLoginDialog(); }, {LOGIN_DIALOG});
    add("shut down", [](TPlugin &p) { p.RequestShutDown(); }, {QStringLiteral("P2ME RSHD 0 0 ")});
    add("bytes to the server", [](TPlugin &p) { p.SendToServer(bytes, 3, false); },
        {QStringLiteral("P2ME RSRV 0 0 544147")});
    add("bytes to the web server", [](TPlugin &p) { p.SendToWebServer(bytes, 6, false); },
        {QStringLiteral("P2ME RWEB 0 0 544147310506")});
    add("packet to the server", [](TPlugin &p) { p.SendToServer("ABCD", 7, 0x01020304, bytes, 6, false); },
        {QStringLiteral("P2ME RSRV 0 0 ") + framed});
    add("packet to the web server", [](TPlugin &p) { p.SendToWebServer("ABCD", 7, 0x01020304, bytes, 6, false); },
        {QStringLiteral("P2ME RWEB 0 0 ") + framed});
    add("packet with an empty record", [](TPlugin &p) { p.SendToServer("AB", 0, 0, nullptr, 0, false); },
        {QStringLiteral("P2ME RSRV 0 0 4142000000000000000d000200")});
    add("length beyond 16 bits",
        [](TPlugin &p) { p.SendToServer("AB", 0, 0, tooLong.data(), int(tooLong.size()), false); },
        {QStringLiteral("P2ME RSRV 0 0 414200000000000000130008005454545454") + QStringLiteral("54")});
    add("record that fits in no packet", [](TPlugin &p) { p.SendToServer("AB", 0, 0, tooLong.data(), 32755, false); },
        {});
    add("negative lengths",
        [](TPlugin &p) {
            p.SendToServer(bytes, -1, false);
            p.SendToServer("AB", 0, 0, bytes, -1, false);
        },
        {});
    add("no bytes",
        [](TPlugin &p) {
            p.SendToWebServer(nullptr, 4, false);
            p.SendToWebServer("AB", 0, 0, nullptr, 4, false);
        },
        {});
    add("page by id", [](TPlugin &p) { p.OpenWebPage(WebLinks::SettingsSyncFetch, false); },
        {QStringLiteral("P2ME WLID 0 0 26000000")});
    add("page by an unknown id", [](TPlugin &p) { p.OpenWebPage(static_cast<WebLinks::id>(-2), false); },
        {QStringLiteral("P2ME WLID 0 0 feffffff")});
    add("page by address", [](TPlugin &p) { p.OpenWebPage(QString::fromUtf8("a/\u20ac"), false); },
        {QStringLiteral("P2ME WLNK 0 0 612fe282ac")});
    add("empty address", [](TPlugin &p) { p.OpenWebPage(QString(), false); }, {});
    add("page with two texts",
        [](TPlugin &p) { p.OpenWebPage(QStringLiteral("ab"), QString::fromUtf8("\u00e4\u20ac"), false); },
        {QStringLiteral("P2ME WEBW 0 0 0200e43f02006162")}); // the second first; '?' for what isn't Latin-1
    add("page with two empty texts", [](TPlugin &p) { p.OpenWebPage(QString(), QString(), false); },
        {QStringLiteral("P2ME WEBW 0 0 00000000")});
    add("any event",
        [](TPlugin &p) {
            p.SendInternEvent(200, 0x80000001, QStringLiteral("CHATS"), QStringLiteral("TEXT"), false);
        },
        {QStringLiteral("CHAT TEXT 200 2147483649 ")});
    add("designer page without a name",
        [](TPlugin &p) {
            QWidget page;
            p.AddDesignerPage(QString(), &page);
        },
        {});
    add("designer page without a widget", [](TPlugin &p) { p.AddDesignerPage(QStringLiteral("x"), nullptr); }, {});
}

void tst_PluginInterface::sentEvents()
{
    QFETCH(TCall, call);
    CQuietPlugin plugin;
    const QSignalSpy sent(&plugin, &CPluginInterface::signal_SendEvent);
    call(plugin);
    QTEST(ToTexts(sent), "sent");
}

void tst_PluginInterface::afterLogin_data()
{
    QTest::addColumn<TCall>("call");

    using TPlugin = CPluginInterface;
    QTest::newRow("cashier") << TCall([](TPlugin &p) { p.RequestCashierInformation(); });
    QTest::newRow("packet") << TCall([](TPlugin &p) { p.SendToServer("ABCD", 7, 8, "TAG1", 4, true); });
    QTest::newRow("page") << TCall([](TPlugin &p) { p.OpenWebPage(WebLinks::Cashier, true); });
    QTest::newRow("event") << TCall(
        [](TPlugin &p) { p.SendInternEvent(1, 2, QStringLiteral("CHAT"), QStringLiteral("TEXT"), true); });
}

// The login dialog at once, the event itself not.
void tst_PluginInterface::afterLogin()
{
    QFETCH(TCall, call);
    CQuietPlugin plugin;
    const QSignalSpy sent(&plugin, &CPluginInterface::signal_SendEvent);
    call(plugin);
    QCOMPARE(ToTexts(sent), QStringList{LOGIN_DIALOG});
}

void tst_PluginInterface::designerPage()
{
    CQuietPlugin plugin;
    auto page = std::make_unique<QWidget>();
    QList<CEvent> direct;
    QList<CEvent> queued;
    connect(&plugin, &CPluginInterface::signal_SendEvent, this, [&](const CEvent &e) { direct << e; });
    connect(
        &plugin, &CPluginInterface::signal_SendEvent, this, [&](const CEvent &e) { queued << e; },
        Qt::QueuedConnection);

    plugin.AddDesignerPage(QString::fromUtf8("\u20ac"), page.get());
    QCOMPARE(direct.size(), 1);
    QCOMPARE(ToText(direct.at(0)), QStringLiteral("DESI ADDW 0 0 0300e282ac"));
    QCOMPARE(direct.at(0).widget.data(), page.get());

    page.reset();
    QTRY_COMPARE(queued.size(), 1);
    QVERIFY(!queued.at(0).widget);
    QVERIFY(queued.at(0).HasTags("DESI", "ADDW"));
}

void tst_PluginInterface::longDesignerPageName_data()
{
    QTest::addColumn<int>("ascii");
    QTest::addColumn<int>("sent");

    // Behind the ASCII letters stand characters of three bytes each.
    QTest::newRow("cut between characters") << 65532 << 65535;
    QTest::newRow("one byte left") << 65534 << 65534;
    QTest::newRow("two bytes left") << 65533 << 65533;
}

void tst_PluginInterface::longDesignerPageName()
{
    QFETCH(int, ascii);
    QFETCH(int, sent);
    const QString name = QString(ascii, QLatin1Char('a')) + QString(2, QChar(0x20ac));

    CQuietPlugin plugin;
    QWidget page;
    const QSignalSpy spy(&plugin, &CPluginInterface::signal_SendEvent);
    plugin.AddDesignerPage(name, &page);
    QCOMPARE(spy.size(), 1);
    const QByteArray data = spy.at(0).at(0).value<CEvent>().data;
    QCOMPARE(data.left(2), QByteArray().append(char(sent & 0xff)).append(char(sent >> 8)));
    QCOMPARE(data.mid(2), name.toUtf8().left(sent));
    QVERIFY(name.startsWith(QString::fromUtf8(data.mid(2))));
}

// A text longer than its 16-bit length can say is cut, so that the next one stays where it is looked for.
void tst_PluginInterface::longTexts()
{
    CQuietPlugin plugin;
    const QSignalSpy spy(&plugin, &CPluginInterface::signal_SendEvent);
    plugin.OpenWebPage(QStringLiteral("first"), QString(70000, QLatin1Char('s')), false);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.at(0).at(0).value<CEvent>().data,
             QByteArray("\xff\xff") + QByteArray(65535, 's') + QByteArray("\x05\0first", 7));
}

void tst_PluginInterface::receivedEvents_data()
{
    QTest::addColumn<QString>("tag1");
    QTest::addColumn<QString>("tag2");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("call");

    const auto hex = [](const char *digits) { return QByteArray::fromHex(digits); };
    QTest::newRow("link") << "M2PE"
                          << "SCOE" << hex("0180ffff") << "link 32769";
    QTest::newRow("link, short") << "M2PE"
                                 << "SCOE" << hex("01") << "link 0";
    QTest::newRow("link, empty") << "M2PE"
                                 << "SCOE" << hex("") << "link 0";
    QTest::newRow("state") << "M2PE"
                           << "SCOC" << hex("02000000ff") << "state 2";
    QTest::newRow("unknown state") << "M2PE"
                                   << "SCOC" << hex("feffffff") << "state -2";
    QTest::newRow("state, short") << "M2PE"
                                  << "SCOC" << hex("020000") << "state 0";
    QTest::newRow("refused") << "M2PE"
                             << "LGNF" << hex("e282ac61006162") << QString::fromUtf8("refused \u20aca");
    QTest::newRow("refused, no zero byte") << "M2PE"
                                           << "LGNF" << hex("6162") << "refused ab";
    QTest::newRow("refused, empty") << "M2PE"
                                    << "LGNF" << hex("") << "refused ";
    QTest::newRow("another code") << "M2PE"
                                  << "SCOX" << hex("0102") << "event M2PE SCOX 0 0 0102";
    QTest::newRow("code in lower case") << "M2PE"
                                        << "scoe" << hex("0102") << "event M2PE scoe 0 0 0102";
    QTest::newRow("code under another tag") << "P2ME"
                                            << "SCOE" << hex("0102") << "event P2ME SCOE 0 0 0102";
    QTest::newRow("tags swapped") << "LGNF"
                                  << "M2PE" << hex("") << "event LGNF M2PE 0 0 ";
}

void tst_PluginInterface::receivedEvents()
{
    QFETCH(QString, tag1);
    QFETCH(QString, tag2);
    QFETCH(QByteArray, data);
    QFETCH(QString, call);

    CRecordingPlugin plugin;
    plugin.emit_ReceiveEvent(MakeEvent(tag1, tag2, data));
    QCOMPARE(plugin.m_calls, QStringList{call});
}

void tst_PluginInterface::registration()
{
    CRecordingPlugin plugin;
    QStringList registered;
    connect(&plugin, &CPluginInterface::signal_RegisterForEvent, this,
            [&](const QString &tag1, const QString &tag2) { registered << tag1 + QLatin1Char('/') + tag2; });
    plugin.RegisterEvents();
    QCOMPARE(registered, (QStringList{QStringLiteral("M2PE/"), QStringLiteral("CHAT/"), QStringLiteral("CHAT/TEXT"),
                                      QStringLiteral("LONGER/TEXTS")}));
}

void tst_PluginInterface::quietPlugin()
{
    CQuietPlugin plugin;
    const QSignalSpy registered(&plugin, &CPluginInterface::signal_RegisterForEvent);
    const QSignalSpy sent(&plugin, &CPluginInterface::signal_SendEvent);
    plugin.RegisterEvents();
    for (const char *code : {"SCOE", "SCOC", "LGNF", "ABCD"})
        plugin.emit_ReceiveEvent(MakeEvent(QStringLiteral("M2PE"), QLatin1String(code), QByteArray("\0\0\0\0", 4)));
    plugin.CreateDesignerPages();
    QCOMPARE(registered.size(), 1);
    QCOMPARE(sent.size(), 0);
}

void tst_PluginInterface::otherThread()
{
    CRecordingPlugin plugin;
    CEvent event = MakeEvent(QStringLiteral("CHAT"), QStringLiteral("TEXT"), QByteArray("ab"));
    event.moduleID = 255;
    event.targetID = 0xffffffff;
    std::thread([&plugin, event] { plugin.emit_ReceiveEvent(event); }).join();
    QCOMPARE(plugin.m_calls, QStringList());
    QTRY_COMPARE(plugin.m_calls, QStringList{QStringLiteral("event CHAT TEXT 255 4294967295 6162")});
    QCOMPARE(plugin.m_pThread, thread());
}

QTEST_MAIN(tst_PluginInterface)
#include "tst_plugininterface.moc"
