#include <plugin/GlobalDefines.h>

#include <support/Literal.h>

#include <QQmlComponent>
#include <QQmlEngine>
#include <QtTest>

// The key tables of the published enumerations, their streams and QML's view of them.
class tst_globaldefines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void Games()
    {
        const auto describe = [](int type) {
            const auto game = static_cast<GlobalDefines::GameType>(type);
            char code[] = "????|"; // the fifth isn't written to
            Globals::GetGameType(game, code);
            const QString back = Globals::GetGameType(QString::fromLatin1(code)) == game ? "|"_s : "|other code|"_s;
            return QLatin1String(code) + Globals::GetGameNameKey(game) + back +
                   Globals::GetUntranslatedGameName(game, GlobalDefines::LT_FIXED_LIMIT);
        };
        QStringList games;
        for (int type = 1; type <= 10; ++type)
            games += describe(type);
        QCOMPARE(games,
                 (QStringList{"HOLD|GAME_HOLDEM|Hold'em"_s, "OMNM|GAME_OMAHA|Omaha"_s,
                              "OMHL|GAME_OMAHA_HILO|Omaha Hi/Lo"_s, "7CNM|GAME_7CARD|7 Card Stud"_s,
                              "7CHL|GAME_7CARD_HILO|7 Card Stud Hi/Lo"_s, "HNBB|GAME_NBB|Hold'em No Bad Beat"_s,
                              "BADU|GAME_BADUGI|Badugi"_s, "7CHO|GAME_7CARD_CHOICE|7 Card Choice"_s,
                              "2TO7|GAME_2TO7|2to7"_s, "5CAR|GAME_5CARD|5 Card"_s}));
        for (const int none : {0, 11})
            QCOMPARE(describe(none), "????||other code|"_s);
        QCOMPARE(Globals::GetGameNameKey("omhl-6max"_s), "GAME_OMAHA_HILO"_s);
        for (const QString &unknown : {""_s, "OMN"_s, " OMNM"_s})
            QCOMPARE(Globals::GetGameNameKey(unknown), "GAME_HOLDEM"_s);
    }

    void Letters()
    {
        QByteArray known;
        for (int letter = 0; letter < 256; ++letter) {
            const char numbers[] = {char(Globals::GetMoneyType(char(letter))),
                                    char(Globals::GetLimitType(char(letter))),
                                    char(Globals::GetTableType(char(letter))), ' ', 0};
            known += numbers;
        }
        QCOMPARE(known.replace("-NN ", ""), QByteArray("ENN -FN PPP RNR SNS TNT "));
    }

    void Limits()
    {
        QStringList texts;
        for (const char code : {'N', 'P', 'F', 'n'}) {
            const QLatin1Char letter(code);
            const auto limit = static_cast<GlobalDefines::LimitType>(code);
            texts << Globals::GetLimitKey(letter, false) << Globals::GetLimitKey(limit, true)
                  << Globals::GetUntranslatedGameName(GlobalDefines::GT_OMAHA, limit);
        }
        QCOMPARE(texts.join(QLatin1Char(',')),
                 "NO_LIMIT,NL,NL Omaha,POT_LIMIT,PL,PL Omaha,FIXED_LIMIT,LIMIT_TYPE_FL,Omaha,,,Omaha"_s);
        QCOMPARE(Globals::GetLimitKey(QChar(0x014E), false), QString()); // 'N' in the low byte
    }

    void MonthsAndStatuses()
    {
        QStringList keys;
        for (int month = 0; month <= 13; ++month)
            keys << Globals::GetMonthKey(month);
        for (int status = -1; status <= 23; ++status)
            keys << Globals::GetTournamentStatusLongKey(status);
        QCOMPARE(keys.join(QLatin1Char(' ')).replace("UNKNOWN"_s, "?"_s),
                 " JANUARY FEBRUARY MARCH APRIL MAY JUNE JULY AUGUST SEPTEMBER OCTOBER NOVEMBER DECEMBER  ? ? "
                 "ANNOUNCED REGISTERING SEATING RUNNING ONBREAK COMPLETED CANCELLED ONHOLD ANNOUNCED CANCELLED "
                 "SEATING COMPLETED RUNNING RUNNING RUNNING ? ? ? ? ? ? LATE_REG ?"_s);
    }

    void Streams()
    {
        using G = GlobalDefines;
        const auto written = std::tuple(G::LT_FIXED_LIMIT, G::TT_RESTRICTED, G::GameType(-70000)); // no range check
        auto read = std::tuple(G::LT_NO_LIMIT, G::TT_NORMAL, G::GT_OMAHA);
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        QDataStream in(&bytes, QIODevice::ReadOnly);
        std::apply([&out](auto... value) { (out << ... << value); }, written);
        std::apply([&in](auto &...value) { (in >> ... >> value); }, read);
        QCOMPARE(read, written);
        in >> std::get<0>(read); // of which nothing is there
        QCOMPARE(int(std::get<0>(read)), 0);
    }

    void Qml()
    {
        GlobalDefines::RegisterQML();
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import GlobalDefines 1.0; GlobalDefines { property int n: GlobalDefines.SPO_Vertical }",
                          QUrl());
        const QScopedPointer<QObject> object(component.create());
        QVERIFY2(qobject_cast<GlobalDefines *>(object.data()), qPrintable(component.errorString()));
        QCOMPARE(object->property("n").toInt(), 2);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        QVERIFY(QMetaType::isRegistered(QMetaType::type("GlobalDefines::ScreenPositionOutside")));
#else
        QVERIFY(QMetaType::fromName("GlobalDefines::ScreenPositionOutside").isRegistered());
#endif
    }
};

QTEST_GUILESS_MAIN(tst_globaldefines)
#include "tst_globaldefines.moc"
