#include <support/Languages.h>
#include <support/Rows.h>
#include <time/CountDown.h>

struct SClock : CCasinoTime
{
    using CCasinoTime::receivers;
};

class tst_countdown : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{"1|core|days|days"_s};

private Q_SLOTS:
    void Texts_data()
    {
        AddRows("0|00:00:00|00:00|0|;3661|01:01:01|01:01|3661|;172799|47:59:59|59:59|172799|;"
                "172800|2 days|00:00|172800|;4294967295|49710 days|28:15|4294967295|"_s);
    }

    void Texts()
    {
        QFETCH(QStringList, in); // seconds, and the texts of the three types and of one that is none
        for (const int type : {0, 1, 2, 3})
            QCOMPARE(Globals::GetCountDownString(in[0].toUInt(), GlobalDefines::CountdownStringType(type))
                         .GetTranslatedText(),
                     in.at(type + 1));
    }

    void Runs()
    {
        CCasinoTime *clock = CCasinoTime::GetInstance();
        CCountDown countDown;
        QString seen;
        connect(&countDown, &CCountDown::signal_CountDownChanged, this,
                [&](const QString &text) { seen += text + QLatin1Char(' '); });
        connect(&countDown, &CCountDown::signal_CountDownFinished, this, [&] { seen += "end "_s; });
        const auto run = [&](int ticks) { // what is signalled on so many ticks, and shown and connected then
            while (--ticks >= 0)
                clock->IncreaseCurrentTime();
            return QStringLiteral("%1%2 %3")
                .arg(std::exchange(seen, {}), countDown.GetCountDown().GetTranslatedText())
                .arg((clock->*&SClock::receivers)(SIGNAL(signal_TimeChanged())));
        };
        countDown.Start(3); // the clock stands at 0
        countDown.Start(3);
        QCOMPARE(run(0), "00:00:00 1"_s);
        QVERIFY(countDown.IsRunning());
        QCOMPARE(run(3), "00:00:02 00:00:01 00:00:00 00:00:00 1"_s);
        QCOMPARE(run(1), "end 00:00:00 0"_s);
        countDown.StartEndTime(7); // the clock stands at 4
        QCOMPARE(std::tuple(countDown.GetLeft(), countDown.GetSince()), std::tuple(3, 0));
        countDown.StartEndTime(4);
        QCOMPARE(run(2), "00:00:03 00:00:00 00:00:00 0"_s);
        countDown.StartFromTime(7); // the clock stands at 6
        QCOMPARE(run(3), "00:00:01 00:00:02 00:00:02 1"_s);
        QCOMPARE(std::tuple(countDown.GetLeft(), countDown.GetSince()), std::tuple(0, 2));
        countDown.Start(172801);
        QCOMPARE(run(2), "2 days 47:59:59 47:59:59 1"_s);
        countDown.StartFromTime(1);
        countDown.SetType(GlobalDefines::CST_Seconds);
        countDown.Stop();
        countDown.Start(0);
        countDown.StartFromTime(0);
        QCOMPARE(run(2), "00:00:10 10 0 0 0"_s);
    }

    void SlotInterferes_data()
    {
        AddRows("starts down|1 1 6;starts up|1 1 6;runs an event loop|0 1 7;deletes at the end|0 1 4;"
                "deletes at another text|0 0 2"_s);
    }

    void SlotInterferes()
    {
        QFETCH(const QStringList, in); // what it does; whether it runs then, ends, others' ticks
        const QString &how = in[0];
        CCasinoTime *clock = CCasinoTime::GetInstance();
        const QPointer<CCountDown> countDown = new CCountDown;
        const auto ticks = std::make_shared<int>(0);
        int ends = 0;
        connect(countDown, &CCountDown::signal_CountDownFinished, this, [&] {
            if (++ends == 1 && how == "starts down"_s)
                countDown->Start(5);
            else if (ends == 1 && how == "starts up"_s)
                countDown->StartFromTime(1);
            else if (ends == 1 && how == "runs an event loop"_s)
                clock->IncreaseCurrentTime();
            else
                delete countDown;
        });
        connect(countDown, &CCountDown::signal_CountDownChanged, this, [&] {
            if (how == "deletes at another text"_s && *ticks == 2)
                delete countDown;
        });
        connect(clock, &CCasinoTime::signal_TimeChanged, countDown, [ticks] { ++*ticks; });
        clock->IncreaseCurrentTime();
        countDown->Start(2);
        for (int tick = 0; tick < 5; ++tick)
            clock->IncreaseCurrentTime();
        QCOMPARE("%1 %2 %3"_s.arg(countDown && countDown->IsRunning()).arg(ends).arg(*ticks), in[1]);
        delete countDown;
    }
};

QTEST_GUILESS_MAIN(tst_countdown)
#include "tst_countdown.moc"
