// The user's session, with the game server's records given by hand.

#include <client/Synchronisation.h>

#include <database/SettingsDB.h>
#include <files/Pathes.h>

#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>

#include <QtTest>

using namespace AccountProtocol;

namespace {

const QString TOKEN(TOKEN_LENGTH, u'7');

} // namespace

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
        DestroySingletons();
    }

    void AnswersThatNobodyWaitsFor()
    {
        const CUserInfo *user = CUserInfo::GetInstance();
        const auto balances = [](const QString &nickname) {
            return Payload::Encode(SAccount{nickname, GlobalDefines::MONEYTYPE_DOLLAR, 600, 8}, BALANCES);
        };
        m_pSession->LogIn("magnolia"_s, "river"_s, false);
        Receive(Payload::Encode(SAccount{"Robin"_s, {}}));
        QVERIFY(!user->IsLoggedIn());
        Receive(Accepted(500));
        QCOMPARE(user->GetNickname(), "Magnolia"_s);
        Receive(balances("Robin"_s));
        QCOMPARE(user->GetRealMoney(), 500u);
        m_pSession->LogOut();
        QCOMPARE(m_sent.last(), Payload::ToPackets(GROUP, {LOGOUT}));
        Receive(Accepted(500)); // again
        Receive(balances("Magnolia"_s));
        QVERIFY(!user->IsLoggedIn());
        QCOMPARE(user->GetRealMoney(), 0u);
        QCOMPARE(CConsole::GetMessages().size(), 4);
    }

    void EveryLoginEnds_data()
    {
        const QByteArray noAccount = Payload::Encode(SRefusal{"Magnolia"_s, RF_NO_ACCOUNT});
        const QByteArray unknownReason = Payload::Encode(SRefusal{"Magnolia"_s, ERefusal('?')});
        AddRows<QByteArray, QString>({"record", "key"}, {{"refused", noAccount, "LOGIN_NO_ACCOUNT"_s},
                                                         {"unknown reason", unknownReason, "LOGIN_REFUSED"_s},
                                                         {"link lost", {}, "LOGIN_LOST_LINK"_s},
                                                         {"no answer", {}, "LOGIN_NO_ANSWER"_s}});
    }
    void EveryLoginEnds()
    {
        QFETCH(QByteArray, record);
        const QByteArray end(QTest::currentDataTag());
        QSignalSpy refused(m_pSession.data(), &CSession::signal_LoginRefused);
        m_pSession->SetAnswerLimit(end == "no answer" ? 50 : 60000);
        m_pSession->LogIn("Magnolia"_s, "river"_s, false);
        Receive(record);
        if (end == "link lost")
            m_pSession->SetConnectionState(EConnectionState::Reconnecting, true);
        QTRY_COMPARE(refused.size(), 1);
        QTEST(refused.at(0).at(0).toString(), "key");
        if (end == "no answer")
            m_pSession->LogIn("Magnolia"_s, "again"_s, false);
        Receive(Accepted(500)); // too late
        QVERIFY(!CUserInfo::GetInstance()->IsLoggedIn());
        QCOMPARE(m_sent.contains(Payload::ToPackets(GROUP, {LOGOUT})), end == "no answer");
    }

    // The server answers in turn: what is on its way answers the login that was given up, not the next one.
    void LoginIsGivenUp()
    {
        QSignalSpy refused(m_pSession.data(), &CSession::signal_LoginRefused);
        m_pSession->LogIn("Magnolia"_s, "right"_s, false);
        m_pSession->CancelLogin();
        QCOMPARE(m_sent.last(), Payload::ToPackets(GROUP, {LOGOUT}));
        m_pSession->LogIn("Magnolia"_s, "wrong"_s, false);
        Receive(Accepted(500));
        QVERIFY(!CUserInfo::GetInstance()->IsLoggedIn());
        QVERIFY(refused.isEmpty());
        Receive(Payload::Encode(SRefusal{"Magnolia"_s, RF_WRONG_PASSWORD}));
        QCOMPARE(refused.size(), 1);
        LogIn();
        m_pSession->CancelLogin(); // too late
        QVERIFY(CUserInfo::GetInstance()->IsLoggedIn());
    }

    void LinkComesBack()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        LogIn();
        QSignalSpy states(user, &CUserInfo::signal_LoginStateChanged);
        for (const QByteArray &answer : {Accepted(300), Payload::Encode(SRefusal{"Magnolia"_s, RF_WRONG_PASSWORD})}) {
            m_pSession->SetConnectionState(EConnectionState::Reconnecting, true);
            QVERIFY(user->IsLoggedIn());
            m_pSession->SetConnectionState(EConnectionState::Connected, true);
            QCOMPARE(m_sent.last(), Payload::ToPackets(GROUP, {Payload::Encode(STokenLogin{"Magnolia"_s, TOKEN})}));
            QVERIFY(states.isEmpty());
            Receive(answer);
        }
        QCOMPARE(states, (QList<QVariantList>{{false}}));
    }

    // With a token, in settings that an older client has left open to others. The password is nowhere.
    void LoginIsRemembered_data()
    {
        AddRows<bool>({"isKept"}, {{"client ends", true},
                                   {"logout", false},
                                   {"logout everywhere", false},
                                   {"another user logs in", false},
                                   {"token is taken back", false}});
    }
    void LoginIsRemembered()
    {
        QFETCH(bool, isKept);
        const QByteArray end(QTest::currentDataTag());
        const CInstallationTree tree;
        CSettingsDB::GetInstance()->Init();
        QVERIFY(
            QFile::setPermissions(Pathes::SettingsDB(), QFile::permissions(Pathes::SettingsDB()) | QFile::ReadOther));
        m_pSession->LogIn("Magnolia"_s, "river"_s, true);
        Receive(Payload::Encode(SToken{TOKEN}));
        Receive(Accepted(500));
        CSettings::GetInstance()->slot_SaveSettings(true);
        QVERIFY(!(QFile::permissions(Pathes::SettingsDB()) & QFile::ReadOther));
        const QByteArray stored = ReadFile(Pathes::SettingsDB()) + ReadFile(Pathes::SettingsDB() + "-wal"_s);
        QVERIFY(stored.contains(TOKEN.toLatin1()));
        QVERIFY(!stored.contains("river"));

        if (end == "client ends") {
            m_pSession->Leave();
            QCOMPARE(m_sent.last(), Payload::ToPackets(GROUP, {LEAVE}));
        } else if (end == "logout") {
            m_pSession->LogOut();
        } else if (end == "logout everywhere") {
            m_pSession->LogOutEverywhere();
            QCOMPARE(m_sent.last(), Payload::ToPackets(GROUP, {LOGOUT_EVERYWHERE}));
        } else if (end == "another user logs in") {
            m_pSession->LogIn("Robin"_s, "guest"_s, false);
            Receive(Payload::Encode(SToken{QString(TOKEN).replace(0, 1, u'8')}));
            Receive(Payload::Encode(SAccount{"Robin"_s, {}}));
            m_pSession->Leave();
        } else {
            m_pSession->SetConnectionState(EConnectionState::Connected, true);
            Receive(Payload::Encode(SRefusal{"Magnolia"_s, RF_TOKEN_ENDED}));
        }
        QVERIFY(!CUserInfo::GetInstance()->IsLoggedIn());
        CSettings::GetInstance()->slot_SaveSettings(true);
        m_pSession.reset(); // the client ends
        DestroySingletons();
        CSettingsDB::GetInstance()->Init();
        init();
        m_sent.clear();
        m_pSession->SetConnectionState(EConnectionState::Connected, true);
        const QByteArray login = Payload::ToPackets(GROUP, {Payload::Encode(STokenLogin{"Magnolia"_s, TOKEN})});
        QCOMPARE(m_sent, isKept ? QVector<QByteArray>{login} : QVector<QByteArray>());
        if (!isKept)
            return;
        m_pSession->CancelLogin(); // of what the user did before
        QCOMPARE(m_sent.size(), 1);
        m_pSession->LogIn("Robin"_s, "guest"_s, false); // before the answer
        m_pSession->SetConnectionState(EConnectionState::Reconnecting, true);
        m_pSession->SetConnectionState(EConnectionState::Connected, true);
        QCOMPARE(m_sent.size(), 3); // not the remembered one again
        m_pSession->LogIn("Robin"_s, "guest"_s, false);
        QCOMPARE(m_sent.size(), 4);
        QCOMPARE(m_sent.at(1), Payload::ToPackets(GROUP, {LEAVE}));
        Receive(Payload::Encode(SAccount{"Robin"_s, {}}));
        QCOMPARE(CUserInfo::GetInstance()->GetNickname(), "Robin"_s);
    }

    // Over a connection that others can read neither a password goes out nor a token.
    void NothingSecretGoesUnprotected()
    {
        QSignalSpy refused(m_pSession.data(), &CSession::signal_LoginRefused);
        LogIn();
        m_sent.clear();
        m_pSession->SetConnectionState(EConnectionState::Connected, false);
        CSettings::GetInstance()->SetLastUserPwd(TOKEN);
        m_pSession->LogOut();
        m_pSession->LogIn("Magnolia"_s, "river"_s, false);
        QCOMPARE(refused, (QList<QVariantList>{{"LOGIN_UNPROTECTED"_s}}));
        QCOMPARE(m_sent, (QVector<QByteArray>{Payload::ToPackets(GROUP, {LOGOUT})}));
    }

    void MalformedRecordsChangeNothing_data()
    {
        AddRows<QByteArray>({"record"}, {{"accepted", Accepted(9)},
                                         {"refused", Payload::Encode(SRefusal{"Magnolia"_s, RF_WRONG_PASSWORD})}});
    }
    void MalformedRecordsChangeNothing()
    {
        QFETCH(QByteArray, record);
        LogIn();
        m_pSession->SetConnectionState(EConnectionState::Connected, true); // so that answers are waited for
        for (const QByteArray &wrong : {record.left(4), record.chopped(1), record + 'x'})
            Receive(wrong);
        QCOMPARE(CConsole::GetMessages().size(), 3);
        QVERIFY(CUserInfo::GetInstance()->IsLoggedIn());
        QCOMPARE(CUserInfo::GetInstance()->GetRealMoney(), 500u);
    }

    void WebSessions()
    {
        const CInstallationTree tree;
        CSynchronisation synchronisation(*m_pSession);
        synchronisation.SetIntervals(1, 60000);
        const QByteArray none = Payload::Encode(SWebSession{WebLinks::SettingsSyncFetch, QString()});
        LogIn();
        QCOMPARE(m_sent.size(), 2);
        QVERIFY(synchronisation.HandleRecord(ToEvent(none)));
        QTRY_COMPARE(m_sent.size(), 3); // there may be one by now
        m_pSession->LogOut();
        m_sent.clear();
        QVERIFY(synchronisation.HandleRecord(ToEvent(none))); // for a login that has ended
        QVERIFY(synchronisation.HandleRecord(ToEvent(none.left(5))));
        QTest::qWait(20);
        QVERIFY(m_sent.isEmpty());
        QCOMPARE(CConsole::GetMessages().size(), 1);
    }

private:
    static QByteArray Accepted(GlobalDefines::MoneyValue realMoney)
    {
        return Payload::Encode(SAccount{"Magnolia"_s, GlobalDefines::MONEYTYPE_EURO, realMoney, 7});
    }

    void LogIn()
    {
        m_pSession->LogIn("Magnolia"_s, "river"_s, false);
        Receive(Payload::Encode(SToken{TOKEN}));
        Receive(Accepted(500));
    }

    static CEvent ToEvent(const QByteArray &record)
    {
        CEvent event = CEvent::Create(QLatin1String(GROUP), QLatin1String(record.left(4)));
        event.data = record;
        return event;
    }

    void Receive(const QByteArray &record) { QVERIFY(m_pSession->HandleRecord(ToEvent(record))); }

    QScopedPointer<CSession> m_pSession;
    QVector<QByteArray> m_sent;
};

QTEST_MAIN(tst_session)
#include "tst_session.moc"
