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
    // Of what no function of the library takes or answers, in the order of the header.
    void Numbers()
    {
        QByteArray numbers;
        for (const auto &type : {QMetaEnum::fromType<GlobalDefines::TournamentStatus>(),
                                 QMetaEnum::fromType<GlobalDefines::TournamentType>()}) {
            for (int i = 0; i < type.keyCount(); ++i)
                numbers += QByteArray::number(type.value(i)) + ' ';
        }
        QCOMPARE(numbers, QByteArray("1 2 3 11 4 5 13 6 12 7 10 8 9 14 15 22 1 2 3 4 5 6 7 8 "));
    }

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
        QStringList keys;
        for (const QString &code : {"omhl-6max"_s, ""_s, "OMN"_s, "ABCD"_s, " OMNM"_s})
            keys += Globals::GetGameNameKey(code).mid(5);
        QCOMPARE(keys.join(QLatin1Char(' ')), "OMAHA_HILO HOLDEM HOLDEM HOLDEM HOLDEM"_s);
    }

    void Letters()
    {
        QByteArray known;
        for (int i = 0; i < 256; ++i) {
            const char letter = static_cast<char>(i);
            const QByteArray numbers = QByteArray(1, Globals::GetMoneyType(letter)) +
                                       char(Globals::GetLimitType(letter)) + char(Globals::GetTableType(letter));
            if (numbers != "-NN")
                known += numbers + ' ';
        }
        QCOMPARE(known, QByteArray("ENN -FN PPP RNR SNS TNT "));
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
        const auto compare = [](auto written) {
            QByteArray bytes;
            QDataStream(&bytes, QIODevice::WriteOnly) << written << decltype(written)(-2);
            QDataStream in(bytes.left(7));
            decltype(written) read{};
            in >> read;
            QCOMPARE(read, written);
            in >> read; // three of its four bytes are there
            QCOMPARE(int(read), 0);
            QCOMPARE(in.status(), QDataStream::ReadPastEnd);
        };
        compare(GlobalDefines::MONEYTYPE_EURO);
        compare(GlobalDefines::LT_FIXED_LIMIT);
        compare(GlobalDefines::TT_RESTRICTED);
        compare(static_cast<GlobalDefines::GameType>(-70000)); // no range check
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
        for (const char *name : {"MoneyType", "GameType", "TournamentStatus", "ScreenPositionOutside"})
            QVERIFY2(QMetaType::type(QByteArray("GlobalDefines::") + name) != QMetaType::UnknownType, name);
    }
};

QTEST_GUILESS_MAIN(tst_globaldefines)
#include "tst_globaldefines.moc"
