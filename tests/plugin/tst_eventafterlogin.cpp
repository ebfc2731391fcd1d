
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>
#include <support/StubPlugin.h>

#include <QAbstractEventDispatcher>
#include <QtTest>

namespace {

const QString ANN = "Ann"_s;

// Lets the 30 s go by at once: their real timers fire. Answers how many there are.
int FireTimeLimits()
{
    auto *dispatcher = QAbstractEventDispatcher::instance();
    int fired = 0;
    for (QObject *timer : dispatcher->children()) {
        for (const auto &info : dispatcher->registeredTimers(timer)) {
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
        QCOMPARE(m_sent, "LGND LGND "_s); // the events themselves come from the event loop
        QCoreApplication::processEvents();
        QCOMPARE(m_sent, "LGND LGND ONE1 TWO2 "_s);
        QCOMPARE(FireTimeLimits(), 0);
        QCOMPARE(CountWaiting(), std::pair(0, 0));
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
        QCOMPARE(m_sent, "SIX6 "_s);
        QCOMPARE(CountWaiting(), std::pair(1, 0));
        FireTimeLimits(); // which is when the event that went out ends
        QCOMPARE(CountWaiting(), std::pair(0, 0));
    }

    void Dropped_data()
    {
        AddRows<int>({"how"}, {{"cancelled", 0}, {"logged out", 1}, {"30 s", 2}, {"with its plugin", 3}});
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
        AddRows<QString, QString>({"heard", "sent"},
                                  {{"plugin deleted at the login dialog", "LGND"_s, "LGND "_s},
                                   {"plugin deleted when the older event is cancelled", "cancel"_s, "LGND "_s},
                                   {"plugin deleted at the event itself", "ONE1"_s, "LGND ONE1 "_s},
                                   {"newer event when the older one is cancelled", "once"_s, "LGND LGND TWO2 "_s}});
    }

    void SlotInterferes()
    {
        QFETCH(QString, heard);
        CUserInfo *user = CUserInfo::GetInstance();
        if (heard == "ONE1"_s)
            user->SetLoggedIn(ANN);
        connect(user, &CUserInfo::signal_LoginCanceled, this, [this, heard]() mutable {
            if (heard == "cancel"_s)
                m_plugins.reset();
            else if (std::exchange(heard, QString()) == "once"_s)
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
    // By plugin.
    std::pair<int, int> CountWaiting() const
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return {m_plugins->at(0).children().size(), m_plugins->at(1).children().size()};
    }

    void Send(std::size_t plugin, const char *tag2)
    {
        m_plugins->at(plugin).SendInternEvent(1, 2, "P2ME"_s, QLatin1String(tag2), true);
    }

    std::unique_ptr<std::array<CStubPlugin, 2>> m_plugins;
    QString m_sent;
};

QTEST_GUILESS_MAIN(tst_eventafterlogin)
#include "tst_eventafterlogin.moc"
