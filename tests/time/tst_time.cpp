#include <support/Languages.h>
#include <support/Rows.h>
#include <time/CountDown.h>

static constexpr unsigned int NOON = 1709208000; // 29 February 2024, 12:00 UTC

class tst_time : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{
        "1|core|february|Feb;1|core|march|Mar;1|core|autotimezone|auto;1|core|timediff_dhm|in #d# d #h# h #min# m;"
        "1|core|timediff_hm|#d# #h# h #min# m;1|core|timediff_m|#d# #h# #min# m;1|core|day|day;1|core|days|days;"
        "1|core|hour|hour;1|core|hours|hours;1|core|minute|minute;1|core|minutes|minutes"_s};

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "UTC"); }

    void ServerTimes_data()
    {
        AddRows("0|;5|server ;-5|server ;6|time server ;-6|11:59 time server ;2585759295|06:28 time server "_s);
    }

    void ServerTimes()
    {
        QFETCH(QStringList, in); // distance from a clock that stands at noon, and signals
        const unsigned int time = NOON + unsigned(in[0].toLongLong());
        CCasinoTime casino;
        casino.SetTimeUTCServer(NOON);
        QString order;
        connect(&casino, &CCasinoTime::signal_TimeStringChanged, this,
                [&](const QString &text) { order += text + QLatin1Char(' '); });
        connect(&casino, &CCasinoTime::signal_TimeChanged, this, [&] { order += "time "_s; });
        connect(&casino, &CCasinoTime::signal_ServerTimeChanged, this, [&] { order += "server "_s; });
        casino.SetTimeUTCServer(time);
        QCOMPARE(order, in[1]);
        QCOMPARE(casino.GetTimeUTCServer(), time);
        QCOMPARE(casino.GetTimeUTCClient(), order.contains("time"_s) ? time : NOON);
    }

    void DeletedInASignal()
    {
        const QPointer<CCasinoTime> casino = new CCasinoTime;
        connect(casino, &CCasinoTime::signal_TimeStringChanged, this, [casino] { delete casino; });
        casino->SetTimeUTCServer(NOON);
        QVERIFY(!casino);
    }

    void Ticks()
    {
        CCasinoTime casino;
        QSignalSpy ticks(&casino, &CCasinoTime::signal_TimeChanged);
        QSignalSpy texts(&casino, &CCasinoTime::signal_TimeStringChanged);
        QCOMPARE(casino.GetTimeString() + casino.property("currentTime").toString(), QString());
        QVERIFY(ticks.wait()); // by itself
        QCOMPARE(std::tuple(casino.GetTimeUTCClient(), casino.GetTimeString()), std::tuple(1u, "00:00"_s));
        casino.SetTimeUTCServer(NOON - 2);
        for (int second = 0; second < 60; ++second)
            casino.IncreaseCurrentTime();
        QCOMPARE(texts, (QList<QVariantList>{{"00:00"_s}, {"11:59"_s}, {"12:00"_s}}));
        casino.SetTimeUTCServer(NOON - 2); // nothing new, however far the clock has run
        QCOMPARE(casino.GetTimeUTCClient(), NOON + 58);
        QCOMPARE(casino.GetSecondsTo(NOON), -58);
        casino.SetTimeUTCServer(0); // no server time: the machine's
        QVERIFY(qAbs(qint64(casino.GetTimeUTCClient()) - QDateTime::currentSecsSinceEpoch()) <= 2);
    }

    void Texts()
    {
        CCasinoTime casino;
        const QString none = casino.GetTimeDiffString(NOON).GetText() + casino.GetDateTimeString().GetText();
        QCOMPARE(none + casino.GetTimeString(0) + casino.GetDateString(0), QString());
        QCOMPARE(casino.GetTimezoneList().mid(52), (QStringList{"GMT+14"_s, "auto"_s}));
        QCOMPARE(casino.GetTimeString(NOON + 61) + casino.GetDateString(NOON), "12:0129.02.2024"_s);
        QCOMPARE(casino.GetDateStringShort(NOON).GetTranslatedText(), "Feb 29"_s);
        casino.SetTimeUTCServer(NOON + 46800); // 01:00
        QCOMPARE(casino.GetDateString() + casino.GetDateTimeString().GetTranslatedText(), "01.03.2024Mar 01 01:00"_s);
    }

    void Distances_data()
    {
        AddRows("0|0 0 0 m;3599|0 0 59 m;3600|0 1 h 0 m;86459|in 1 d 0 h 0 m;-3600|1 hour, 0 minutes;"
                "-86460|1 day, 1 minute;-172799|1 day, 23 hours, 59 minutes;-1709208000|"_s);
    }

    void Distances()
    {
        QFETCH(QStringList, in); // seconds from noon
        CCasinoTime casino;
        casino.SetTimeUTCServer(NOON);
        QCOMPARE(casino.GetTimeDiffString(NOON + unsigned(in[0].toInt())).GetTranslatedText(), in[1]);
    }

    void Zones_data()
    {
        AddRows("23|23|GMT-0:30|Feb 29 11:30;-1|24|GMT+0|Feb 29 12:00;53|53|GMT+0|Feb 29 12:00;"
                "21|21|GMT-1:30|Feb 29 10:30;54|24|GMT+0|Feb 29 12:00;52|52|GMT+14|Mar 01 02:00"_s);
    }

    void Zones()
    {
        QFETCH(QStringList, in); // selected, index, name, noon
        CSettings::GetInstance()->SetTimezoneIndex30(22);
        CCasinoTime casino;
        casino.SetTimeUTCServer(NOON);
        casino.IncreaseCurrentTime();
        const QSignalSpy changed(&casino, &CCasinoTime::signal_TimeZoneChanged);
        CSettings::GetInstance()->SetTimezoneIndex30(in[0].toInt(), this);
        QCOMPARE(QString::number(casino.GetTimezoneIndex()) + casino.GetTimezoneString(), in[1] + in[2]);
        QCOMPARE(casino.GetDateTimeString(NOON).GetTranslatedText(), in[3]);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(casino.GetTimeUTCClient(), NOON);                 // the clock starts again
        CSettings::GetInstance()->SetTimezoneIndex30(30, &casino); // who sets it knows it
        QCOMPARE(QString::number(casino.GetTimezoneIndex()), in[1]);
    }

    void MachinesZone_data() { AddRows("WIN-5:45|GMT+5:30|GMT+6:30;WIN-14|GMT+14|GMT+0"_s); }

    void MachinesZone()
    {
        QFETCH(QStringList, in); // the zone, its name in winter and in summer
        qputenv("TZ", in[0].toLatin1());
        CSettings::GetInstance()->SetTimezoneIndex30(53);
        CCasinoTime casino;
        QCOMPARE(casino.GetTimezoneString(), in[1]);
        QVERIFY(qAbs(casino.GetSecondsTo(unsigned(QDateTime::currentSecsSinceEpoch()))) <= 1);
        qputenv("TZ", in[0].toLatin1() + "SUM,0/0,J365/25"); // all the year
        QCOMPARE(casino.GetTimezoneString(), in[1]);
        casino.SetTimezoneServer(4); // which lets it look anew
        QCOMPARE(casino.GetTimezoneString(), in[2]);
        qputenv("TZ", "UTC");
    }

    void CountDownTexts_data()
    {
        AddRows("0|00:00:00|00:00|0|;3661|01:01:01|01:01|3661|;172799|47:59:59|59:59|172799|;"
                "172800|2 days|00:00|172800|"_s);
    }

    void CountDownTexts()
    {
        QFETCH(QStringList, in); // seconds, and the texts of the three types and of one that is none
        for (const int type : {0, 1, 2, 3})
            QCOMPARE(Globals::GetCountDownString(in[0].toUInt(), GlobalDefines::CountdownStringType(type))
                         .GetTranslatedText(),
                     in.at(type + 1));
    }

    void CountDownRuns()
    {
        CCasinoTime::DestroyInstance();
        CCasinoTime *clock = CCasinoTime::GetInstance();
        CCountDown countDown;
        QString seen;
        connect(&countDown, &CCountDown::signal_CountDownChanged, this,
                [&](const QString &text) { seen += text + QLatin1Char(' '); });
        connect(&countDown, &CCountDown::signal_CountDownFinished, this, [&] { seen += "end "_s; });
        const auto run = [&](int ticks) { // what is signalled on so many ticks, and shown then
            while (--ticks >= 0)
                clock->IncreaseCurrentTime();
            return std::exchange(seen, {}) + countDown.GetCountDown().GetTranslatedText();
        };
        countDown.Start(3); // the new clock stands at 0
        QCOMPARE(run(0), "00:00:00"_s);
        QVERIFY(countDown.IsRunning());
        QCOMPARE(run(3), "00:00:02 00:00:01 00:00:00 00:00:00"_s);
        QCOMPARE(run(1), "end 00:00:00"_s);
        countDown.StartEndTime(7); // the clock stands at 4
        QCOMPARE(std::tuple(countDown.GetLeft(), countDown.GetSince()), std::tuple(3, 0));
        countDown.StartEndTime(4);
        QCOMPARE(run(2), "00:00:03 00:00:00 00:00:00"_s);
        countDown.StartFromTime(7); // the clock stands at 6
        QCOMPARE(run(3), "00:00:01 00:00:02 00:00:02"_s);
        QCOMPARE(std::tuple(countDown.GetLeft(), countDown.GetSince()), std::tuple(0, 2));
        countDown.Start(172801);
        QCOMPARE(run(2), "2 days 47:59:59 47:59:59"_s);
        countDown.StartFromTime(1);
        countDown.SetType(GlobalDefines::CST_Seconds);
        countDown.Stop();
        countDown.Start(0);
        countDown.StartFromTime(0);
        QCOMPARE(run(2), "00:00:10 10 0 0"_s);
    }

    // At its end a slot runs an event loop, such as a dialog's, and starts it anew, first down and then up.
    void CountDownStartedAtItsEnd()
    {
        CCasinoTime *clock = CCasinoTime::GetInstance();
        CCountDown countDown;
        int ends = 0;
        connect(&countDown, &CCountDown::signal_CountDownFinished, this, [&] {
            clock->IncreaseCurrentTime();
            ++ends == 1 ? countDown.Start(1) : countDown.StartFromTime(1);
        });
        countDown.Start(1);
        for (int tick = 0; tick < 8; ++tick)
            clock->IncreaseCurrentTime();
        QCOMPARE(ends, 2);
        QVERIFY(countDown.GetSince() > 0);
    }

    void CountDownDeletedInASignal()
    {
        const auto ends = [](auto signal) {
            const QPointer<CCountDown> countDown = new CCountDown;
            connect(countDown, signal, countDown, [countDown] { delete countDown; });
            countDown->StartEndTime(CCasinoTime::GetInstance()->GetTimeUTCClient() + 1);
            for (int tick = 0; countDown && tick < 3; ++tick)
                CCasinoTime::GetInstance()->IncreaseCurrentTime();
            return countDown.isNull();
        };
        QVERIFY(ends(&CCountDown::signal_CountDownFinished));
        QVERIFY(ends(&CCountDown::signal_CountDownChanged));
    }
};

QTEST_GUILESS_MAIN(tst_time)
#include "tst_time.moc"
