#include <plugin/GlobalDefines.h>

#include <support/Literal.h>

#include <QQmlComponent>
#include <QQmlEngine>
#include <QtTest>

// The published enumerations and their numbers, the key tables, and QML's view of them.
class tst_GlobalDefines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // In the order of the header; those of limits and games show in their tables below.
    void numbers()
    {
        const QMetaObject &meta = GlobalDefines::staticMetaObject;
        QByteArray numbers;
        for (const char *name : {"MoneyType", "TableType", "TournamentStatus", "TournamentType"}) {
            const QMetaEnum enumeration = meta.enumerator(meta.indexOfEnumerator(name));
            for (int i = 0; i < enumeration.keyCount(); ++i)
                numbers += QByteArray::number(enumeration.value(i)) + ' ';
        }
        QCOMPARE(numbers, QByteArray("82 80 69 84 83 45 78 80 82 84 83 "
                                     "1 2 3 11 4 5 13 6 12 7 10 8 9 14 15 22 1 2 3 4 5 6 7 8 "));
    }

    void games()
    {
        int number = 0; // the outermost two are no games
        for (const char *expected :
             {"????||", "HOLD|GAME_HOLDEM|Hold'em", "OMNM|GAME_OMAHA|Omaha", "OMHL|GAME_OMAHA_HILO|Omaha Hi/Lo",
              "7CNM|GAME_7CARD|7 Card Stud", "7CHL|GAME_7CARD_HILO|7 Card Stud Hi/Lo",
              "HNBB|GAME_NBB|Hold'em No Bad Beat", "BADU|GAME_BADUGI|Badugi", "7CHO|GAME_7CARD_CHOICE|7 Card Choice",
              "2TO7|GAME_2TO7|2to7", "5CAR|GAME_5CARD|5 Card", "????||"}) {
            const auto type = static_cast<GlobalDefines::GameType>(number++);
            char code[] = "????|"; // the fifth isn't written to
            Globals::GetGameType(type, code);
            const QString name = Globals::GetUntranslatedGameName(type, GlobalDefines::LT_FIXED_LIMIT);
            QCOMPARE(QLatin1String(code) + Globals::GetGameNameKey(type) + QLatin1Char('|') + name,
                     QString::fromLatin1(expected));
            if (!name.isEmpty())
                QCOMPARE(Globals::GetGameType(QString::fromLatin1(code)), type);
        }
        QCOMPARE(Globals::GetGameNameKey("omhl-6max"_s), "GAME_OMAHA_HILO"_s);
        for (const QString &unknown : {""_s, "OMN"_s, "ABCD"_s, " OMNM"_s})
            QCOMPARE(Globals::GetGameNameKey(unknown), "GAME_HOLDEM"_s);
    }

    void letters()
    {
        for (int i = 0; i < 256; ++i) {
            const char letter = static_cast<char>(i);
            QCOMPARE(char(Globals::GetMoneyType(letter)), QByteArray("EPRST").contains(letter) ? letter : '-');
            QCOMPARE(char(Globals::GetLimitType(letter)), QByteArray("FP").contains(letter) ? letter : 'N');
            QCOMPARE(char(Globals::GetTableType(letter)), QByteArray("PRST").contains(letter) ? letter : 'N');
        }
    }

    void limits()
    {
        for (const char *expected : {"N,NO_LIMIT,NL,NL Omaha", "P,POT_LIMIT,PL,PL Omaha",
                                     "F,FIXED_LIMIT,LIMIT_TYPE_FL,Omaha", "n,,,Omaha"}) {
            const auto limit = static_cast<GlobalDefines::LimitType>(expected[0]);
            const QStringList texts{QChar(limit), Globals::GetLimitKey(QChar(limit), false),
                                    Globals::GetLimitKey(limit, true),
                                    Globals::GetUntranslatedGameName(GlobalDefines::GT_OMAHA, limit)};
            QCOMPARE(texts.join(QLatin1Char(',')), QString::fromLatin1(expected));
        }
        QCOMPARE(Globals::GetLimitKey(QChar(0x014E), false), QString()); // 'N' in the low byte
    }

    void monthsAndStatuses()
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

    void streams()
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

    void qml()
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

QTEST_GUILESS_MAIN(tst_GlobalDefines)
#include "tst_globaldefines.moc"
