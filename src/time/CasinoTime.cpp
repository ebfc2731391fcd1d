#include "CasinoTime.h"

#include <Singleton_p.h>

#include <QDateTime>
#include <QLocale>
#include <QPointer>

PLUGININTERFACE_DEFINE_SINGLETON(CCasinoTime);

namespace {

constexpr int TICK_MS = 1000;

} // namespace

CCasinoTime::CCasinoTime(QObject *parent)
    : QObject(parent)
{
    m_Timer.setInterval(TICK_MS);
    connect(&m_Timer, &QTimer::timeout, this, &CCasinoTime::slot_Timer);
    ConnectTimezone();
    m_Timer.start();
    TakeTimezoneSelection();
}

CCasinoTime::~CCasinoTime() = default;

void CCasinoTime::SetTimeUTCServer(unsigned int t)
{
    if (t == m_uiTimeUTCServer)
        return;
    m_uiTimeUTCServer = t;
    const QPointer<CCasinoTime> self = this;
    CompareTimes();
    if (self)
        Q_EMIT signal_ServerTimeChanged();
}

unsigned int CCasinoTime::GetTimeUTCServer() const
{
    return m_uiTimeUTCServer;
}

unsigned int CCasinoTime::GetTimeUTCClient() const
{
    return m_uiTimeUTCClient;
}

int CCasinoTime::GetSecondsTo(unsigned int t) const
{
    return static_cast<int>(t - m_uiTimeUTCClient);
}

QString CCasinoTime::GetTimeString() const
{
    return m_strCurrentTime;
}

QString CCasinoTime::GetTimeString(unsigned int t) const
{
    return t == 0 ? QString() : ToLocalText(t, QStringLiteral("hh:mm"));
}

QString CCasinoTime::GetDateString() const
{
    return GetDateString(m_uiTimeUTCClient);
}

QString CCasinoTime::GetDateString(unsigned int t) const
{
    return t == 0 ? QString() : ToLocalText(t, QStringLiteral("dd.MM.yyyy"));
}

void CCasinoTime::IncreaseCurrentTime()
{
    ++m_uiTimeUTCClient;
    UpdateTimes();
}

void CCasinoTime::slot_Timer()
{
    IncreaseCurrentTime();
}

int CCasinoTime::GetTimeOffset() const
{
    return m_iTimezone * SECONDS_OF_HALF_HOUR;
}

// The language is that of the catalogue, not of the machine, so the digits must not be the machine's either.
QString CCasinoTime::ToLocalText(unsigned int t, const QString &format) const
{
    return QLocale::c().toString(QDateTime::fromSecsSinceEpoch(qint64(t) + GetTimeOffset(), Qt::UTC), format);
}

void CCasinoTime::CompareTimes()
{
    if (m_uiTimeUTCServer == 0) {
        m_uiTimeUTCClient = static_cast<unsigned int>(QDateTime::currentSecsSinceEpoch());
        UpdateTimes();
        return;
    }
    const qint64 drift = qint64(m_uiTimeUTCClient) - m_uiTimeUTCServer;
    if (m_uiTimeUTCClient != 0 && qAbs(drift) <= iTimeBounds)
        return;
    m_uiTimeUTCClient = m_uiTimeUTCServer;
    UpdateTimes();
}

void CCasinoTime::UpdateTimes()
{
    const QPointer<CCasinoTime> self = this;
    const QString time = GetTimeString(m_uiTimeUTCClient);
    if (time != m_strCurrentTime) {
        m_strCurrentTime = time;
        Q_EMIT signal_TimeStringChanged(time);
    }
    if (self)
        Q_EMIT signal_TimeChanged();
}
