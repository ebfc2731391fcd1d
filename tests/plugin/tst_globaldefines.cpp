#include <plugin/GlobalDefines.h>

#include <QDataStream>
#include <QMetaEnum>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QScopedPointer>
#include <QtTest>

// The published enumerations and their numbers, the key tables, and QML's view of them.
class tst_GlobalDefines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void enumerations_data();
    void enumerations();
    void games_data();
    void games();
    void gameCodes_data();
    void gameCodes();
    void letters();
    void limits_data();
    void limits();
    void monthsAndStatuses();
    void outsideTheTables();
    void streams();
    void qml();
};

void tst_GlobalDefines::enumerations_data()
{
    QTest::addColumn<QString>("enumerators");

    QTest::newRow("MoneyType") << "MONEYTYPE_DOLLAR=82 MONEYTYPE_PLAY=80 MONEYTYPE_EURO=69 MONEYTYPE_TOURN=84 "
                                  "MONEYTYPE_POINTS=83 MONEYTYPE_UNKNOWN=45";
    QTest::newRow("LimitType") << "LT_NO_LIMIT=78 LT_POT_LIMIT=80 LT_FIXED_LIMIT=70";
    QTest::newRow("TableType") << "TT_NORMAL=78 TT_PRIVATE=80 TT_RESTRICTED=82 TT_TOURNAMENT=84 TT_SITANDGO=83";
    QTest::newRow("GameType") << "GT_HOLDEM=1 GT_OMAHA=2 GT_OMAHA_HILO=3 GT_SEVEN_CARD=4 GT_SEVEN_CARD_HILO=5 "
                                 "GT_NOBADBEAT=6 GT_BADUGI=7 GT_SEVEN_CARD_CHOICE=8 GT_2TO7=9 GT_5CARD=10";
    QTest::newRow("TableConnectTypes") << "TCT_Standard=1 TCT_Reseated=2 TCT_SeatMe=4";
    QTest::newRow("TournamentStatus")
        << "TRNSTATUS_ANNOUNCED=1 TRNSTATUS_REGISTERING=2 TRNSTATUS_SEATING=3 TRNSTATUS_SEATED=11 "
           "TRNSTATUS_RUNNING=4 TRNSTATUS_ONBREAK=5 TRNSTATUS_STARTINGBREAK=13 TRNSTATUS_COMPLETED=6 "
           "TRNSTATUS_COMPLETING=12 TRNSTATUS_CANCELLED=7 TRNSTATUS_CANCELLING=10 TRNSTATUS_ONHOLD=8 "
           "TRNSTATUS_NOTYETANNOUNCED=9 TRNSTATUS_STARTINGADDON=14 TRNSTATUS_ADDONPERIOD=15 TRNSTATUS_LATE_REG=22";
    QTest::newRow("TournamentType")
        << "TRNTYPE_Regular=1 TRNTYPE_Satellite=2 TRNTYPE_FreeRoll=3 TRNTYPE_Special=4 TRNTYPE_Private=5 "
           "TRNTYPE_SitAndGo=6 TRNTYPE_Restricted=7 TRNTYPE_MultiTableSnG=8";
    QTest::newRow("CountdownStringType") << "CST_Normal=0 CST_MinAndSecs=1 CST_Seconds=2";
    QTest::newRow("ScreenPositionOutside") << "SPO_None=0 SPO_Horizontal=1 SPO_Vertical=2";
}

void tst_GlobalDefines::enumerations()
{
    const QMetaObject &meta = GlobalDefines::staticMetaObject;
    const QMetaEnum enumeration = meta.enumerator(meta.indexOfEnumerator(QTest::currentDataTag()));
    QVERIFY(enumeration.isValid());
    QStringList actual;
    for (int i = 0; i < enumeration.keyCount(); ++i)
        actual << QStringLiteral("%1=%2").arg(QLatin1String(enumeration.key(i))).arg(enumeration.value(i));
    QTEST(actual.join(QLatin1Char(' ')), "enumerators");
}

