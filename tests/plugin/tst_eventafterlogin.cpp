
#include <support/Singletons.h>
#include <support/StubPlugin.h>

#include <QAbstractEventDispatcher>
#include <QtTest>

namespace {

const QString ANN = QStringLiteral("Ann");

// Lets the 30 s go by at once: their real timers fire. Answers how many there are.
int FireTimeLimits()
{
    QObject *dispatcher = QAbstractEventDispatcher::instance();
    int fired = 0;
    for (QObject *timer : dispatcher->children()) {
        const auto infos = static_cast<QAbstractEventDispatcher *>(dispatcher)->registeredTimers(timer);
        for (const auto &info : infos) {
            if (info.interval != 30000 || info.timerType != Qt::PreciseTimer)
                continue;
            QTimerEvent event(info.timerId);
            QCoreApplication::sendEvent(timer, &event);
            ++fired;
        }
    }
    return fired;
}

} // namespace

class tst_eventafterlogin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        FireTimeLimits(); // those of events that are gone
        m_sent.clear();
        m_plugins = std::make_unique<std::array<CStubPlugin, 2>>();
        for (CStubPlugin &plugin : *m_plugins) {
            connect(&plugin, &CPluginInterface::signal_SendEvent, this,
                    [this](const CEvent &event) { m_sent += QString::fromLatin1(event.tag2, 4) + QLatin1Char(' '); });
        }
    }

    void cleanup()
    {
        m_plugins.reset();
        DestroySingletons();
    }

    void LoggedInAlready()
    {
        CUserInfo::GetInstance()->SetLoggedIn(ANN);
        Send(0, "ONE1");
        Send(0, "TWO2");
        QCOMPARE(m_sent, QStringLiteral("LGND LGND ")); // the events themselves come from the event loop
        QCoreApplication::processEvents();
        QCOMPARE(m_sent, QStringLiteral("LGND LGND ONE1 TWO2 "));
        QCOMPARE(FireTimeLimits(), 0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(m_plugins->at(0).children().isEmpty());
    }

    void NewestWaits()
    {
        Send(0, "ONE1");
        Send(1, "TWO2");
        Send(0, "SIX6");
        m_sent.clear();
        CUserInfo::GetInstance()->SetLoggedIn(ANN);
        QCOMPARE(m_sent, QString());
        QCoreApplication::processEvents();
        QCOMPARE(m_sent, QStringLiteral("SIX6 "));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(m_plugins->at(0).children().size() == 1 && m_plugins->at(1).children().isEmpty());
        FireTimeLimits(); // which is when the event that went out ends
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(m_plugins->at(0).children().isEmpty());
    }

    void Dropped_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("cancelled") << 0;
        QTest::newRow("logged out") << 1;
        QTest::newRow("30 s") << 2;
        QTest::newRow("with its plugin") << 3;
    }

    void Dropped()
    {
        QFETCH(int, how);
        CUserInfo *user = CUserInfo::GetInstance();
        user->SetLoginState(true); // without a model nobody is logged in
        Send(0, "ONE1");
        m_sent.clear();
        if (how == 0)
            user->EmitLoginCanceled();
        else if (how == 1)
            user->SetLoggedIn(QString());
        else if (how == 2)
            QCOMPARE(FireTimeLimits(), 1);
        else
            m_plugins.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        user->SetLoggedIn(QString());
        user->SetLoggedIn(ANN);
        QCoreApplication::processEvents();
        QCOMPARE(m_sent, QString());
    }

    void SlotInterferes_data()
    {
        QTest::addColumn<QString>("heard");
        QTest::addColumn<QString>("sent");
        QTest::newRow("plugin deleted at the login dialog") << "LGND"
                                                            << "LGND ";
        QTest::newRow("plugin deleted when the older event is cancelled") << "cancel"
                                                                          << "LGND ";
        QTest::newRow("plugin deleted at the event itself") << "ONE1"
                                                            << "LGND ONE1 ";
        QTest::newRow("newer event when the older one is cancelled") << "once"
                                                                     << "LGND LGND TWO2 ";
    }

    void SlotInterferes()
    {
        QFETCH(QString, heard);
        CUserInfo *user = CUserInfo::GetInstance();
        if (heard == QLatin1String("ONE1"))
            user->SetLoggedIn(ANN);
        connect(user, &CUserInfo::signal_LoginCanceled, this, [this, heard]() mutable {
            if (heard == QLatin1String("cancel"))
                m_plugins.reset();
            else if (std::exchange(heard, QString()) == QLatin1String("once"))
                Send(1, "TWO2");
        });
        connect(&m_plugins->at(0), &CPluginInterface::signal_SendEvent, this, [this, heard](const CEvent &event) {
            if (heard == QString::fromLatin1(event.tag2, 4))
                m_plugins.reset();
        });
        Send(0, "ONE1");
        user->SetLoggedIn(ANN);
        QCoreApplication::processEvents();
        QTEST(m_sent, "sent");
    }

private:
    void Send(std::size_t plugin, const char *tag2)
    {
        m_plugins->at(plugin).SendInternEvent(1, 2, QStringLiteral("P2ME"), QLatin1String(tag2), true);
    }

    std::unique_ptr<std::array<CStubPlugin, 2>> m_plugins;
    QString m_sent;
};

QTEST_GUILESS_MAIN(tst_eventafterlogin)
#include "tst_eventafterlogin.moc"
