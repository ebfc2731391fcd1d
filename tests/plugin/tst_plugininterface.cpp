#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>
#include <support/StubPlugin.h>

#include <QAbstractEventDispatcher>
#include <QtTest>

#include <memory>
#include <thread>

namespace {

const QString CHAT = "CHAT"_s;
const QString TEXT = "TEXT"_s;
const QString EURO = QChar(0x20ac); // three bytes in UTF-8, nothing in Latin-1
const QByteArray LOGIN = "P2ME LGND 0 0 ";
QByteArrayList sent; // by all plugins
QByteArrayList received;

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
        connect(this, &CPluginInterface::signal_SendEvent, this, [](const CEvent &e) { sent << ToText(e); });
        connect(this, &CPluginInterface::signal_RegisterForEvent, this, [](const QString &tag1, const QString &tag2) {
            sent << (tag1 + QLatin1Char('/') + tag2).toLatin1();
        });
    }

    void ReceiveEvent(CEvent e) override { received << "event " + ToText(e); }
    void RegisterForEvents() override
    {
        for (const QString &tags : {"CHAT/"_s, "CHAT/TEXT"_s, "LONGER/TEXTS"_s, "CHA/"_s, "/"_s, "CHAT/TEX"_s})
            RegisterForEvent(tags.section(QLatin1Char('/'), 0, 0), tags.section(QLatin1Char('/'), 1));
    }
    void ConnectionEstablished(unsigned short value) override { received << "link " + QByteArray::number(value); }
    void ConnectionStateChanged(EConnectionState::type s) override { received << "state " + QByteArray::number(s); }
    void LoginFailed(QString message) override { received << "refused " + message.toUtf8(); }
};

// Lets the 30 s of events that wait for a login go by at once: their real timers fire.
void FireTimeLimits()
{
    auto *dispatcher = QAbstractEventDispatcher::instance();
    for (QObject *timer : dispatcher->children()) {
        for (const auto &info : dispatcher->registeredTimers(timer)) {
            QTimerEvent event(info.timerId);
            if (info.interval == 30000 && info.timerType == Qt::PreciseTimer)
                QCoreApplication::sendEvent(timer, &event);
        }
    }
}

} // namespace

// Both directions of the bus between a plugin and its host.
class tst_plugininterface : public QObject
{
    Q_OBJECT

    std::unique_ptr<CRecordingPlugin> m_plugin;
    std::unique_ptr<CRecordingPlugin> m_other;

    auto CountWaiting() const // events
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return m_plugin->children().size() + m_other->children().size();
    }

    static void Send(const std::unique_ptr<CRecordingPlugin> &plugin, const QString &tag2)
    {
        plugin->SendInternEvent(0, 0, CHAT, tag2, true);
    }

