#pragma once

#include <Export.h>
#include <translation/TranslationItem.h>

#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QTimer>

namespace Globals {

/// "GMT" and the offset of a time zone, a number of half hours: "GMT+0", "GMT-1:30".
PLUGININTERFACE_EXPORT QString GetTimezoneString(short tz);

} // namespace Globals

/// The clock of the client: what counts is the server's time, not the machine's.
///
/// It holds a second counter of its own, which ticks from the moment the object exists and is pulled to the server's
/// time whenever the two have drifted too far apart. Until the first server time it counts from 0, or, where the user
/// has chosen another time zone than UTC, from the machine's time. All times are seconds since 1970 UTC, 0 for no
/// time.
///
/// Texts are in the time zone of the setting `timezoneindex30`, an index into GetTimezoneList(). A zone is a whole
/// number of half hours from UTC, so that a machine at +5:45 reads as +5:30; its offset is taken when the zone is
/// chosen and when the object is created. What is needed by CSettings and CTranslation has to be initialised. Main
/// thread.
class PLUGININTERFACE_EXPORT CCasinoTime : public QObject
{
    Q_OBJECT

    /// The clock as "hh:mm".
    Q_PROPERTY(QString currentTime READ GetTimeString NOTIFY signal_TimeChanged)

public:
    static constexpr int iTimezoneMin = -24;     ///< Half hours of the westernmost zone, 12 h behind UTC.
    static constexpr int iTimezoneMax = 28;      ///< Half hours of the easternmost zone, 14 h ahead of UTC.
    static constexpr int iTimezoneAuto = 29;     ///< A selection: the machine's own offset.
    static constexpr int iTimeBounds = 5;        ///< Seconds by which the clock may differ from the server's.
    static constexpr int iTimezoneDefault = 0;   ///< UTC.
    static constexpr int iTimezoneUnknown = 999; ///< No zone was announced or chosen yet.

    /// Makes an object beside the shared one.
    explicit CCasinoTime(QObject *parent = nullptr);
    ~CCasinoTime() override;

    /// Creates the object on first use; the library owns it.
    static CCasinoTime *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

    /// For the host: the time that the server announces. The same time twice does nothing.
    void SetTimeUTCServer(unsigned int t);
    /// What the server has announced last.
    unsigned int GetTimeUTCServer() const;
    /// The running clock.
    unsigned int GetTimeUTCClient() const;
    /// Seconds from the running clock to \a t, negative if it has passed.
    int GetSecondsTo(unsigned int t) const;

    /// The running clock as "hh:mm", as of its last tick; empty before the first.
    QString GetTimeString() const;
    /// \a t in the time zone in effect as "hh:mm", empty for 0.
    QString GetTimeString(unsigned int t) const;
    /// The running clock's day in the time zone in effect as "dd.MM.yyyy".
    QString GetDateString() const;
    /// \a t in the time zone in effect as "dd.MM.yyyy", empty for 0.
    QString GetDateString(unsigned int t) const;

    /// For the host: the time zone that the server announces. It has no effect on the texts.
    void SetTimezoneServer(int tz);
    /// Index into GetTimezoneList() of the user's selection; of the zone in effect if the selection is none.
    int GetTimezoneIndex() const;
    /// The names of all time zones, from iTimezoneMin to iTimezoneMax, and behind them that of the machine's own.
    QStringList GetTimezoneList() const;
    /// The name of the time zone in effect.
    QString GetTimezoneString() const;

    /// The name of the month and the day of \a t.
    CTranslationItem GetDateStringShort(unsigned int t) const;
    /// The name of the month, the day and the time of \a t.
    CTranslationItem GetDateTimeString(unsigned int t) const;
    /// The same of the running clock; empty while it stands at 0.
    CTranslationItem GetDateTimeString() const;
    /// How far \a t lies ahead or back, in days, hours and minutes; empty for 0, and while the running clock stands
    /// at 0.
    CTranslationItem GetTimeDiffString(unsigned int t) const;

    /// One tick, as the timer does once a second.
    void IncreaseCurrentTime();

Q_SIGNALS:
    /// Once a second, and when the clock was set.
    void signal_TimeChanged();
    /// The clock's text differs, before signal_TimeChanged().
    void signal_TimeStringChanged(QString time);
    /// The server has announced another time, behind what that did to the clock.
    void signal_ServerTimeChanged();
    /// Another time zone is in effect for the texts.
    void signal_TimeZoneChanged();

private Q_SLOTS:
    void slot_TimezoneIndex30();
    void slot_Timer();

private:
    static constexpr int SECONDS_OF_HALF_HOUR = 1800;

    int GetTimeOffset() const;
    QString ToLocalText(unsigned int t, const QString &format) const;
    void CompareTimes();
    void UpdateTimes();

    void ConnectTimezone();
    void TakeTimezoneSelection();
    void UpdateTimezone();
    int GetAutoTimezone() const;
    CTranslationItem WithMonthName(unsigned int t, const QString &format) const;
    CTranslationItem TimeToString(unsigned int t) const;
    CTranslationItem TimeSinceString(unsigned int t) const;

    unsigned int m_uiTimeUTCServer = 0;
    unsigned int m_uiTimeUTCClient = 0;
    int m_iTimezoneServer = iTimezoneUnknown;
    int m_iTimezoneSelected = iTimezoneUnknown;
    int m_iTimezone = iTimezoneDefault; // in effect
    QTimer m_Timer;
    QString m_strCurrentTime;

    static QSharedPointer<CCasinoTime> m_Instance;
};
