#pragma once

#include <Export.h>
#include <translation/TranslationItem.h>

#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QTimer>

namespace Globals {

/// Returns "GMT" and the offset of a time zone, which is a number of half hours: "GMT+0", "GMT-1:30".
PLUGININTERFACE_EXPORT QString GetTimezoneString(short tz);

} // namespace Globals

/// The clock of the client, which follows the server's time and not the machine's.
///
/// It has its own counter of seconds, which starts when the object is created and is set to the server's time
/// whenever the two have drifted too far apart. Until the first server time it counts from 0 or, if the user has
/// chosen another time zone than UTC, from the machine's time. All times are seconds since 1970 UTC, 0 for no time.
///
/// Texts use the time zone of the setting `timezoneindex30`, an index into GetTimezoneList(). A zone is a whole
/// number of half hours from UTC, so a machine at +5:45 counts as +5:30. Its offset is determined when the zone is
/// chosen and when the object is created. The databases of CSettings and CTranslation must be initialised. Main
/// thread.
class PLUGININTERFACE_EXPORT CCasinoTime : public QObject
{
    Q_OBJECT

    /// The running clock as "hh:mm".
    Q_PROPERTY(QString currentTime READ GetTimeString NOTIFY signal_TimeChanged)

public:
    static constexpr int iTimezoneMin = -24;     ///< The westernmost zone in half hours, 12 h behind UTC.
    static constexpr int iTimezoneMax = 28;      ///< The easternmost zone in half hours, 14 h ahead of UTC.
    static constexpr int iTimezoneAuto = 29;     ///< The selection of the machine's own offset.
    static constexpr int iTimeBounds = 5;        ///< The seconds by which the clock may differ from the server's.
    static constexpr int iTimezoneDefault = 0;   ///< The default zone, UTC.
    static constexpr int iTimezoneUnknown = 999; ///< The value until a zone is announced or chosen.

    /// Constructs an object in addition to the shared one.
    explicit CCasinoTime(QObject *parent = nullptr);
    ~CCasinoTime() override;

    /// Returns the object, creating it on first use; the library owns it.
    static CCasinoTime *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Sets the time that the server announces. Setting the same time again does nothing. For the host.
    void SetTimeUTCServer(unsigned int t);
    /// Returns the time that the server announced last.
    unsigned int GetTimeUTCServer() const;
    /// Returns the time of the running clock.
    unsigned int GetTimeUTCClient() const;
    /// Returns the seconds from the running clock to \a t; negative if \a t has passed.
    int GetSecondsTo(unsigned int t) const;

    /// Returns the running clock as "hh:mm", as of its last tick; empty before the first.
    QString GetTimeString() const;
    /// Returns \a t in the time zone in effect as "hh:mm"; empty for 0.
    QString GetTimeString(unsigned int t) const;
    /// Returns the day of the running clock in the time zone in effect as "dd.MM.yyyy".
    QString GetDateString() const;
    /// Returns \a t in the time zone in effect as "dd.MM.yyyy"; empty for 0.
    QString GetDateString(unsigned int t) const;

    /// Sets the time zone that the server announces. It has no effect on the texts. For the host.
    void SetTimezoneServer(int tz);
    /// Returns the index into GetTimezoneList() of the user's selection, or of the zone in effect if the selection
    /// isn't valid.
    int GetTimezoneIndex() const;
    /// Returns the names of all time zones from iTimezoneMin to iTimezoneMax, then the name for the machine's own
    /// zone.
    QStringList GetTimezoneList() const;
    /// Returns the name of the time zone in effect.
    QString GetTimezoneString() const;

    /// Returns the name of the month and the day of \a t.
    CTranslationItem GetDateStringShort(unsigned int t) const;
    /// Returns the name of the month, the day and the time of \a t.
    CTranslationItem GetDateTimeString(unsigned int t) const;
    /// Returns the name of the month, the day and the time of the running clock; empty while the clock is 0.
    CTranslationItem GetDateTimeString() const;
    /// Returns how far \a t is in the future or the past, in days, hours and minutes; empty for 0 and while the
    /// running clock is 0.
    CTranslationItem GetTimeDiffString(unsigned int t) const;

    /// Advances the clock by one second, as the timer does once a second.
    void IncreaseCurrentTime();

Q_SIGNALS:
    /// Emitted once a second, and when the clock was set.
    void signal_TimeChanged();
    /// Emitted when the text of the clock has changed, before signal_TimeChanged().
    void signal_TimeStringChanged(QString time);
    /// Emitted when the server has announced another time, after the clock was adjusted to it.
    void signal_ServerTimeChanged();
    /// Emitted when another time zone has taken effect for the texts.
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
    int m_iTimezone = iTimezoneDefault; // the zone in effect
    QTimer m_Timer;
    QString m_strCurrentTime;

    static QSharedPointer<CCasinoTime> m_Instance;
};
