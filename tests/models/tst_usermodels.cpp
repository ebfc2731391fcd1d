#include <support/Languages.h>

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

private Q_SLOTS:
    void init()
    {
        QVERIFY(CSettingsDB::GetInstance()->Init() && CSettingsDB::GetInstance()->Exec("DELETE FROM tbl_settings"_s));
        CLanguages::Restart();
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
        QVERIFY(changes.isEmpty() && !Settings()->GetPlayerTags().contains("Fish"_s));
        tags->Save();
        const QString stored = Settings()->GetPlayerTags().simplified();
        QVERIFY(stored.contains("\"5\": { \"c\": \"#ff0000\", \"n\": \"Fish\" }"_s) && stored.count("\"c\""_s) == 10);
        Configure({{"playertags"_s, "{\"5\": {\"c\": \"blue\"}}"_s}});
        tags->RestoreDefault();
        QCOMPARE(Tag(4) + Name(tags->GetColor(5)), "vier#7fff00#000000#0000ff"_s);
        const QString json = "{'11':{'c':'red'},'abc':{'n':'x'},'-1':7,'1':{'c':'ugly'},'4':{'n':'Rock'}}"_s;
        for (const QString &text : {json.chopped(1), "no JSON"_s, json})
            Settings()->SetPlayerTags(QString(text).replace(QLatin1Char('\''), QLatin1Char('"')));
        QCOMPARE(changes.size(), 5); // no change of its own comes back
        QCOMPARE(Tag(0) + Tag(4) + Tag(1), "kein--Rock#7fff00#000000eins-#ffffff"_s);
        const QImage icon = tags->GetIcon(4).pixmap(32).toImage(); // up to the right edge and no other
        QCOMPARE(icon, tags->GetIcon(QColor(0x7fff00)).pixmap(32).toImage());
        QVERIFY(icon.pixelColor(30, 16) == tags->GetColor(4) && icon.pixelColor(31, 16) != tags->GetColor(4));
        QVERIFY(qAlpha(icon.pixel(6, 16)) + qAlpha(icon.pixel(20, 2)) + qAlpha(icon.pixel(20, 30)) == 0);
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        QVERIFY(Tag(4) == "--"_s && Name(tags->GetColor(4)) == "#7fff00"_s && tags->GetIcon(4).isNull());
    }

    // From the second start on the values in force before a login are already those of the user, and no setting
    // changes.
    void TagsOfOneUserAfterTheOther_data()
    {
        QTest::addColumn<bool>("between");
        QTest::newRow("after a logout") << true;
        QTest::newRow("from one to the other") << false;
    }

    void TagsOfOneUserAfterTheOther()
    {
        CUserInfo *user = CUserInfo::GetInstance();
        Configure({{"playertags"_s, "{\"2\": {\"n\": \"House\"}, \"3\": {\"c\": \"#0000ff\"}}"_s}});
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
        QVERIFY(tags->GetText(2) != "House"_s); // the operator's counts where nothing is stored
        QCOMPARE(Tag(4) + Tag(5), "Shark#111111#ffffffFish#ff0000#ffffff"_s);
        QCOMPARE(Settings()->GetPlayerTags().count("#000000"_s), 0);
        QFETCH(bool, between);
        if (between)
            user->SetLoggedIn(QString());
        loads.clear();
        user->SetLoggedIn("Zoe"_s);
        QCOMPARE(loads.size(), 1);
        QCOMPARE(tags->GetText(1) + tags->GetText(4), "Zoe'sfour"_s);
        QVERIFY(tags->GetText(5) != "Fish"_s);
        QCOMPARE(Name(tags->GetColor(3)) + Name(tags->GetColor(4)), "#007fff#7fff00"_s);
    }

    // A model from before the login, on which one colour was set before any was stored.
    void FirstColor()
    {
        CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        tags->SetColor(1, Qt::black);
        tags->Save();
        QCOMPARE(Settings()->GetPlayerTags().count("#000000"_s), 1);
    }

    void TopUpOfOneUserAfterTheOther()
    {
        const QByteArray stored = "AQAAAAMAAAACAAAACgAAAAAAAAALAAAABAAAAP7///8AAAAA";
        Settings()->SetAutoTopUpSettings(stored, nullptr, false);
        Settings()->Save("ann"_s, "autotopup"_s, "autotopupsettings"_s, stored, 7);
        Settings()->Save("zoe"_s, "autotopup"_s, "autotopupsettings"_s, QString(), 7);
        CAutoTopUpModel *model = CAutoTopUpModel::GetInstance();
        const QSignalSpy loads(model, &CAutoTopUpModel::signal_AutoTopUpChanged);
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        QVERIFY(model->IsSaved() && !model->IsNotificationEnabled());
        QCOMPARE(loads.size(), 1);
        CUserInfo::GetInstance()->SetLoggedIn(QString());
        CUserInfo::GetInstance()->SetLoggedIn("Zoe"_s);
        QVERIFY(!model->IsSaved() && model->IsNotificationEnabled());
        QCOMPARE(loads.size(), 2);
    }

    void TopUp()
    {
        CAutoTopUpModel *model = CAutoTopUpModel::GetInstance();
        for (const QStringList &in : // money, limit, lower limit, target mode; the limit and the target of the table
             Rows("R|F|3|0|301|5;E|N|10|1|1005|3;-|P|11|2|0|40;R|F|1|3|100|6;R|N|0|4|0|0;P|F|3|0|0|0;S|N|3|1|0|0;"
                  "T|P|3|2|0|0"_s)) {
            const auto money = Globals::GetMoneyType(in[0][0].toLatin1());
            const auto limit = Globals::GetLimitType(in[1][0].toLatin1());
            CAutoTopUpModel::SAutoTopUp choices{true, in[2].toUInt(), in[3].toUInt(), 10, false, 1, 1, 1, true};
            if (limit != GlobalDefines::LT_FIXED_LIMIT)
                choices = {false, 1, 1, 1, true, in[2].toUInt(), in[3].toUInt(), 10, true};
            model->SetAutoTopUp(choices, true);
            QCOMPARE(model->IsEnabled(money, limit), !"PST"_s.contains(in[0]));
            QCOMPARE(model->GetLowerLimitChips(money, limit, 1005), in[4].toUInt());
            QCOMPARE(model->GetTargetChips(money, limit, 3, 4, 5, 6), in[5].toUInt());
        }
        QVERIFY(Settings()->GetAutoTopUpSettings().isEmpty()); // without a login, in memory alone
        const auto whole = QByteArray::fromBase64("AQAAAAMAAAACAAAACgAAAAAAAAALAAAABAAAAP7///8AAAAA");
        Settings()->Save("Ann"_s, QString(), "autotopupsettings"_s, whole.toBase64(), 0);
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s);
        const CAutoTopUpModel::SAutoTopUp choices = model->GetAutoTopUp();
        QVERIFY(model->IsSaved() && choices.bFixedEnabled && !choices.bOtherEnabled);
        model->SetAutoTopUp(choices, false); // until the next load
        QVERIFY(!model->IsSaved() && !model->IsNotificationEnabled() && Settings()->GetAutoTopUpSettings().isEmpty());
        model->SetAutoTopUp(choices, true);
        QCOMPARE(Settings()->GetAutoTopUpSettings(), whole.toBase64());
        for (const QByteArray &wrong : {whole.left(35), whole + 'x', QByteArray()}) {
            Settings()->SetAutoTopUpSettings(whole.toBase64());
            QVERIFY(model->IsSaved() && !model->IsNotificationEnabled());
            Settings()->SetAutoTopUpSettings(wrong.toBase64());
            QVERIFY(!model->IsSaved() && model->IsNotificationEnabled() && !model->GetAutoTopUp().bFixedEnabled);
        }
    }

    void Casino()
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
        const QDir documents(m_languages.MakeDir("Home/Documents"_s));
        for (const char *name : {"HOME", "XDG_CONFIG_HOME"})
            qputenv(name, QFile::encodeName(m_languages.GetPath("Home"_s)));
        for (const QStringList &in : // what is configured, where that changes the table, and to what
             Rows("|0|;2,(3,4),3,(1,1)|6|34 11;2,(x,4)|6|04;3,(,)|9|00;6,(1,1)|0|;-1,(1,1)|0|;7)3,4(|0|;4,(256,1)|0|;"
                  "4,(-1,1)|0|;)(,((|0|;99999999999,(1,2),1,(7,7)|3|77"_s)) {
            Configure({{"tablerating"_s, in[0]}, {"tablerating_warning"_s, "0,(7,7)"_s}});
            casino->InitCasinoInfo();
            QString table;
            for (unsigned char row = 0; row < 6; ++row)
                table += "%1%2 "_s.arg(casino->GetRatingSetting(row, 0)).arg(casino->GetRatingSetting(row, 1));
            QCOMPARE(table, "05 04 13 22 31 40 "_s.replace(in[1].toInt(), in[2].size(), in[2]));
        }
        QVERIFY(casino->GetRatingWarningSetting(0, 1) == 7 && casino->GetRatingWarningSetting(3, 0) == 3);
        CUserInfo::GetInstance()->SetLoggedIn("Ann"_s); // and the folder moves to the casino's new name
        m_languages.WriteFile("Home/Documents/letter"_s);
        for (const QString &product : {"Old"_s, "New"_s}) {
            Configure({{"productname"_s, product}});
            casino->InitCasinoInfo();
            QCOMPARE(casino->GetPersonalDirPath(), documents.filePath(product));
            m_languages.WriteFile("Home/Documents/%1/%1"_s.arg(product));
        }
        QVERIFY(!documents.exists("Old"_s) && documents.exists("New/Old"_s) && documents.exists("letter"_s));
    }

    // What each property tells, and how often it signals, before and after the host has set twice what it sets.
    void CasinoProperties()
    {
        const auto describe = [](const CCasinoInfo &casino) {
            QStringList values;
            for (const char *name :
                 {"currentPlayers", "currentTables", "currentTournaments", "usesJackpot", "jackpotValue",
                  "jackpotLink", "hasJackpotLink", "playmoneyOnly", "upgradeAvailable", "showPlayerAndTableCounts"})
                values += casino.property(name).toString();
            return values.join(QLatin1Char('|'));
        };
        Configure({});
        QCOMPARE(describe(CCasinoInfo()), "0|0|0|false|0||false|true|false|true"_s);
        Configure({{"displaybadbeatjackpot"_s, true},
                   {"link_bbj"_s, "bbj"_s},
                   {"moneytype"_s, 2},
                   {"link_upgradeaccount"_s, "up"_s},
                   {"showplayerandtablecounts"_s, false}});
        CCasinoInfo casino;
        const QSignalSpy players(&casino, &CCasinoInfo::signal_CurrentPlayersChanged);
        const QSignalSpy tables(&casino, &CCasinoInfo::signal_CurrentTablesChanged);
        const QSignalSpy tournaments(&casino, &CCasinoInfo::signal_CurrentTournamentsChanged);
        for (int round = 0; round < 2; ++round) {
            casino.SetPokerPlayerCount(70000);
            casino.SetPokerTableCount(65535);
            casino.SetPokerTournamentCount(12);
            casino.SetBadBeatJackpot('R', 500);
        }
        QCOMPARE(describe(casino), "70000|65535|12|true|500|bbj|true|false|true|false"_s);
        QVERIFY(players.size() == 1 && tables.size() == 1 && tournaments.size() == 1);
        QCOMPARE(casino.property("jackpotCurrency").toString(), "$"_s);
        QCOMPARE(casino.GetBadBeatJackpotMoneyType(), GlobalDefines::MONEYTYPE_DOLLAR);
    }

    void ChatSettings()
    {
        CChatModel *model = CChatModel::GetInstance();
        QSignalSpy changes(model, &CChatModel::signal_SettingsChanged);
        const auto store = [](const char *hex) { Settings()->SetChatOptions(QByteArray::fromHex(hex).toBase64()); };
        using S = CChatModel::SSettings;
        model->SetSettings({true, 1, -2});
        QCOMPARE(Settings()->GetChatOptions(), QByteArray("AQAAAAEAAAD+////"));
        for (const char *wrong : {"01", "01000000010000000200000000", ""}) {
            store("01abcdef0100000002000000");
            QVERIFY(model->GetSettings() == (S{true, 1, 2}));
            store(wrong);
            QVERIFY(model->GetSettings() == (S{false, 3, 3}));
        }
        for (const QStringList &in : Rows("true|1|3;true|7|3;false|3|2;false|1|1;false|0|2"_s)) {
            Configure({{"optionobserverchatselectable"_s, "false"_s}, {"optionobserverchat"_s, in[0]}});
            model->SetSettings({true, in[1].toInt(), 5});
            QVERIFY(model->GetSettings() == (S{true, in[2].toInt(), 5}));
        }
        store("010000000900000005000000");
        const QByteArray stored = Settings()->GetChatOptions();
        model->SetSettings({true, 3, 5}); // no other than those here
        QVERIFY(changes.size() == 11 && Settings()->GetChatOptions() == stored);
    }

    void Smileys()
    {
        m_languages.WriteFile("Client/here.gif"_s);
        m_languages.WriteFile("Resources/chat/there.gif"_s);
        CChatModel *model = CChatModel::GetInstance();
        QSignalSpy changes(model, &CChatModel::signal_SmileysChanged);
        const auto load = [&](const QByteArray &xml) {
            model->LoadSmileyConfig(m_languages.WriteFile("Resources/chat/smileys.xml"_s, xml));
            return model->GetSmileyMappings();
        };
        const QByteArray good =
            "<smileyconfig version='1.0'><smiley src='here.gif' animate='ON'><placeholder text=':D'/><o text='x'/>"
            "<placeholder text=' :P '/></smiley><smiley src='there.gif'><placeholder text='x'/></smiley>"
            "<smiley src='../chat/there.gif' animate='oN1'><placeholder text=':D'/></smiley><o/></smileyconfig>";
        for (const char *part : {"1.0", "version", "smileyconfig", "/smileyconfig"}) {
            const auto smileys = load(good);
            QCOMPARE(smileys[":D"_s].strFile, m_languages.GetPath("Resources/chat/../chat/there.gif"_s));
            QVERIFY(smileys.size() == 2 && !smileys[":D"_s].bAnimate && smileys[" :P "_s].bAnimate);
            QVERIFY(load(QByteArray(good).replace(part, "x")).isEmpty());
        }
        QCOMPARE(changes.size(), 4);
        QVERIFY(load("<smileyconfig version='1.0'><smiley src='./'><placeholder text='x'/></smiley>"
                     "<smiley src='here.gif'><placeholder/><placeholder text=''/></smiley></smileyconfig>")
                    .isEmpty());
    }

    void HarmfulSmileys_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("deep") << QByteArray()
                              << QByteArray("<a>").repeated(30000) + QByteArray("</a>").repeated(30000);
        QByteArray attributes;
        for (int i = 0; i < 50000; ++i)
            attributes += " a" + QByteArray::number(i) + "=''";
        QTest::newRow("attributes") << QByteArray() << "<a" + attributes + "/>";
        QTest::newRow("entities") << "<!DOCTYPE a [<!ENTITY b '" + QByteArray("<b/>").repeated(1000) + "'>]>"
                                  << QByteArray("&b;").repeated(10000);
        QTest::newRow("long") << QByteArray() << QByteArray("<a/>").repeated(1 << 18);
    }
    // Files that would end the process, or take minutes or gigabytes.
    void HarmfulSmileys()
    {
        QFETCH(const QByteArray, type);
        QFETCH(const QByteArray, contents);
        m_languages.WriteFile("Client/here.gif"_s);
        const QByteArray begin = type + "<smileyconfig version='1.0'><smiley src='here.gif'><placeholder text='x'/>";
        const QString path = m_languages.WriteFile("smileys.xml"_s, begin + contents + "</smiley></smileyconfig>");
        CChatModel::GetInstance()->LoadSmileyConfig(path);
        QVERIFY(CChatModel::GetInstance()->GetSmileyMappings().isEmpty());
        m_languages.WriteFile("smileys.xml"_s, begin.mid(type.size()) + QByteArray("<a/>\n").repeated(20000) +
                                                   "</smiley></smileyconfig>");
        CChatModel::GetInstance()->LoadSmileyConfig(path);
        QCOMPARE(CChatModel::GetInstance()->GetSmileyMappings().size(), 1);
    }
};

QTEST_MAIN(tst_usermodels)
#include "tst_usermodels.moc"
