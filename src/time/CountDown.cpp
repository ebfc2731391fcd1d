#include "CountDown.h"

#include <time/CasinoTime.h>

#include <QPointer>

#include <limits>

namespace {

constexpr unsigned int MINUTE = 60;
constexpr unsigned int HOUR = 60 * MINUTE;
constexpr unsigned int DAY = 24 * HOUR;
constexpr unsigned int DAYS_SHOWN_FROM = 2;

QString TwoDigits(unsigned int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

QString MinutesAndSeconds(unsigned int seconds)
{
    return TwoDigits(seconds / MINUTE % 60) + QLatin1Char(':') + TwoDigits(seconds % MINUTE);
}

CTranslationItem DaysText(unsigned int days)
{
    CTranslationItem item;
    item.SetPlaceholder(QStringLiteral("#d#"), days);
    item.SetPlaceholder(QStringLiteral("#dt#"), QStringLiteral("DAYS"), QStringLiteral("CORE"));
    item.SetText(QStringLiteral("#d# #dt#"));
    return item;
}

} // namespace

CTranslationItem Globals::GetCountDownString(unsigned int seconds, GlobalDefines::CountdownStringType type)
{
    CTranslationItem item;
    switch (type) {
    case GlobalDefines::CST_Normal:
        if (seconds / DAY >= DAYS_SHOWN_FROM)
            return DaysText(seconds / DAY);
        item.SetText(TwoDigits(seconds / HOUR) + QLatin1Char(':') + MinutesAndSeconds(seconds));
        break;
    case GlobalDefines::CST_MinAndSecs:
        item.SetText(MinutesAndSeconds(seconds));
        break;
    case GlobalDefines::CST_Seconds:
        item.SetText(QString::number(seconds));
        break;
    }
    return item;
}

CCountDown::CCountDown()
    : m_CountDown(Globals::GetCountDownString(0, GlobalDefines::CST_Normal))
{
}

CCountDown::~CCountDown() = default;

void CCountDown::Start(unsigned int seconds)
{
    m_bCountUp = false;
    if (seconds == 0) {
        Stop();
        return;
    }
    const unsigned int now = CCasinoTime::GetInstance()->GetTimeUTCClient();
    m_uiTime = now + qMin(seconds, std::numeric_limits<unsigned int>::max() - now);
    Run();
}

void CCountDown::StartEndTime(unsigned int endTime)
{
    const unsigned int now = CCasinoTime::GetInstance()->GetTimeUTCClient();
    if (endTime > now)
        Start(endTime - now);
    else
        Stop();
}

void CCountDown::StartFromTime(unsigned int startTime)
{
    m_bCountUp = true;
    m_uiTime = startTime;
    if (startTime == 0)
        Stop();
    else
        Run();
}

void CCountDown::Stop()
{
    m_bCountUp = false;
    m_uiTime = 0;
    disconnect(CCasinoTime::GetInstance(), &CCasinoTime::signal_TimeChanged, this,
               &CCountDown::slot_RefreshCountDown);
    slot_RefreshCountDown();
}

void CCountDown::SetType(GlobalDefines::CountdownStringType type)
{
    m_eType = type;
    UpdateText();
}

bool CCountDown::IsRunning() const
{
    return m_uiTime != 0;
}

unsigned int CCountDown::GetLeft() const
{
    const unsigned int now = CCasinoTime::GetInstance()->GetTimeUTCClient();
    return m_bCountUp || m_uiTime == 0 || now == 0 || m_uiTime <= now ? 0 : m_uiTime - now;
}

unsigned int CCountDown::GetSince() const
{
    const unsigned int now = CCasinoTime::GetInstance()->GetTimeUTCClient();
    return !m_bCountUp || m_uiTime == 0 || now == 0 || m_uiTime >= now ? 0 : now - m_uiTime;
}

const CTranslationItem &CCountDown::GetCountDown() const
{
    return m_CountDown;
}

void CCountDown::slot_RefreshCountDown()
{
    const QPointer<CCountDown> self = this;
    UpdateText();
    if (!self)
        return;
    const unsigned int now = CCasinoTime::GetInstance()->GetTimeUTCClient();
    if (m_bCountUp || m_uiTime == 0 || now == 0 || m_uiTime >= now)
        return;
    // A slot may run an event loop, such as that of a dialog, whose ticks must not signal the end again.
    disconnect(CCasinoTime::GetInstance(), &CCasinoTime::signal_TimeChanged, this,
               &CCountDown::slot_RefreshCountDown);
    const unsigned int end = m_uiTime;
    Q_EMIT signal_CountDownFinished();
    const bool startedAnew = self && (m_bCountUp || m_uiTime != end);
    if (self && !startedAnew)
        Stop();
}

void CCountDown::Run()
{
    connect(CCasinoTime::GetInstance(), &CCasinoTime::signal_TimeChanged, this, &CCountDown::slot_RefreshCountDown,
            Qt::UniqueConnection);
    slot_RefreshCountDown();
}

void CCountDown::UpdateText()
{
    const CTranslationItem text = Globals::GetCountDownString(m_bCountUp ? GetSince() : GetLeft(), m_eType);
    if (text.GetTranslatedText() == m_CountDown.GetTranslatedText())
        return;
    m_CountDown = text;
    Q_EMIT signal_CountDownChanged(m_CountDown.GetTranslatedText());
}
