#include <support/Languages.h>
#include <support/Rows.h>

#include <QKeyEvent>
#include <QPropertyAnimation>

class tst_usermodels : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{"2|core|playertagging_notag|kein;2|core|playertagging_tag1|eins;1|core|currency|$;"
                                 "1|core|playertagging_tag4|four;2|playertagging|playertagging_tag4|vier"_s};

    static CSettings *Settings() { return CSettings::GetInstance(); }
    static void Configure(const QHash<QString, QVariant> &values) { CConfig::GetInstance()->SetConfigs(values); }
    static QString Name(const QColor &color) { return color.isValid() ? color.name() : "-"_s; }

    // A tag as views show it: text, colour, colour of the text.
    static QString Tag(unsigned int index)
    {
        CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
        return tags->GetText(index) + Name(tags->GetBackgroundColor(index)) + Name(tags->GetTextColor(index));
    }

    static std::tuple<bool, int, int> Chat()
    {
        const CChatModel::SSettings settings = CChatModel::GetInstance()->GetSettings();
        return {settings.bOption, settings.iObserverLevel, settings.iLevel};
    }
    static std::tuple<bool, int, int> StoreChat(const char *hex)
    {
        Settings()->SetChatOptions(QByteArray::fromHex(hex).toBase64());
        return Chat();
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(CSettingsDB::GetInstance()->Init() && CSettingsDB::GetInstance()->Exec("DELETE FROM tbl_settings"_s));
        CLanguages::Restart();
    }

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
        user->SetLoggedIn("Bob"_s); // no login state in between
        user->SetLoggedIn(QString());
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

    void AvatarDisplayModes()
    {
        const auto configure = [](const QString &text) {
            DestroySingletons();
            CConfig::GetInstance()->SetConfigs({{"avatardisplaymode"_s, text}});
            return CUserInfo::GetInstance()->GetAvatarDisplayModes();
        };
        using TModes = QList<CUserInfo::EAvatarDisplayMode>;
        constexpr auto cartoon = CUserInfo::ADM_CartoonAvatars;
        constexpr auto custom = CUserInfo::ADM_CustomAvatars;
        constexpr auto none = CUserInfo::ADM_NoAvatars;
        QCOMPARE(configure(QString()), (TModes{cartoon, custom, none}));
        QCOMPARE(configure("noavatar  CUSTOM,noavatar"_s), (TModes{none, custom, none}));
        QCOMPARE(configure("cartooncustom"_s), TModes{cartoon}); // no separator
        QCOMPARE(configure("cartoo"_s), TModes{none});
    }

    void Activity()
    {
        constexpr int IDLE_MS = 60;
        DestroySingletons();
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
        for (const auto type : {QEvent::KeyRelease, QEvent::MouseButtonRelease, QEvent::FocusIn})
            send(type);
        QCOMPARE(take(), QString());
        for (const auto type : {QEvent::KeyPress, QEvent::MouseMove, QEvent::MouseButtonPress}) {
            user->SetUserActivity(false);
            send(type);
        }
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
        static_cast<CUserInfoDataModel *>(user)->Reset();
        QCOMPARE(std::pair(user->IsLoggedIn(), user->GetLoginState()), std::pair(false, false));
        QCOMPARE(describe(), std::tuple(0, 0, false, false));
    }

    void Tags()
    {
        CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        QCOMPARE(Tag(4), "four--"_s); // as it began without a login
        tags->RestoreDefault();
        QSignalSpy changes(tags, &CPlayerTaggingModel::signal_PlayerTagsChanged);
        for (const unsigned int index : {0u, 4u, 11u, 0xffffffffu})
            tags->SetColor(index, Qt::darkRed);
        tags->SetText(5, "Fish"_s);
        Settings()->SetSelectedLanguage(2);
        QCOMPARE(Tag(4) + Tag(5), "vier#800000#ffffffFish#ff0000#ffffff"_s);
        QCOMPARE(changes.size(), 0);
        tags->Save();
        const QString stored = Settings()->GetPlayerTags().simplified();
        QVERIFY2(stored.contains("\"5\": { \"c\": \"#ff0000\", \"n\": \"Fish\" }"_s), qPrintable(stored));
        Configure({{"playertags"_s, "{\"5\": {\"c\": \"blue\"}}"_s}});
        tags->RestoreDefault();
        QCOMPARE(Tag(4) + Name(tags->GetColor(5)), "vier#7fff00#000000#0000ff"_s);
        const QString json = "{'11':{'c':'red'},'abc':{'n':'x'},'-1':7,'1':{'c':'ugly'},'4':{'n':'Rock'}}"_s;
        for (const QString &text : {json.chopped(1), "no JSON"_s, json})
            Settings()->SetPlayerTags(QString(text).replace(QLatin1Char('\''), QLatin1Char('"')));
        QCOMPARE(changes.size(), 5); // no change of its own comes back
        QCOMPARE(Tag(0) + Tag(4) + Tag(1), "kein--Rock#7fff00#000000eins-#ffffff"_s);
        const QImage icon = tags->GetIcon(4).pixmap(32).toImage(); // up to the right edge and no other
        QCOMPARE(icon.pixelColor(30, 16), tags->GetColor(4));
        QCOMPARE(qAlpha(icon.pixel(6, 16)) + qAlpha(icon.pixel(20, 2)) + qAlpha(icon.pixel(20, 30)), 0);
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QCOMPARE(Tag(4) + Name(tags->GetColor(4)), "--#7fff00"_s);
        QVERIFY(tags->GetIcon(4).isNull());
    }

    // From the second start on the values in force before a login are already those of the user, and no setting
    // changes.
    void TagsOfOneUserAfterTheOther()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        const QString stored = "{\"4\": {\"c\": \"#111111\", \"n\": \"Shark\"}}"_s;
        for (const QString &owner : {QString(), "ann"_s})
            Settings()->Save(owner, "playertagging"_s, "playertags"_s, stored, 7);
        Settings()->Save("zoe"_s, "playertagging"_s, "playertags"_s, "{\"1\": {\"n\": \"Zoe's\"}}"_s, 7);
        Settings()->slot_SaveSettings(true);
        Settings()->SetPlayerTags(stored, nullptr, false);
        CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
        QSignalSpy loads(tags, &CPlayerTaggingModel::signal_PlayerTagsChanged);
        user->SetLoggedIn("Ann"_s);
        QCOMPARE(loads.size(), 1);
        tags->SetText(5, "Fish"_s);
        tags->Save();
        QCOMPARE(Tag(4) + Tag(5), "Shark#111111#ffffffFish#ff0000#ffffff"_s);
        loads.clear();
        user->SetLoggedIn("Zoe"_s);
        QCOMPARE(loads.size(), 1);
        QCOMPARE(tags->GetText(1) + Tag(4), "Zoe'sfour#7fff00#000000"_s);
    }

    void TopUpOfTables()
    {
        using G = GlobalDefines;
        CAutoTopUpModel *model = CAutoTopUpModel::GetInstance();
        // With that limit in tenths and that mode: whether it is enabled at a table, the limit in chips, and the
        // target.
        const auto choose = [model](G::MoneyType money, G::LimitType limit, unsigned int lower, unsigned int mode) {
            CAutoTopUpModel::SAutoTopUp choices{true, lower, mode, 10, false, 1, 1, 1, true};
            if (limit != G::LT_FIXED_LIMIT)
                choices = {false, 1, 1, 1, true, lower, mode, 10, true};
            model->SetAutoTopUp(choices, true);
            return std::tuple(model->IsEnabled(money, limit), model->GetLowerLimitChips(money, limit, 1005),
                              model->GetTargetChips(money, limit, 3, 4, 5, 6));
        };
        QCOMPARE(choose(G::MONEYTYPE_DOLLAR, G::LT_FIXED_LIMIT, 3, 0), std::tuple(true, 301u, 5u));
        QCOMPARE(choose(G::MONEYTYPE_EURO, G::LT_NO_LIMIT, 10, 1), std::tuple(true, 1005u, 3u));
        QCOMPARE(choose(G::MONEYTYPE_UNKNOWN, G::LT_POT_LIMIT, 11, 2), std::tuple(true, 0u, 40u));
        QCOMPARE(choose(G::MONEYTYPE_DOLLAR, G::LT_FIXED_LIMIT, 1, 3), std::tuple(true, 100u, 6u));
        QCOMPARE(choose(G::MONEYTYPE_DOLLAR, G::LT_NO_LIMIT, 0, 4), std::tuple(true, 0u, 0u));
        QCOMPARE(choose(G::MONEYTYPE_TOURN, G::LT_POT_LIMIT, 3, 2), std::tuple(false, 0u, 0u));
        QCOMPARE(Settings()->GetAutoTopUpSettings(), QByteArray()); // without a login, in memory alone
    }

    void StoredTopUp()
    {
        CAutoTopUpModel *model = CAutoTopUpModel::GetInstance();
        const auto describe = [model] {
            return std::tuple(model->IsSaved(), model->IsNotificationEnabled(), model->GetAutoTopUp().bFixedEnabled,
                              model->GetAutoTopUp().bOtherEnabled);
        };
        const auto whole = QByteArray::fromBase64("AQAAAAMAAAACAAAACgAAAAAAAAALAAAABAAAAP7///8AAAAA");
        Settings()->Save("Ann"_s, QString(), "autotopupsettings"_s, whole.toBase64(), 0);
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        QCOMPARE(describe(), std::tuple(true, false, true, false));
        const CAutoTopUpModel::SAutoTopUp choices = model->GetAutoTopUp();
        model->SetAutoTopUp(choices, false); // until the next load
        QCOMPARE(describe(), std::tuple(false, false, true, false));
        QCOMPARE(Settings()->GetAutoTopUpSettings(), QByteArray());
        model->SetAutoTopUp(choices, true);
        QCOMPARE(Settings()->GetAutoTopUpSettings(), whole.toBase64());
        for (const QByteArray &wrong : {whole.left(35), whole + 'x', QByteArray()}) {
            Settings()->SetAutoTopUpSettings(whole.toBase64());
            QVERIFY(model->IsSaved());
            Settings()->SetAutoTopUpSettings(wrong.toBase64());
            QCOMPARE(describe(), std::tuple(false, true, false, false));
        }
    }

    void Jackpot()
    {
        CCasinoInfo *casino = CCasinoInfo::GetInstance();
        const auto *run = casino->GetBadBeatJackpotSpinner()->findChild<QPropertyAnimation *>();
        QString seen;
        const auto add = [&](const QString &what) { return [&seen, run, what] { seen += what.arg(run->state()); }; };
        connect(casino, &CCasinoInfo::signal_BadBeatJackpotCurrencyChanged, this, add("c%1"_s));
        connect(casino, &CCasinoInfo::signal_BadBeatJackpotChanged, this, add("v%1"_s));
        casino->SetBadBeatJackpot('E', 0);
        casino->SetBadBeatJackpot('R', 500);
        QCOMPARE(seen + casino->BadBeatJackpotToString(), "c2v2$5"_s); // a run is under way each time
    }

    void TableRatings()
    {
        CCasinoInfo *casino = CCasinoInfo::GetInstance();
        const auto rate = [casino](const QString &configured) {
            Configure({{"tablerating"_s, configured}, {"tablerating_warning"_s, "0,(7,7)"_s}});
            casino->InitCasinoInfo();
            QString ratings;
            for (unsigned char row = 0; row < 6; ++row)
                ratings += "%1%2 "_s.arg(casino->GetRatingSetting(row, 0)).arg(casino->GetRatingSetting(row, 1));
            return ratings;
        };
        const QString defaults = "05 04 13 22 31 40 "_s;
        QCOMPARE(rate("2,(x,4),3,(1,1)"_s), "05 04 04 11 31 40 "_s);
        for (const QString &wrong : {"6,(1,1)"_s, "-1,(1,1)"_s, "7)3,4("_s, "4,(256,1)"_s})
            QCOMPARE(wrong + rate(wrong), wrong + defaults);
        QCOMPARE(casino->GetRatingWarningSetting(0, 1) + casino->GetRatingWarningSetting(3, 0), 7 + 3);
    }

    // The user's folder moves to the casino's new name.
    void PersonalFolder()
    {
        const QDir documents(m_languages.MakeDir("Home/Documents"_s));
        for (const char *name : {"HOME", "XDG_CONFIG_HOME"})
            qputenv(name, QFile::encodeName(m_languages.GetPath("Home"_s)));
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        for (const QString &product : {"Old"_s, "New"_s}) {
            Configure({{"productname"_s, product}});
            CCasinoInfo::GetInstance()->InitCasinoInfo();
            QCOMPARE(CCasinoInfo::GetInstance()->GetPersonalDirPath(), documents.filePath(product));
            m_languages.WriteFile("Home/Documents/%1/%1"_s.arg(product));
        }
        QCOMPARE(documents.entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList{"New"_s});
        QVERIFY(documents.exists("New/Old"_s));
    }

    void CasinoProperties()
    {
        Configure({{"displaybadbeatjackpot"_s, true},
                   {"link_bbj"_s, "bbj"_s},
                   {"link_upgradeaccount"_s, "up"_s},
                   {"moneytype"_s, 2}});
        CCasinoInfo casino;
        const QSignalSpy players(&casino, &CCasinoInfo::signal_CurrentPlayersChanged);
        for (int time = 0; time < 2; ++time)
            casino.SetPokerPlayerCount(70000);
        QCOMPARE(players.size(), 1);
        casino.SetPokerTableCount(65535);
        casino.SetPokerTournamentCount(12);
        casino.SetBadBeatJackpot('R', 500);
        QStringList values;
        for (const char *name :
             {"currentPlayers", "currentTables", "currentTournaments", "usesJackpot", "jackpotValue", "jackpotLink",
              "hasJackpotLink", "playmoneyOnly", "upgradeAvailable", "showPlayerAndTableCounts", "jackpotCurrency"})
            values += casino.property(name).toString();
        QCOMPARE(values.join(QLatin1Char('|')), "70000|65535|12|true|500|bbj|true|false|true|true|$"_s);
        QCOMPARE(casino.GetBadBeatJackpotMoneyType(), GlobalDefines::MONEYTYPE_DOLLAR);
    }

    void ChatSettings()
    {
        CChatModel *model = CChatModel::GetInstance();
        const QSignalSpy changes(model, &CChatModel::signal_SettingsChanged);
        model->SetSettings({true, 1, -2});
        QCOMPARE(Settings()->GetChatOptions(), QByteArray("AQAAAAEAAAD+////"));
        for (const char *wrong : {"01", "01000000010000000200000000", ""}) {
            QCOMPARE(StoreChat("01abcdef0100000002000000"), std::tuple(true, 1, 2));
            QCOMPARE(StoreChat(wrong), std::tuple(false, 3, 3));
        }
        QCOMPARE(changes.size(), 7);
    }

    // The operator has taken the choice from the user.
    void ObserverChat()
    {
        const auto choose = [](bool allowed, int level) {
            Configure({{"optionobserverchatselectable"_s, "false"_s},
                       {"optionobserverchat"_s, QVariant(allowed).toString()}});
            CChatModel::GetInstance()->SetSettings({true, level, 5});
            return Chat();
        };
        QCOMPARE(choose(true, 1), std::tuple(true, 3, 5));
        QCOMPARE(choose(false, 3), std::tuple(true, 2, 5));
        QCOMPARE(choose(false, 1), std::tuple(true, 1, 5));
    }

    void Smileys()
    {
        m_languages.WriteFile("Client/here.gif"_s);
        m_languages.WriteFile("Resources/chat/there.gif"_s);
        CChatModel *model = CChatModel::GetInstance();
        const QSignalSpy changes(model, &CChatModel::signal_SmileysChanged);
        const auto load = [&](const QByteArray &xml) {
            model->LoadSmileyConfig(m_languages.WriteFile("Resources/chat/smileys.xml"_s, xml));
            return model->GetSmileyMappings();
        };
        const QByteArray good =
            "<smileyconfig version='1.0'><smiley src='here.gif' animate='ON'><placeholder text=':D'/><o text='x'/>"
            "<placeholder text=' :P '/></smiley><smiley src='there.gif'><placeholder text='x'/></smiley>"
            "<smiley src='../chat/there.gif' animate='oN1'><placeholder text=':D'/></smiley><o/></smileyconfig>";
        for (const char *part : {"1.0", "smileyconfig", "/smileyconfig"}) {
            const auto smileys = load(good);
            QCOMPARE(smileys[":D"_s].strFile, m_languages.GetPath("Resources/chat/../chat/there.gif"_s));
            QCOMPARE(smileys.size(), 2);
            QCOMPARE(std::pair(smileys[":D"_s].bAnimate, smileys[" :P "_s].bAnimate), std::pair(false, true));
            QVERIFY(load(QByteArray(good).replace(part, "x")).isEmpty());
        }
        QCOMPARE(changes.size(), 3);
        QVERIFY(load("<smileyconfig version='1.0'><smiley src='here.gif'><placeholder/></smiley></smileyconfig>")
                    .isEmpty());
    }

    void HarmfulSmileys_data()
    {
        QByteArray attributes;
        for (int i = 0; i < 50000; ++i)
            attributes += " a" + QByteArray::number(i) + "=''";
        const QByteArray type = "<!DOCTYPE a [<!ENTITY b '" + QByteArray("<b/>").repeated(1000) + "'>]>";
        AddRows<QByteArray, QByteArray>(
            {"type", "contents"},
            {{"deep", "", QByteArray("<a>").repeated(30000) + QByteArray("</a>").repeated(30000)},
             {"attributes", "", "<a" + attributes + "/>"},
             {"entities", type, QByteArray("&b;").repeated(10000)},
             {"long", "", QByteArray("<a/>").repeated(1 << 18)}});
    }

    // Files that would end the process, or take minutes or gigabytes.
    void HarmfulSmileys()
    {
        QFETCH(const QByteArray, type);
        QFETCH(const QByteArray, contents);
        const QByteArray begin = "<smileyconfig version='1.0'><smiley src='here.gif'><placeholder text='x'/>";
        m_languages.WriteFile("Client/here.gif"_s);
        CChatModel::GetInstance()->LoadSmileyConfig(
            m_languages.WriteFile("smileys.xml"_s, type + begin + contents + "</smiley></smileyconfig>"));
        QVERIFY(CChatModel::GetInstance()->GetSmileyMappings().isEmpty());
    }
};

QTEST_MAIN(tst_usermodels)
#include "tst_usermodels.moc"
