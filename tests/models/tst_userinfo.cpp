
#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Singletons.h>

#include <QKeyEvent>
#include <QtTest>

using TModes = QList<CUserInfo::EAvatarDisplayMode>;
Q_DECLARE_METATYPE(TModes)

class tst_userinfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A listener that ends the login, or begins one, has the last word.
    void ListenersOfTheOwnModel()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        QString next;
        const auto connection = connect(user, &CUserInfo::signal_PlayerModelChanged, this, [&] {
            if (user->GetNickname() != next)
                user->SetLoggedIn(next);
        });
        user->SetLoggedIn("Ann"_s);
        QVERIFY(!user->IsLoggedIn() && !user->GetLoginState());
        disconnect(connection);
        user->SetLoggedIn("Ann"_s);
        next = "Zoe"_s;
        connect(user, &CUserInfo::signal_PlayerModelChanged, user, [user, next] { user->SetLoggedIn(next); });
        user->SetLoggedIn(QString());
        QVERIFY(user->GetNickname() == next && user->GetLoginState());
        DestroySingletons();
    }

    void cleanup() { DestroySingletons(); }

    void LoginAndLogout()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        QStringList order;
        const QObject context; // ends before what the lambdas refer to: clazy:excludeall=lambda-in-connect
        connect(user, &CUserInfo::signal_PlayerModelChanged, &context,
                [&](const CPlayerModel *model) { order << (model ? model->GetNickname() : "nobody"_s); });
        connect(user, &CUserInfo::signal_LoginStateChanged, &context,
                [&](bool state) { order << "%1 as '%2'"_s.arg(state ? 1 : 0).arg(user->GetNickname()); });
        user->SetLoggedIn("Ann"_s);
        user->SetLoggedIn("Ann"_s);
        QVERIFY(user->IsLoggedIn());
        user->SetLoggedIn("Bob"_s); // no login state in between
        user->SetLoggedIn(QString());
        QVERIFY(!user->IsLoggedIn());
        QCOMPARE(order.join(QLatin1String("; ")), "Ann; 1 as 'Ann'; Bob; nobody; 0 as ''"_s);

        user->SetLoggedIn("Ann"_s);
        CPlayerModel::DestroyInstances();
        QTRY_VERIFY(!user->IsLoggedIn());
        QVERIFY(user->GetLoginState() && user->GetNickname().isEmpty());
    }

    void AvatarDisplayModes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<TModes>("modes");
        const auto cartoon = CUserInfo::ADM_CartoonAvatars;
        const auto custom = CUserInfo::ADM_CustomAvatars;
        const auto none = CUserInfo::ADM_NoAvatars;
        QTest::newRow("empty") << QString() << TModes{cartoon, custom, none};
        QTest::newRow("two") << "custom,noavatar"_s << TModes{custom, none};
        QTest::newRow("capitals") << "  CUSTOM"_s << TModes{custom};
        QTest::newRow("no separator") << "cartooncustom"_s << TModes{cartoon};
        QTest::newRow("repeated") << "noavatar noavatar"_s << TModes{none, none};
        QTest::newRow("no word") << "cartoo"_s << TModes{none};
    }

    void AvatarDisplayModes()
    {
        QFETCH(QString, text);
        QFETCH(TModes, modes);
        CConfig::GetInstance()->SetConfigs({{"avatardisplaymode"_s, text}});
        QCOMPARE(CUserInfo::GetInstance()->GetAvatarDisplayModes(), modes);
    }

    void Activity()
    {
        constexpr int IDLE_MS = 60;
        CConfig::GetInstance()->SetConfigs({{"activitytimertimeout"_s, IDLE_MS}});
        CUserInfo *user = CUserInfo::GetInstance();
        QSignalSpy spy(user, &CUserInfo::signal_ActivityChanged);
        QObject somebody;
        const auto send = [&somebody](QEvent::Type type) {
            QKeyEvent event(type, Qt::Key_A, Qt::NoModifier);
            QCoreApplication::sendEvent(&somebody, &event);
        };
        const auto take = [&spy] {
            QString changes;
            while (!spy.isEmpty())
                changes += spy.takeFirst().at(0).toBool() ? QLatin1Char('+') : QLatin1Char('-');
            return changes;
        };
        send(QEvent::KeyPress); // active from the start
        QCOMPARE(take(), QString());
        QVERIFY(spy.wait() && !spy.wait(3 * IDLE_MS)); // once, the timer stays stopped
        QCOMPARE(take(), "-"_s);
        for (const auto type : {QEvent::KeyRelease, QEvent::MouseButtonRelease, QEvent::FocusIn, QEvent::User})
            send(type);
        user->SetUserActivity(false);
        QCOMPARE(take(), QString());
        for (const auto type : {QEvent::KeyPress, QEvent::MouseMove, QEvent::MouseButtonPress}) {
            user->SetUserActivity(false);
            send(type);
        }
        user->SetUserActivity(true);
        QCOMPARE(take(), "+-+-+"_s);
    }

    void TablesAndReset()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        user->AddWaitingListTable(7, 2);
        user->AddWaitingListTable(7, 1);
        user->AddWaitingListTable(8, 3);
        user->AddTournament(7);
        user->AddTournament(8);
        user->RemoveWaitingListTable(8);
        user->RemoveTournament(8);
        QCOMPARE(std::pair(int(user->GetPositionOnWaitingList(7)), int(user->GetPositionOnWaitingList(8))),
                 std::pair(1, 0));
        QVERIFY(user->IsInTournament(7) && !user->IsInTournament(8));
        user->SetLoggedIn("Ann"_s);
        user->SetUserActivity(false);
        QSignalSpy activity(user, &CUserInfo::signal_ActivityChanged);
        static_cast<CUserInfoDataModel *>(user)->Reset();
        QVERIFY(!user->IsLoggedIn() && !user->GetLoginState());
        QVERIFY(!user->IsInTournament(7) && user->GetPositionOnWaitingList(7) == 0);
        QCOMPARE(activity.size(), 1);
    }

private:
    CInstallationTree m_tree;
};

QTEST_GUILESS_MAIN(tst_userinfo)
#include "tst_userinfo.moc"
