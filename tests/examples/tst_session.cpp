// The user's session, with the game server's records given by hand.

#include <client/Session.h>
#include <files/Console.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>
#include <time/CasinoTime.h>

#include <QtTest>

using namespace AccountProtocol;

class tst_session : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        CConsole::Clear();
        m_sent.clear();
        m_pSession.reset(new CSession([this](const QByteArray &packet) {
            m_sent.append(packet);
            return true;
        }));
    }

    void cleanup()
    {
        m_pSession.reset();
        CCasinoTime::DestroyInstance();
        CSettings::DestroyInstance();
        CUserInfo::DestroyInstance();
        CPlayerModel::DestroyInstances();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void loginAndLogout()
    {
        const CUserInfo *user = CUserInfo::GetInstance();
        QString seenAtLogin;
        connect(user, &CUserInfo::signal_LoginStateChanged, this, [&](bool loggedIn) {
            seenAtLogin = user->GetPasswordHashed() + QString::number(user->GetRealMoney());
            QCOMPARE(loggedIn, user->IsLoggedIn());
        });
        Receive(EncodeTime(1700000000));
        m_pSession->LogIn(QStringLiteral("magnolia"), QStringLiteral("hash"));
        QCOMPARE(m_sent, {ToPacket(EncodeLogin({QStringLiteral("magnolia"), QStringLiteral("hash")}))});
        Receive(EncodeAccepted({QStringLiteral("Robin"), {}})); // who hasn't asked
        QVERIFY(!user->IsLoggedIn());
        QCOMPARE(CConsole::GetMessages().size(), 1);

        Receive(Accepted(500));
        QCOMPARE(seenAtLogin, QStringLiteral("hash500"));
        QCOMPARE(CUserInfo::GetInstance()->GetNickname(), QStringLiteral("Magnolia"));
        QCOMPARE(user->GetLoginTime(), 1700000000u);
        QVERIFY(user->GetAccountCurrency() == GlobalDefines::MONEYTYPE_EURO && user->GetPlayMoney() == 7);

        m_pSession->LogOut();
        QCOMPARE(m_sent.last(), ToPacket(EncodeLogout()));
        QCOMPARE(seenAtLogin, QStringLiteral("0"));
        Receive(Accepted(500)); // again, but nobody asked
        QVERIFY(!user->IsLoggedIn());
    }

    void everyLoginEnds_data()
    {
        QTest::addColumn<QByteArray>("record");
        QTest::newRow("refused") << EncodeRefused({QStringLiteral("Magnolia"), QStringLiteral("No.")});
        QTest::newRow("link lost") << QByteArray();
        QTest::newRow("no answer") << QByteArray();
    }

    void everyLoginEnds()
    {
        QFETCH(QByteArray, record);
        const QByteArray end(QTest::currentDataTag());
        QSignalSpy refused(m_pSession.data(), &CSession::signal_LoginRefused);
        QSignalSpy cancelled(CUserInfo::GetInstance(), &CUserInfo::signal_LoginCanceled);
        m_pSession->SetAnswerLimit(end == "no answer" ? 1 : 60000);
        m_pSession->LogIn(QStringLiteral("Magnolia"), QStringLiteral("hash"));
        Receive(record);
        if (end == "link lost")
            m_pSession->SetConnectionState(EConnectionState::Reconnecting);
        QTRY_COMPARE(refused.size(), 1);
        QVERIFY(cancelled.isEmpty()); // the user may try again
        Receive(Accepted(500));       // too late
        QVERIFY(!CUserInfo::GetInstance()->IsLoggedIn());
        QCOMPARE(m_sent.contains(ToPacket(EncodeLogout())), end == "no answer");
    }

    void linkComesBack()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        LogIn();
        QSignalSpy states(user, &CUserInfo::signal_LoginStateChanged);
        for (const QByteArray &answer :
             {Accepted(300), EncodeRefused({QStringLiteral("Magnolia"), QStringLiteral("No.")})}) {
            m_pSession->SetConnectionState(EConnectionState::Reconnecting);
            QVERIFY(user->IsLoggedIn());
            m_pSession->SetConnectionState(EConnectionState::Connected);
            QCOMPARE(m_sent.last(), ToPacket(EncodeLogin({QStringLiteral("Magnolia"), QStringLiteral("hash")})));
            QVERIFY(states.isEmpty());
            Receive(answer);
        }
        QCOMPARE(states, (QList<QVariantList>{{false}}));
    }

    void malformedRecordsChangeNothing()
    {
        LogIn();
        m_pSession->SetConnectionState(EConnectionState::Connected); // so that answers are waited for
        const QByteArray refused = EncodeRefused({QStringLiteral("Magnolia"), QString()});
        for (const QByteArray &record : {Accepted(9), refused, EncodeTime(99)}) {
            for (int length = 4; length <= record.size(); ++length) {
                CConsole::Clear();
                Receive(length < record.size() ? record.left(length) : record + 'x');
                QVERIFY2(CConsole::GetMessages().size() == 1, record.left(length).toHex());
            }
        }
        QVERIFY(CUserInfo::GetInstance()->IsLoggedIn() && CUserInfo::GetInstance()->GetRealMoney() == 500);
        QCOMPARE(CCasinoTime::GetInstance()->GetTimeUTCServer(), 0u);
    }

private:
    static QByteArray Accepted(GlobalDefines::MoneyValue realMoney)
    {
        return EncodeAccepted({QStringLiteral("Magnolia"), GlobalDefines::MONEYTYPE_EURO, realMoney, 7});
    }

    void LogIn()
    {
        m_pSession->LogIn(QStringLiteral("Magnolia"), QStringLiteral("hash"));
        Receive(Accepted(500));
    }

    void Receive(const QByteArray &record)
    {
        CEvent event = CEvent::Create(QLatin1String(record.startsWith(TIME) ? TIME_GROUP : GROUP),
                                      QLatin1String(record.left(4)));
        event.data = record;
        QVERIFY(m_pSession->HandleRecord(event));
    }

    QScopedPointer<CSession> m_pSession;
    QVector<QByteArray> m_sent;
};

QTEST_MAIN(tst_session)
#include "tst_session.moc"
