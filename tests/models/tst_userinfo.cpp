
#include <support/InstallationTree.h>
#include <support/Literal.h>
#include <support/Rows.h>
#include <support/Singletons.h>

#include <QKeyEvent>
#include <QtTest>

using TModes = QList<CUserInfo::EAvatarDisplayMode>;
Q_DECLARE_METATYPE(TModes)

class tst_userinfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
        QCOMPARE(std::pair(user->GetNickname(), user->GetLoginState()), std::pair(QString(), true));
    }

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
        QCOMPARE(std::pair(user->IsLoggedIn(), user->GetLoginState()), std::pair(false, false));
        disconnect(connection);
        user->SetLoggedIn("Ann"_s);
        next = "Zoe"_s;
        connect(user, &CUserInfo::signal_PlayerModelChanged, user, [user, next] { user->SetLoggedIn(next); });
        user->SetLoggedIn(QString());
        QCOMPARE(std::pair(user->GetNickname(), user->GetLoginState()), std::pair(next, true));
    }

    void AvatarDisplayModes_data()
    {
        const auto cartoon = CUserInfo::ADM_CartoonAvatars;
        const auto custom = CUserInfo::ADM_CustomAvatars;
        const auto none = CUserInfo::ADM_NoAvatars;
        AddRows<QString, TModes>({"text", "modes"}, {{"empty", QString(), {cartoon, custom, none}},
                                                     {"two", "custom,noavatar"_s, {custom, none}},
                                                     {"capitals", "  CUSTOM"_s, {custom}},
                                                     {"no separator", "cartooncustom"_s, {cartoon}},
                                                     {"repeated", "noavatar noavatar"_s, {none, none}},
                                                     {"no word", "cartoo"_s, {none}}});
    }

    void AvatarDisplayModes()
    {
        QFETCH(QString, text);
        CConfig::GetInstance()->SetConfigs({{"avatardisplaymode"_s, text}});
        QTEST(CUserInfo::GetInstance()->GetAvatarDisplayModes(), "modes");
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
        const auto describe = [user] {
            return std::tuple(int(user->GetPositionOnWaitingList(7)), int(user->GetPositionOnWaitingList(8)),
                              user->IsInTournament(7), user->IsInTournament(8));
        };
        for (const int position : {2, 1})
            user->AddWaitingListTable(7, static_cast<unsigned char>(position));
        user->AddWaitingListTable(8, 3);
        user->AddTournament(7);
        user->AddTournament(8);
        user->RemoveWaitingListTable(8);
        user->RemoveTournament(8);
        QCOMPARE(describe(), std::tuple(1, 0, true, false));
        user->SetLoggedIn("Ann"_s);
        user->SetUserActivity(false);
        QSignalSpy activity(user, &CUserInfo::signal_ActivityChanged);
        static_cast<CUserInfoDataModel *>(user)->Reset();
        QCOMPARE(std::pair(user->IsLoggedIn(), user->GetLoginState()), std::pair(false, false));
        QCOMPARE(describe(), std::tuple(0, 0, false, false));
        QCOMPARE(activity.size(), 1);
    }

private:
    CInstallationTree m_tree;
};

QTEST_GUILESS_MAIN(tst_userinfo)
#include "tst_userinfo.moc"