private Q_SLOTS:
    void init()
    {
        sent.clear();
        received.clear();
        m_plugin = std::make_unique<CRecordingPlugin>();
        m_other = std::make_unique<CRecordingPlugin>();
    }

    void cleanup()
    {
        m_plugin.reset();
        m_other.reset();
        DestroySingletons();
        FireTimeLimits(); // those of events that are gone
    }

    void SentEvents()
    {
        char bytes[] = "TAG1\x05\x06";
        const QByteArray tooLong(65536 + 6, 'T');
        m_plugin->OpenLoginDialog();
        m_plugin->RequestShutDown();
        m_plugin->SendToServer(bytes, 3, false);
        m_plugin->SendToWebServer(bytes, 3, false);
        m_plugin->SendToServer("ABCD", 7, 0x01020304, bytes, 6, false);
        m_plugin->SendToWebServer("ABCD", 7, 0x01020304, bytes, 6, false);
        m_plugin->SendToServer("AB", 0, 0, nullptr, 0, false);
        m_plugin->SendToServer("AB", 0, 0, tooLong.constData(), int(tooLong.size()), false);
        m_plugin->OpenWebPage(WebLinks::Cashier, false);
        m_plugin->RequestCashierInformation(); // the login dialog at once, the event itself not
        m_plugin->OpenWebPage(EURO, false);
        m_plugin->OpenWebPage(CHAT, EURO, false);
        m_plugin->OpenWebPage(CHAT, QString(70000, QLatin1Char('s')), false);
        m_plugin->SendInternEvent(200, ~0u, CHAT, TEXT, false);
        QCOMPARE(sent,
                 (QByteArrayList{LOGIN, "P2ME RSHD 0 0 ", "P2ME RSRV 0 0 544147", "P2ME RWEB 0 0 544147",
                                 "P2ME RSRV 0 0 41424344070403020113000800544147310506",
                                 "P2ME RWEB 0 0 41424344070403020113000800544147310506",
                                 "P2ME RSRV 0 0 4142000000000000000d000200",
                                 "P2ME RSRV 0 0 41420000000000000013000800545454545454", "P2ME WLID 0 0 12000000",
                                 LOGIN, "P2ME WLNK 0 0 e282ac", "P2ME WEBW 0 0 01003f040043484154",
                                 "P2ME WEBW 0 0 ffff" + QByteArray(65535, 's').toHex() + "040043484154",
                                 "CHAT TEXT 200 4294967295 "}));
    }

    void NeverSent()
    {
        char bytes[32755] = {};
        m_plugin->SendToServer("AB", 0, 0, bytes, sizeof bytes, false); // one more than a packet holds
        m_plugin->SendToServer(bytes, -1, false);
        m_plugin->SendToServer("AB", 0, 0, bytes, -1, false);
        m_plugin->SendToWebServer(nullptr, 4, false);
        m_plugin->SendToWebServer("AB", 0, 0, nullptr, 4, false);
        m_plugin->OpenWebPage(QString(), false);
        QWidget page;
        m_plugin->AddDesignerPage(QString(), &page);
        m_plugin->AddDesignerPage(CHAT, nullptr);
        QCOMPARE(sent, QByteArrayList());
    }

    // Letters before two characters of three bytes each, and how many bytes are sent of it.
    void DesignerPage_data()
    {
        AddRows<int, int>(
            {"letters", "length"},
            {{"short", 0, 6}, {"cut in the second", 65534, 65534}, {"cut before the first", 65533, 65533}});
    }

    void DesignerPage()
    {
        QFETCH(int, letters);
        QFETCH(int, length);
        const QString name = QString(letters, QLatin1Char('a')) + EURO + EURO;
        const QByteArray data = QByteArray(1, char(length & 0xff)) + char(length >> 8) + name.toUtf8().left(length);
        QWidget *shown = nullptr;
        connect(m_plugin.get(), &CPluginInterface::signal_SendEvent, this,
                [&](const CEvent &e) { shown = e.widget; });
        QWidget page;
        m_plugin->AddDesignerPage(name, &page);
        QCOMPARE(sent, QByteArrayList{"DESI ADDW 0 0 " + data.toHex()});
        QCOMPARE(shown, &page);
    }

    void ReceivedEvents()
    {
        const auto receive = [this](const QString &tags, const QByteArray &data) {
            CEvent event = CEvent::Create(tags.left(4), tags.mid(5));
            event.data = QByteArray::fromHex(data);
            m_plugin->emit_ReceiveEvent(event);
            return received.takeLast();
        };
        QCOMPARE(receive("M2PE SCOE"_s, "0180ffff"), QByteArray("link 32769"));
        QCOMPARE(receive("M2PE SCOC"_s, "feffffff"), QByteArray("state -2"));
        QCOMPARE(receive("M2PE SCOC"_s, "020000"), QByteArray("state 0"));
        QCOMPARE(receive("M2PE LGNF"_s, "e282ac61006162"), QByteArray("refused \u20aca"));
        QCOMPARE(receive("P2ME SCOE"_s, "0102"), QByteArray("event P2ME SCOE 0 0 0102"));
    }

    void Registration()
    {
        m_plugin->RegisterEvents();
        QCOMPARE(sent.join(' '), QByteArray("M2PE/ CHAT/ CHAT/TEXT LONGER/TEXTS"));
        connect(m_plugin.get(), &CPluginInterface::signal_RegisterForEvent, this, [this] { m_plugin.reset(); });
        m_plugin->RegisterEvents();
        QCOMPARE(sent.size(), 5); // no more of its own
    }

    void OtherThread()
    {
        const CEvent event = CEvent::Create(CHAT, TEXT);
        std::thread([this, event] { m_plugin->emit_ReceiveEvent(event); }).join();
        QCOMPARE(received, QByteArrayList()); // it waits for this thread's event loop
        QTRY_COMPARE(received, QByteArrayList{"event CHAT TEXT 0 0 "});
    }

    void LoggedInAlready()
    {
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        Send(m_plugin, "ONE1"_s);
        Send(m_plugin, "TWO2"_s);
        QCOMPARE(sent, (QByteArrayList{LOGIN, LOGIN})); // the events themselves come from the event loop
        QCoreApplication::processEvents();
        QCOMPARE(sent.mid(2), (QByteArrayList{"CHAT ONE1 0 0 ", "CHAT TWO2 0 0 "}));
        QCOMPARE(CountWaiting(), 0);
    }

    void NewestWaits()
    {
        Send(m_plugin, "ONE1"_s);
        Send(m_other, "TWO2"_s);
        Send(m_plugin, "SIX6"_s);
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        QCOMPARE(sent, (QByteArrayList{LOGIN, LOGIN, LOGIN}));
        QCoreApplication::processEvents();
        QCOMPARE(sent.mid(3), QByteArrayList{"CHAT SIX6 0 0 "});
        QCOMPARE(CountWaiting(), 1);
        FireTimeLimits(); // which is when the event that went out ends
        QCOMPARE(CountWaiting(), 0);
    }

    void Dropped_data()
    {
        AddRows<int>({"how"}, {{"cancelled", 0}, {"logged out", 1}, {"30 s", 2}, {"with its plugin", 3}});
    }

    void Dropped()
    {
        QFETCH(int, how);
        CUserInfo *user = CUserInfo::GetInstance();
        user->SetLoginState(how == 1); // without a model nobody is logged in
        Send(m_plugin, "ONE1"_s);
        if (how == 0)
            user->EmitLoginCanceled();
        else if (how == 1)
            user->SetLoggedIn(QString());
        else if (how == 2)
            FireTimeLimits();
        else
            m_plugin.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        user->SetLoggedIn("Ann"_s);
        QCoreApplication::processEvents();
        QCOMPARE(sent, QByteArrayList{LOGIN});
    }

    void DeletedAtTheLoginDialog()
    {
        connect(m_plugin.get(), &CPluginInterface::signal_SendEvent, this, [this] { m_plugin.reset(); });
        Send(m_plugin, "ONE1"_s);
        QCOMPARE(sent, QByteArrayList{LOGIN});
    }

    // Who hears that an older event is cancelled deletes the plugin, or sends another one.
    void SlotInterferes_data() { AddRows<bool>({"deletes"}, {{"deletes", true}, {"sends", false}}); }

    void SlotInterferes()
    {
        QFETCH(bool, deletes);
        CUserInfo *user = CUserInfo::GetInstance();
        const auto interfere = [this, deletes] {
            if (deletes)
                m_plugin.reset();
            else if (sent.size() == 1)
                Send(m_other, "TWO2"_s);
        };
        connect(user, &CUserInfo::signal_LoginCanceled, this, interfere);
        Send(m_plugin, "ONE1"_s);
        user->SetLoggedIn("Ann"_s);
        QCoreApplication::processEvents();
        QCOMPARE(sent, deletes ? QByteArrayList{LOGIN} : (QByteArrayList{LOGIN, LOGIN, "CHAT TWO2 0 0 "}));
    }
};

QTEST_MAIN(tst_plugininterface)
#include "tst_plugininterface.moc"
