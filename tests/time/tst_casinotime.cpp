#include <time/CasinoTime.h>

#include <QtTest>

namespace {

constexpr unsigned int NOON = 1709208000; // 29 February 2024, 12:00 UTC

} // namespace

class tst_casinotime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ServerTimes_data()
    {
        QTest::addColumn<unsigned int>("time");
        QTest::addColumn<unsigned int>("clock");
        QTest::addColumn<QString>("order");
        const QString server = QStringLiteral("server ");
        const QString both = QStringLiteral("time server ");
        QTest::newRow("the same") << NOON << NOON << QString();
        QTest::newRow("5 ahead") << NOON + 5 << NOON << server;
        QTest::newRow("5 behind") << NOON - 5 << NOON << server;
        QTest::newRow("6 ahead") << NOON + 6 << NOON + 6 << both;
        QTest::newRow("6 behind") << NOON - 6 << NOON - 6 << QStringLiteral("11:59 time server ");
        QTest::newRow("another minute") << NOON + 60 << NOON + 60 << QStringLiteral("12:01 time server ");
        QTest::newRow("the last") << 0xffffffffu << 0xffffffffu << QStringLiteral("06:28 time server ");
    }

    // What a server time does to a clock that stands at noon.
    void ServerTimes()
    {
        QFETCH(unsigned int, time);
        QFETCH(unsigned int, clock);
        CCasinoTime casino;
        casino.SetTimeUTCServer(NOON);
        QString order;
        connect(&casino, &CCasinoTime::signal_TimeStringChanged, this,
                [&](const QString &text) { order += text + QLatin1Char(' '); });
        connect(&casino, &CCasinoTime::signal_TimeChanged, this, [&] { order += QLatin1String("time "); });
        connect(&casino, &CCasinoTime::signal_ServerTimeChanged, this, [&] { order += QLatin1String("server "); });
        casino.SetTimeUTCServer(time);
        QTEST(order, "order");
        QCOMPARE(casino.GetTimeUTCServer(), time);
        QCOMPARE(casino.GetTimeUTCClient(), clock);
    }

    void Ticks()
    {
        CCasinoTime casino;
        QSignalSpy ticks(&casino, &CCasinoTime::signal_TimeChanged);
        QSignalSpy texts(&casino, &CCasinoTime::signal_TimeStringChanged);
        QVERIFY(casino.GetTimeString().isEmpty() && casino.property("currentTime").toString().isEmpty());
        QVERIFY(ticks.wait()); // by itself, without a server
        QCOMPARE(casino.GetTimeUTCClient(), 1u);
        QCOMPARE(casino.GetTimeString(), QStringLiteral("00:00"));
        casino.SetTimeUTCServer(NOON - 2);
        QCOMPARE(casino.GetTimeString(), QStringLiteral("11:59"));
        const int before = texts.size();
        for (int second = 0; second < 60; ++second)
            casino.IncreaseCurrentTime();
        QCOMPARE(texts.size(), before + 1);
        QCOMPARE(texts.last().at(0).toString(), QStringLiteral("12:00"));
        QCOMPARE(casino.GetSecondsTo(NOON), -58);
        casino.SetTimeUTCServer(NOON - 2); // nothing new, however far the clock has run
        QCOMPARE(casino.GetTimeUTCClient(), NOON + 58);
        casino.SetTimeUTCServer(0); // no server time: the machine's
        QVERIFY(qAbs(qint64(casino.GetTimeUTCClient()) - QDateTime::currentSecsSinceEpoch()) <= 2);
    }

    void Texts()
    {
        CCasinoTime casino;
        QCOMPARE(casino.GetTimeString(0), QString());
        QCOMPARE(casino.GetDateString(0), QString());
        QCOMPARE(casino.GetTimeString(NOON + 61), QStringLiteral("12:01"));
        QCOMPARE(casino.GetDateString(NOON), QStringLiteral("29.02.2024"));
        casino.SetTimeUTCServer(NOON + 12 * 3600);
        QCOMPARE(casino.GetDateString(), QStringLiteral("01.03.2024"));
    }
};

QTEST_GUILESS_MAIN(tst_casinotime)
#include "tst_casinotime.moc"
