#pragma once

#include <Export.h>

#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QTimer>

/// The clock of the client: what counts is the server's time, not the machine's.
///
/// It holds a second counter of its own, which ticks from the moment the object exists and is pulled to the server's
/// time whenever the two have drifted too far apart. Until the first server time it counts from 0. All times are
/// seconds since 1970 UTC, 0 for no time. Main thread.
class PLUGININTERFACE_EXPORT CCasinoTime : public QObject
{
    Q_OBJECT

    /// The clock as "hh:mm".
    Q_PROPERTY(QString currentTime READ GetTimeString NOTIFY signal_TimeChanged)

public:
    // Time zones are whole numbers of half hours from UTC.
    static constexpr int iTimezoneMin = -24;
    static constexpr int iTimezoneMax = 28;
    static constexpr int iTimezoneAuto = 29; ///< A selection: the machine's own offset.
    static constexpr int iTimeBounds = 5;    ///< Seconds by which the clock may differ from the server's.
    static constexpr int iTimezoneDefault = 0;
    static constexpr int iTimezoneUnknown = 999;

    explicit CCasinoTime(QObject *parent = nullptr);
    ~CCasinoTime() override;

    /// Creates the object on first use; the library owns it.
    static CCasinoTime *GetInstance();
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

    /// One tick, as the timer does once a second.
    void IncreaseCurrentTime();

Q_SIGNALS:
    /// Once a second, and when the clock was set.
    void signal_TimeChanged();
    /// The clock's text differs, before signal_TimeChanged().
    void signal_TimeStringChanged(QString time);
    /// The server has announced another time, behind what that did to the clock.
    void signal_ServerTimeChanged();
    void signal_TimeZoneChanged();

private Q_SLOTS:
    void slot_Timer();

private:
    int GetTimeOffset() const;
    QDateTime ToLocalTime(unsigned int t) const;
    void CompareTimes();
    void UpdateTimes();

    unsigned int m_uiTimeUTCServer = 0;
    unsigned int m_uiTimeUTCClient = 0;
    int m_iTimezone = iTimezoneDefault; // in effect
    QTimer m_Timer;
    QString m_strCurrentTime;

    static QSharedPointer<CCasinoTime> m_Instance;
};