void tst_GlobalDefines::games_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("nameKey");
    QTest::addColumn<QString>("name");

    QTest::newRow("HOLD") << 1 << "GAME_HOLDEM"
                          << "Hold'em";
    QTest::newRow("OMNM") << 2 << "GAME_OMAHA"
                          << "Omaha";
    QTest::newRow("OMHL") << 3 << "GAME_OMAHA_HILO"
                          << "Omaha Hi/Lo";
    QTest::newRow("7CNM") << 4 << "GAME_7CARD"
                          << "7 Card Stud";
    QTest::newRow("7CHL") << 5 << "GAME_7CARD_HILO"
                          << "7 Card Stud Hi/Lo";
    QTest::newRow("HNBB") << 6 << "GAME_NBB"
                          << "Hold'em No Bad Beat";
    QTest::newRow("BADU") << 7 << "GAME_BADUGI"
                          << "Badugi";
    QTest::newRow("7CHO") << 8 << "GAME_7CARD_CHOICE"
                          << "7 Card Choice";
    QTest::newRow("2TO7") << 9 << "GAME_2TO7"
                          << "2to7";
    QTest::newRow("5CAR") << 10 << "GAME_5CARD"
                          << "5 Card";
}

void tst_GlobalDefines::games()
{
    QFETCH(int, number);
    const auto type = static_cast<GlobalDefines::GameType>(number);
    const QByteArray code(QTest::currentDataTag());

    QCOMPARE(Globals::GetGameType(QString::fromLatin1(code)), type);
    char buffer[] = {'x', 'x', 'x', 'x', 'x'};
    Globals::GetGameType(type, buffer);
    QCOMPARE(QByteArray(buffer, sizeof buffer), code + 'x');
    QTEST(Globals::GetGameNameKey(type), "nameKey");
    QTEST(Globals::GetUntranslatedGameName(type, GlobalDefines::LT_FIXED_LIMIT), "name");
}

void tst_GlobalDefines::gameCodes_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("nameKey");

    QTest::newRow("lower case and more text") << "omhl-6max"
                                              << "GAME_OMAHA_HILO";
    QTest::newRow("mixed case") << "bAdU"
                                << "GAME_BADUGI";
    QTest::newRow("empty") << ""
                           << "GAME_HOLDEM";
    QTest::newRow("too short") << "OMN"
                               << "GAME_HOLDEM";
    QTest::newRow("in no row") << "ABCD"
                               << "GAME_HOLDEM";
    QTest::newRow("behind a blank") << " OMNM"
                                    << "GAME_HOLDEM";
}

void tst_GlobalDefines::gameCodes()
{
    QFETCH(QString, code);
    QTEST(Globals::GetGameNameKey(code), "nameKey");
}

void tst_GlobalDefines::letters()
{
    for (int i = 0; i < 256; ++i) {
        const char letter = static_cast<char>(i);
        const auto expect = [letter](const char *known, char other) {
            return int(QByteArray(known).contains(letter) ? letter : other);
        };
        QCOMPARE(int(Globals::GetMoneyType(letter)), expect("EPRST", '-'));
        QCOMPARE(int(Globals::GetLimitType(letter)), expect("FNP", 'N'));
        QCOMPARE(int(Globals::GetTableType(letter)), expect("PRST", 'N'));
    }
}

void tst_GlobalDefines::limits_data()
{
    QTest::addColumn<int>("letter");
    QTest::addColumn<QString>("longKey");
    QTest::addColumn<QString>("shortKey");
    QTest::addColumn<QString>("omaha");

    QTest::newRow("no limit") << int('N') << "NO_LIMIT"
                              << "NL"
                              << "NL Omaha";
    QTest::newRow("pot limit") << int('P') << "POT_LIMIT"
                               << "PL"
                               << "PL Omaha";
    QTest::newRow("fixed limit") << int('F') << "FIXED_LIMIT"
                                 << "LIMIT_TYPE_FL"
                                 << "Omaha";
    QTest::newRow("unknown") << int('X') << ""
                             << ""
                             << "Omaha";
    QTest::newRow("lower case") << int('n') << ""
                                << ""
                                << "Omaha";
    QTest::newRow("another plane of letters") << 0x014E << ""
                                              << ""
                                              << "Omaha"; // the low byte is 'N'
}

