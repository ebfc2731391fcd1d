#pragma once

#include <Export.h>
#include <plugin/GlobalDefines.h>
#include <translation/TranslationItem.h>

#include <QObject>

namespace Globals {

/// A number of seconds as a countdown shows it: hours, minutes and seconds, or days from two days up; minutes and
/// seconds without the hours; or seconds alone. Empty for a type that is none.
PLUGININTERFACE_EXPORT CTranslationItem GetCountDownString(unsigned int seconds,
                                                           GlobalDefines::CountdownStringType type);

} // namespace Globals

/// Counts down to a time, or up from one, on the ticks of CCasinoTime, and keeps the text of it. Times are seconds
/// since 1970 UTC. While the clock stands at 0 the countdown shows zero and doesn't finish. A slot of its signals
/// may start, stop or delete it. Main thread.
class PLUGININTERFACE_EXPORT CCountDown : public QObject
{
    Q_OBJECT

public:
    /// Stopped, without a parent.
    CCountDown();
    ~CCountDown() override;

    /// Counts down for so many seconds from now; 0 stops it.
    void Start(unsigned int seconds);
    /// Counts down to a time. One that isn't in the future stops it, without signal_CountDownFinished().
    void StartEndTime(unsigned int endTime);
    /// Counts up from a time, until it is stopped; 0 stops it.
    void StartFromTime(unsigned int startTime);
    /// Shows zero, without signal_CountDownFinished().
    void Stop();
    /// How the text is written, at once; GlobalDefines::CST_Normal at first.
    void SetType(GlobalDefines::CountdownStringType type);

    /// Whether it counts, down or up.
    bool IsRunning() const;
    /// Seconds to the end, 0 if it doesn't count down.
    unsigned int GetLeft() const;
    /// Seconds since the start, 0 if it doesn't count up.
    unsigned int GetSince() const;
    /// The text. It doesn't follow the language by itself.
    const CTranslationItem &GetCountDown() const;

Q_SIGNALS:
    /// The text is another one.
    void signal_CountDownChanged(QString string);
    /// The end time has passed; on the tick after the one that shows zero. It stops after this signal, unless a slot
    /// has started it anew.
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
