#include <support/Languages.h>

#include <QTimeZone>

static constexpr unsigned int NOON = 1709208000; // 29 February 2024, 12:00 UTC

class tst_casinotime : public QObject
{
    Q_OBJECT

    const CLanguages m_languages{
        "1|core|february|Feb;1|core|march|Mar;1|core|autotimezone|auto;1|core|timediff_dhm|in #d# d #h# h #min# m;"
        "1|core|timediff_hm|#d# #h# h #min# m;1|core|timediff_m|#d# #h# #min# m;1|core|day|day;1|core|days|days;"
        "1|core|hour|hour;1|core|hours|hours;1|core|minute|minute;1|core|minutes|minutes"_s};

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "UTC"); }

    void ServerTimes()
    {
        for (const QStringList &in : // distance from a clock that stands at noon, and signals
             Rows("0|;5|server ;-5|server ;6|time server ;-6|11:59 time server ;60|12:01 time server ;"
                  "2585759295|06:28 time server "_s)) {
            const unsigned int time = NOON + unsigned(in[0].toLongLong());
            CCasinoTime casino;
            casino.SetTimeUTCServer(NOON);
            QString order;
            connect(&casino, &CCasinoTime::signal_TimeStringChanged, this,
                    [&](const QString &text) { order += text + QLatin1Char(' '); });
            connect(&casino, &CCasinoTime::signal_TimeChanged, this, [&] { order += "time "_s; });
            connect(&casino, &CCasinoTime::signal_ServerTimeChanged, this, [&] { order += "server "_s; });
            casino.SetTimeUTCServer(time);
            QVERIFY(order == in[1] && casino.GetTimeUTCServer() == time);
            QCOMPARE(casino.GetTimeUTCClient(), order.contains("time"_s) ? time : NOON);
        }
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
        QVERIFY(casino.GetTimeString().isEmpty() && casino.property("currentTime").toString().isEmpty());
        QVERIFY(ticks.wait() && casino.GetTimeUTCClient() == 1 && casino.GetTimeString() == "00:00"_s); // by itself
        casino.SetTimeUTCServer(NOON - 2);
        for (int second = 0; second < 60; ++second)
            casino.IncreaseCurrentTime();
        QVERIFY(texts.size() == 3 && texts.last().at(0) == "12:00"_s);
        casino.SetTimeUTCServer(NOON - 2); // nothing new, however far the clock has run
        QVERIFY(casino.GetTimeUTCClient() == NOON + 58 && casino.GetSecondsTo(NOON) == -58);
        casino.SetTimeUTCServer(0); // no server time: the machine's
        QVERIFY(qAbs(qint64(casino.GetTimeUTCClient()) - QDateTime::currentSecsSinceEpoch()) <= 2);
    }

    void Texts()
    {
        CCasinoTime casino;
        const QString none = casino.GetTimeDiffString(NOON).GetText() + casino.GetDateTimeString().GetText();
        QCOMPARE(none + casino.GetTimeString(0) + casino.GetDateString(0), QString());
        QCOMPARE(casino.GetTimeString(NOON + 61) + casino.GetDateString(NOON), "12:0129.02.2024"_s);
        QCOMPARE(casino.GetDateStringShort(NOON).GetTranslatedText(), "Feb 29"_s);
        casino.SetTimeUTCServer(NOON + 46800); // 01:00
        QCOMPARE(casino.GetDateString() + casino.GetDateTimeString().GetTranslatedText(), "01.03.2024Mar 01 01:00"_s);
        for (const QStringList &in : // seconds from there
             Rows("0|0 0 0 m;3599|0 0 59 m;3600|0 1 h 0 m;86399|0 23 h 59 m;86459|in 1 d 0 h 0 m;-59|0 minutes;"
                  "-3600|1 hour, 0 minutes;-7200|2 hours, 0 minutes;-86460|1 day, 1 minute;"
                  "-172799|1 day, 23 hours, 59 minutes;-1709254800|"_s))
            QCOMPARE(casino.GetTimeDiffString(NOON + 46800 + unsigned(in[0].toInt())).GetTranslatedText(), in[1]);
    }

    void Zones()
    {
        CCasinoTime casino;
        casino.SetTimeUTCServer(NOON);
        const QSignalSpy changed(&casino, &CCasinoTime::signal_TimeZoneChanged);
        for (const QStringList &in : // selected, index, name, noon
             Rows("23|23|GMT-0:30|Feb 29 11:30;0|0|GMT-12|Feb 29 00:00;-1|24|GMT+0|Feb 29 12:00;"
                  "53|53|GMT+0|Feb 29 12:00;21|21|GMT-1:30|Feb 29 10:30;54|24|GMT+0|Feb 29 12:00;"
                  "52|52|GMT+14|Mar 01 02:00"_s)) {
            casino.IncreaseCurrentTime();
            CSettings::GetInstance()->SetTimezoneIndex30(in[0].toInt(), this);
            QCOMPARE(QString::number(casino.GetTimezoneIndex()) + casino.GetTimezoneString(), in[1] + in[2]);
            QCOMPARE(casino.GetDateTimeString(NOON).GetTranslatedText(), in[3]);
        }
        QVERIFY(changed.size() == 6 && casino.GetTimeUTCClient() == NOON); // the clock starts again with each zone
        CSettings::GetInstance()->SetTimezoneIndex30(24, &casino);
        QCOMPARE(casino.GetTimezoneIndex(), 52);
        const QStringList names = casino.GetTimezoneList();
        QVERIFY(names.size() == 54 && names.at(23) == "GMT-0:30"_s && names.at(53) == "auto"_s);
    }

    void MachinesZone()
    {
        CSettings::GetInstance()->SetTimezoneIndex30(53);
        for (const char *zone :
             {"Asia/Kathmandu", "Australia/Lord_Howe", "America/St_Johns", "Pacific/Kiritimati", "Europe/Berlin"}) {
            qputenv("TZ", zone);
            const CCasinoTime casino;
            const int halfHours = QTimeZone(zone).offsetFromUtc(QDateTime::currentDateTimeUtc()) / 1800;
            QCOMPARE(casino.GetTimezoneString(), Globals::GetTimezoneString(short(halfHours)));
            QVERIFY(qAbs(casino.GetSecondsTo(unsigned(QDateTime::currentSecsSinceEpoch()))) <= 1);
        }
        qputenv("TZ", "WIN-5:45");
        CCasinoTime casino;
        qputenv("TZ", "WIN-5:45SUM,0/0,J365/25"); // summer time, seen at the next look
        QCOMPARE(casino.GetTimezoneString(), "GMT+5:30"_s);
        casino.SetTimezoneServer(4);
        QCOMPARE(casino.GetTimezoneString(), "GMT+6:30"_s);
    }
};

QTEST_GUILESS_MAIN(tst_casinotime)
#include "tst_casinotime.moc"