void tst_GlobalDefines::limits()
{
    QFETCH(int, letter);
    const auto limit = static_cast<GlobalDefines::LimitType>(letter);
    QTEST(Globals::GetLimitKey(limit, false), "longKey");
    QTEST(Globals::GetLimitKey(limit, true), "shortKey");
    QTEST(Globals::GetLimitKey(QChar(letter), false), "longKey");
    QTEST(Globals::GetLimitKey(QChar(letter), true), "shortKey");
    QTEST(Globals::GetUntranslatedGameName(GlobalDefines::GT_OMAHA, limit), "omaha");
}

void tst_GlobalDefines::monthsAndStatuses()
{
    QStringList months;
    for (int month = 0; month <= 13; ++month)
        months << Globals::GetMonthKey(month);
    QCOMPARE(months.join(QLatin1Char(' ')),
             QStringLiteral(" JANUARY FEBRUARY MARCH APRIL MAY JUNE JULY AUGUST SEPTEMBER OCTOBER NOVEMBER "
                            "DECEMBER "));

    QStringList statuses;
    for (int status = -1; status <= 23; ++status)
        statuses << Globals::GetTournamentStatusLongKey(status);
    QCOMPARE(
        statuses.join(QLatin1Char(' ')),
        QStringLiteral("UNKNOWN UNKNOWN ANNOUNCED REGISTERING SEATING RUNNING ONBREAK COMPLETED CANCELLED ONHOLD "
                       "ANNOUNCED CANCELLED SEATING COMPLETED RUNNING RUNNING RUNNING UNKNOWN UNKNOWN UNKNOWN "
                       "UNKNOWN UNKNOWN UNKNOWN LATE_REG UNKNOWN"));
}

void tst_GlobalDefines::outsideTheTables()
{
    for (const int number : {0, 11, -1}) {
        const auto type = static_cast<GlobalDefines::GameType>(number);
        char buffer[] = {'x', 'x', 'x', 'x'};
        Globals::GetGameType(type, buffer);
        QCOMPARE(QByteArray(buffer, sizeof buffer), QByteArray("xxxx"));
        QCOMPARE(Globals::GetGameNameKey(type), QString());
        QCOMPARE(Globals::GetUntranslatedGameName(type, GlobalDefines::LT_NO_LIMIT), QStringLiteral("NL "));
    }
}

template <typename Enum>
static void CompareStream(Enum written)
{
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << written << Enum(-2);
    QCOMPARE(bytes.size(), 8);
    bytes.chop(1);

    QDataStream in(bytes);
    Enum read = Enum(7);
    in >> read;
    QCOMPARE(read, written);
    QCOMPARE(in.status(), QDataStream::Ok);
    in >> read; // three of its four bytes are there
    QCOMPARE(int(read), 0);
    QCOMPARE(in.status(), QDataStream::ReadPastEnd);
}

void tst_GlobalDefines::streams()
{
    CompareStream(GlobalDefines::MONEYTYPE_EURO);
    CompareStream(GlobalDefines::LT_FIXED_LIMIT);
    CompareStream(GlobalDefines::TT_RESTRICTED);
    CompareStream(GlobalDefines::GT_5CARD);
    CompareStream(static_cast<GlobalDefines::GameType>(-70000)); // no range check
}

void tst_GlobalDefines::qml()
{
    GlobalDefines::RegisterQML();

    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(
        "import GlobalDefines 1.0\n"
        "GlobalDefines { property var seen: [GlobalDefines.MONEYTYPE_DOLLAR, GlobalDefines.LT_POT_LIMIT, "
        "GlobalDefines.TRNSTATUS_LATE_REG, GlobalDefines.SPO_Vertical] }",
        QUrl());
    const QScopedPointer<QObject> object(component.create());
    QVERIFY2(object, qPrintable(component.errorString()));
    QVERIFY(qobject_cast<GlobalDefines *>(object.data()));
    QCOMPARE(object->property("seen").toList(), (QVariantList{82, 80, 22, 2}));

    for (const char *name : {"MoneyType", "LimitType", "GameType", "TableType", "TableConnectTypes",
                             "TournamentStatus", "TournamentType", "CountdownStringType", "ScreenPositionOutside"})
        QVERIFY2(QMetaType::type(QByteArray("GlobalDefines::") + name) != QMetaType::UnknownType, name);
}

QTEST_GUILESS_MAIN(tst_GlobalDefines)
#include "tst_globaldefines.moc"
