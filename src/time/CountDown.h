#pragma once

#include <Export.h>
#include <plugin/GlobalDefines.h>
#include <translation/TranslationItem.h>

#include <QObject>

namespace Globals {

/// Returns \a seconds as a countdown shows them: hours, minutes and seconds, or days from two days up; minutes and
/// seconds without the hours; or seconds alone. Empty if \a type isn't valid.
PLUGININTERFACE_EXPORT CTranslationItem GetCountDownString(unsigned int seconds,
                                                           GlobalDefines::CountdownStringType type);

} // namespace Globals

/// Counts down to a time, or up from one, on the ticks of CCasinoTime, and builds the text that shows it. Times are
/// seconds since 1970 UTC. While the clock is 0, the countdown shows zero and doesn't finish. A slot connected to its
/// signals may start, stop or delete it. Main thread.
class PLUGININTERFACE_EXPORT CCountDown : public QObject
{
    Q_OBJECT

public:
    /// Constructs a stopped countdown without a parent.
    CCountDown();
    ~CCountDown() override;

    /// Counts down \a seconds from now; 0 stops the countdown.
    void Start(unsigned int seconds);
    /// Counts down to \a endTime. A time that isn't in the future stops the countdown without
    /// signal_CountDownFinished().
    void StartEndTime(unsigned int endTime);
    /// Counts up from \a startTime until it is stopped; 0 stops it.
    void StartFromTime(unsigned int startTime);
    /// Stops the countdown and shows zero, without signal_CountDownFinished().
    void Stop();
    /// Sets how the text is written and updates it at once. The initial type is GlobalDefines::CST_Normal.
    void SetType(GlobalDefines::CountdownStringType type);

    /// Returns whether it counts, down or up.
    bool IsRunning() const;
    /// Returns the seconds until the end; 0 if it doesn't count down.
    unsigned int GetLeft() const;
    /// Returns the seconds since the start; 0 if it doesn't count up.
    unsigned int GetSince() const;
    /// Returns the text, which doesn't follow the language by itself.
    const CTranslationItem &GetCountDown() const;

Q_SIGNALS:
    /// Emitted when the text has changed.
    void signal_CountDownChanged(QString string);
    /// Emitted when the end time has passed, on the tick after the one that shows zero. The countdown stops after
    /// this signal unless a slot has started it again.
    void signal_CountDownFinished();

private Q_SLOTS:
    void slot_RefreshCountDown();

private:
    void Run();
    void UpdateText();

    CTranslationItem m_CountDown;
    unsigned int m_uiTime = 0; // the end, or the start when counting up; 0 when stopped
    bool m_bCountUp = false;
    GlobalDefines::CountdownStringType m_eType = GlobalDefines::CST_Normal;
};
