// The user's session, with the game server's records given by hand.

#include <client/Synchronisation.h>

#include <settings/PlayerInfo.h>
#include <support/InstallationTree.h>
#include <support/Singletons.h>

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
        m_pSession.reset(new CSession(Sender()));
    }

    void cleanup()
    {
        m_pSession.reset();
        DestroySingletons();
    }

    void loginAndLogout()
    {
        const CUserInfo *user = CUserInfo::GetInstance();
        QString seenAtLogin;
        const QObject context; // ends before what the lambda refers to: clazy:excludeall=lambda-in-connect
        connect(user, &CUserInfo::signal_LoginStateChanged, &context, [&](bool loggedIn) {
            seenAtLogin = user->GetPasswordHashed() + QString::number(user->GetRealMoney());
            QCOMPARE(loggedIn, user->IsLoggedIn());
        });
        Receive(Payload::Encode(STime{1700000000}));
        m_pSession->LogIn(QStringLiteral("magnolia"), QStringLiteral("hash"));
        QCOMPARE(m_sent, {Payload::ToPackets(
                             GROUP, {Payload::Encode(SLogin{QStringLiteral("magnolia"), QStringLiteral("hash")})})});
        Receive(Payload::Encode(SAccount{QStringLiteral("Robin"), {}})); // who hasn't asked
        QVERIFY(!user->IsLoggedIn());
        QCOMPARE(CConsole::GetMessages().size(), 1);

        Receive(Accepted(500));
        QCOMPARE(seenAtLogin, QStringLiteral("hash500"));
        QCOMPARE(CUserInfo::GetInstance()->GetNickname(), QStringLiteral("Magnolia"));
        QCOMPARE(user->GetLoginTime(), 1700000000u);
        QVERIFY(user->GetAccountCurrency() == GlobalDefines::MONEYTYPE_EURO && user->GetPlayMoney() == 7);

        m_pSession->LogOut();
        QCOMPARE(m_sent.last(), Payload::ToPackets(AccountProtocol::GROUP, {LOGOUT}));
        QCOMPARE(seenAtLogin, QStringLiteral("0"));
        Receive(Accepted(500)); // again, but nobody asked
        QVERIFY(!user->IsLoggedIn());
    }

    void everyLoginEnds_data()
    {
        QTest::addColumn<QByteArray>("record");
        QTest::addColumn<QString>("key");
        const QString magnolia = QStringLiteral("Magnolia");
        QTest::newRow("refused") << Payload::Encode(SRefusal{magnolia, RF_NO_ACCOUNT})
                                 << QStringLiteral("LOGIN_NO_ACCOUNT");
        QTest::newRow("unknown reason") << Payload::Encode(SRefusal{magnolia, ERefusal('?')})
                                        << QStringLiteral("LOGIN_REFUSED");
        QTest::newRow("link lost") << QByteArray() << QStringLiteral("LOGIN_LOST_LINK");
        QTest::newRow("no answer") << QByteArray() << QStringLiteral("LOGIN_NO_ANSWER");
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
        QTEST(refused.at(0).at(0).toString(), "key");
        QVERIFY(cancelled.isEmpty()); // the user may try again
        Receive(Accepted(500));       // too late
        QVERIFY(!CUserInfo::GetInstance()->IsLoggedIn());
        QCOMPARE(m_sent.contains(Payload::ToPackets(AccountProtocol::GROUP, {LOGOUT})), end == "no answer");
    }

    void linkComesBack()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        LogIn();
        QSignalSpy states(user, &CUserInfo::signal_LoginStateChanged);
        for (const QByteArray &answer :
             {Accepted(300), Payload::Encode(SRefusal{QStringLiteral("Magnolia"), RF_WRONG_PASSWORD})}) {
            m_pSession->SetConnectionState(EConnectionState::Reconnecting);
            QVERIFY(user->IsLoggedIn());
            m_pSession->SetConnectionState(EConnectionState::Connected);
            QCOMPARE(m_sent.last(), Payload::ToPackets(GROUP, {Payload::Encode(SLogin{QStringLiteral("Magnolia"),
                                                                                      QStringLiteral("hash")})}));
            QVERIFY(states.isEmpty());
            Receive(answer);
        }
        QCOMPARE(states, (QList<QVariantList>{{false}}));
    }

    void malformedRecordsChangeNothing()
    {
        LogIn();
        m_pSession->SetConnectionState(EConnectionState::Connected); // so that answers are waited for
        const QByteArray jackpot = Payload::Encode(SJackpot{GlobalDefines::MONEYTYPE_EURO, 4294967295u});
        QSignalSpy jackpots(CCasinoInfo::GetInstance(), &CCasinoInfo::signal_BadBeatJackpotChanged);
        const QByteArray refused = Payload::Encode(SRefusal{QStringLiteral("Magnolia"), RF_WRONG_PASSWORD});
        for (const QByteArray &record : {Accepted(9), refused, Payload::Encode(STime{99}), jackpot}) {
            for (int length = 4; length <= record.size(); ++length) {
                CConsole::Clear();
                Receive(length < record.size() ? record.left(length) : record + 'x');
                QVERIFY2(CConsole::GetMessages().size() == 1, record.left(length).toHex());
            }
        }
        QVERIFY(CUserInfo::GetInstance()->IsLoggedIn() && CUserInfo::GetInstance()->GetRealMoney() == 500);
        QCOMPARE(CCasinoTime::GetInstance()->GetTimeUTCServer(), 0u);
        QVERIFY(jackpots.isEmpty());
        Receive(jackpot);
        QCOMPARE(jackpots.value(0).value(0).toUInt(), 4294967295u);
    }

    void balancesOfTheUser()
    {
        const CUserInfo *user = CUserInfo::GetInstance();
        const auto balances = [](const QString &nickname) {
            return Payload::Encode(SAccount{nickname, GlobalDefines::MONEYTYPE_DOLLAR, 600, 8}, BALANCES);
        };
        QVERIFY(!m_pSession->RequestBalances() && m_sent.isEmpty());
        LogIn();
        QVERIFY(m_pSession->RequestBalances());
        Receive(balances(QStringLiteral("Robin")));
        QVERIFY(user->GetRealMoney() == 500 && CConsole::GetMessages().size() == 1);
        Receive(balances(user->GetNickname()));
        QVERIFY(user->GetRealMoney() == 600 && user->GetPlayMoney() == 8 && user->GetLoginBalance() == 500);
        m_pSession->LogOut();
        Receive(balances(QStringLiteral("Magnolia")));
        QCOMPARE(user->GetRealMoney(), 0u);
    }

    void webSessions()
    {
        const CInstallationTree tree;
        tree.MakeDir(QStringLiteral("Tmp"));
        CSynchronisation synchronisation(*m_pSession);
        synchronisation.SetIntervals(1, 60000);
        const QByteArray none = Payload::Encode(SWebSession{WebLinks::SettingsSyncFetch, QString()});
        LogIn();
        QVERIFY(m_sent.size() == 2 && m_sent.last().contains(SWebRequest::TAG));
        QVERIFY(synchronisation.HandleRecord(ToEvent(none)));
        QTRY_COMPARE(m_sent.size(), 3); // there may be one by now
        m_pSession->LogOut();
        m_sent.clear();
        QVERIFY(synchronisation.HandleRecord(ToEvent(none))); // for a login that has ended
        QVERIFY(synchronisation.HandleRecord(ToEvent(none.left(5))));
        QTest::qWait(20);
        QVERIFY(m_sent.isEmpty() && CConsole::GetMessages().size() == 1);
    }

    void notesStayWithTheirUser()
    {
        const CInstallationTree tree;
        tree.MakeDir(QStringLiteral("Tmp"));
        QVERIFY(CPlayerInfoDB::GetInstance()->Init());
        const CSynchronisation synchronisation(*m_pSession);
        const QString robin = QStringLiteral("Robin");
        LogIn();
        CPlayerModel::GetInstance(robin)->SetNotes(QStringLiteral("Bluffs")); // and waits to be stored
        m_pSession->LogOut();
        CUserInfo::GetInstance()->SetLoggedIn(QStringLiteral("Fern"));
        QVERIFY(CPlayerModel::GetInstance(robin)->GetNotes().isEmpty());
        m_pSession->LogOut();
        LogIn();
        QCOMPARE(CPlayerModel::GetInstance(robin)->GetNotes(), QStringLiteral("Bluffs"));
    }

private:
    static QByteArray Accepted(GlobalDefines::MoneyValue realMoney)
    {
        return Payload::Encode(SAccount{QStringLiteral("Magnolia"), GlobalDefines::MONEYTYPE_EURO, realMoney, 7});
    }

    void LogIn()
    {
        m_pSession->LogIn(QStringLiteral("Magnolia"), QStringLiteral("hash"));
        Receive(Accepted(500));
    }

    CSession::TSend Sender()
    {
        return [this](const QByteArray &packet) {
            m_sent.append(packet);
            return true;
        };
    }

    static CEvent ToEvent(const QByteArray &record)
    {
        const char *group = record.startsWith(STime::TAG)      ? TIME_GROUP
                            : record.startsWith(SJackpot::TAG) ? CASINO_GROUP
                                                               : GROUP;
        CEvent event = CEvent::Create(QLatin1String(group), QLatin1String(record.left(4)));
        event.data = record;
        return event;
    }

    void Receive(const QByteArray &record) { QVERIFY(m_pSession->HandleRecord(ToEvent(record))); }

    QScopedPointer<CSession> m_pSession;
    QVector<QByteArray> m_sent;
};

QTEST_MAIN(tst_session)
#include "tst_session.moc"
