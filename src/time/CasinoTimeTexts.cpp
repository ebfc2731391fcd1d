// What the clock takes from the settings and the catalogue: the user's time zone, and times in words.

#include "CasinoTime.h"

#include <plugin/GlobalDefines.h>
#include <settings/Settings.h>
#include <translation/Translation.h>

#include <QDateTime>
#include <QPointer>

namespace {

const QString TIME_TEXTS_AREA = QStringLiteral("CORE");
const QString MARKER_DAYS = QStringLiteral("#d#");
const QString MARKER_HOURS = QStringLiteral("#h#");

// A time span: whole days, and the rest within a day.
struct SDistance
{
    qint64 iDays = 0;
    QTime time;
};

SDistance DistanceBetween(unsigned int from, unsigned int to)
{
    const QDateTime begin = QDateTime::fromSecsSinceEpoch(from, Qt::UTC);
    const QDateTime end = QDateTime::fromSecsSinceEpoch(to, Qt::UTC);
    SDistance distance;
    distance.iDays = begin.daysTo(end);
    const qint64 seconds = begin.addDays(distance.iDays).secsTo(end);
    if (seconds < 0)
        --distance.iDays;
    distance.time = QTime(0, 0, 0, 0).addSecs(static_cast<int>(seconds)); // wraps at midnight
    return distance;
}

// Returns a number without a leading zero, followed by a marker for its unit.
QString NumberAndMarker(qint64 number, const QString &marker)
{
    return QString::number(number) + QLatin1Char(' ') + marker;
}

} // namespace

QString Globals::GetTimezoneString(short tz)
{
    const int hours = tz / 2;
    const QString sign = tz >= 0 ? QStringLiteral("+") : tz == -1 ? QStringLiteral("-") : QString();
    const QString half = tz % 2 == 0 ? QString() : QStringLiteral(":30");
    return QLatin1String("GMT") + sign + QString::number(hours) + half;
}

void CCasinoTime::SetTimezoneServer(int tz)
{
    if (tz == m_iTimezoneServer)
        return;
    m_iTimezoneServer = tz;
    UpdateTimezone();
}

int CCasinoTime::GetTimezoneIndex() const
{
    return (m_iTimezoneSelected == iTimezoneAuto ? iTimezoneAuto : m_iTimezone) - iTimezoneMin;
}

QStringList CCasinoTime::GetTimezoneList() const
{
    QStringList names;
    for (int tz = iTimezoneMin; tz <= iTimezoneMax; ++tz)
        names.append(Globals::GetTimezoneString(static_cast<short>(tz)));
    names.append(
        CTranslation::GetInstance()->GetTranslatedString(QStringLiteral("AUTOTIMEZONE"), TIME_TEXTS_AREA, -1));
    return names;
}

QString CCasinoTime::GetTimezoneString() const
{
    return Globals::GetTimezoneString(static_cast<short>(m_iTimezone));
}

CTranslationItem CCasinoTime::GetDateStringShort(unsigned int t) const
{
    return WithMonthName(t, QStringLiteral("#M# dd"));
}

CTranslationItem CCasinoTime::GetDateTimeString(unsigned int t) const
{
    return WithMonthName(t, QStringLiteral("#M# dd hh:mm"));
}

CTranslationItem CCasinoTime::GetDateTimeString() const
{
    return m_uiTimeUTCClient == 0 ? CTranslationItem() : GetDateTimeString(m_uiTimeUTCClient);
}

CTranslationItem CCasinoTime::GetTimeDiffString(unsigned int t) const
{
    if (m_uiTimeUTCClient == 0)
        return CTranslationItem();
    return t >= m_uiTimeUTCClient ? TimeToString(t) : TimeSinceString(t);
}

void CCasinoTime::slot_TimezoneIndex30()
{
    if (CSettings::GetInstance()->GetCaller() != this)
        TakeTimezoneSelection();
}

void CCasinoTime::ConnectTimezone()
{
    connect(CSettings::GetInstance(), &CSettings::signal_TimezoneIndex30Changed, this,
            &CCasinoTime::slot_TimezoneIndex30);
}

void CCasinoTime::TakeTimezoneSelection()
{
    const int index = CSettings::GetInstance()->GetTimezoneIndex30();
    m_iTimezoneSelected = index < 0 ? iTimezoneUnknown : index + iTimezoneMin;
    UpdateTimezone();
}

void CCasinoTime::UpdateTimezone()
{
    int tz = m_iTimezoneSelected == iTimezoneAuto ? GetAutoTimezone() : m_iTimezoneSelected;
    if (tz < iTimezoneMin || tz > iTimezoneMax)
        tz = iTimezoneDefault;
    if (tz == m_iTimezone)
        return;
    m_iTimezone = tz;
    const QPointer<CCasinoTime> self = this;
    Q_EMIT signal_TimeZoneChanged();
    if (!self)
        return;
    m_uiTimeUTCClient = 0;
    CompareTimes();
}

// Formats \a t, with the name of the month where the format has the month's number between hashes.
CTranslationItem CCasinoTime::WithMonthName(unsigned int t, const QString &format) const
{
    const QString month = ToLocalText(t, QStringLiteral("M"));
    CTranslationItem item;
    item.SetPlaceholder(QLatin1Char('#') + month + QLatin1Char('#'), Globals::GetMonthKey(month.toInt()),
                        TIME_TEXTS_AREA);
    item.SetText(ToLocalText(t, format));
    return item;
}

int CCasinoTime::GetAutoTimezone() const
{
    return QDateTime::currentDateTime().offsetFromUtc() / SECONDS_OF_HALF_HOUR;
}

CTranslationItem CCasinoTime::TimeToString(unsigned int t) const
{
    CTranslationItem item;
    if (t == 0)
        return item;
    const auto [days, time] = DistanceBetween(m_uiTimeUTCClient, t);
    const QString key = days >= 1          ? QStringLiteral("TIMEDIFF_DHM")
                        : time.hour() >= 1 ? QStringLiteral("TIMEDIFF_HM")
                                           : QStringLiteral("TIMEDIFF_M");
    item.SetTranslationKey(key, TIME_TEXTS_AREA);
    item.SetPlaceholder(MARKER_DAYS, static_cast<int>(days));
    item.SetPlaceholder(MARKER_HOURS, time.hour());
    item.SetPlaceholder(QStringLiteral("#min#"), time.minute());
    return item;
}

CTranslationItem CCasinoTime::TimeSinceString(unsigned int t) const
{
    CTranslationItem item;
    if (t == 0)
        return item;
    const QString separator = QStringLiteral(", ");
    const QString minutesMarker = QStringLiteral("#m#");
    const auto [days, time] = DistanceBetween(t, m_uiTimeUTCClient);
    QString text;
    if (days > 0)
        text += NumberAndMarker(days, MARKER_DAYS) + separator;
    if (time.hour() > 0)
        text += NumberAndMarker(time.hour(), MARKER_HOURS) + separator;
    item.SetText(text + NumberAndMarker(time.minute(), minutesMarker));
    const auto unit = [](qint64 number, const char *one, const char *many) {
        return QString::fromLatin1(number == 1 ? one : many);
    };
    if (days > 0)
        item.SetPlaceholder(MARKER_DAYS, unit(days, "DAY", "DAYS"), TIME_TEXTS_AREA);
    item.SetPlaceholder(MARKER_HOURS, unit(time.hour(), "HOUR", "HOURS"), TIME_TEXTS_AREA);
    item.SetPlaceholder(minutesMarker, unit(time.minute(), "MINUTE", "MINUTES"), TIME_TEXTS_AREA);
    return item;
}
