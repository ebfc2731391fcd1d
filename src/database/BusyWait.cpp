#include "BusyWait_p.h"

#include <database/LocalDB.h>

namespace {

constexpr int FIRST_PAUSE_MS = 1000;
constexpr int LONGEST_PAUSE_MS = 30000;

void SetBusyTimeout(CLocalDB &database, int ms)
{
    database.Exec(QStringLiteral("PRAGMA busy_timeout = %1").arg(ms));
}

} // namespace

int CBusyWait::GetNextPause(int pauseMs)
{
    return qBound(FIRST_PAUSE_MS, 2 * pauseMs, LONGEST_PAUSE_MS);
}

CBusyWait::CBusyWait(CLocalDB &database, int ms)
    : m_database(database)
{
    QSqlQuery query = database.GetQuery();
    if (!database.IsOpen() || !query.exec(QStringLiteral("PRAGMA busy_timeout")) || !query.next())
        return;
    m_iFormerMs = query.value(0).toInt();
    query.finish();
    if (ms < m_iFormerMs)
        SetBusyTimeout(database, ms);
}

CBusyWait::~CBusyWait()
{
    if (m_iFormerMs > 0)
        SetBusyTimeout(m_database, m_iFormerMs);
}
