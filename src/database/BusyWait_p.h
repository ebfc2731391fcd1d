#pragma once

#include <QtGlobal>

class CLocalDB;

/// Limits, for its lifetime, how long a statement of the database waits while another connection keeps the file
/// locked. A timer's slot waits briefly and tries again later, because waiting blocks the event loop.
class CBusyWait
{
public:
    static constexpr int RETRY_MS = 100; ///< The longest wait in a timer's slot.

    /// Returns the milliseconds until a failed write is tried again. \a pauseMs is the previous pause; each pause is
    /// twice as long as the one before, from 1 s up to 30 s.
    static int GetNextPause(int pauseMs);

    CBusyWait(CLocalDB &database, int ms);
    ~CBusyWait();
    Q_DISABLE_COPY_MOVE(CBusyWait)

private:
    CLocalDB &m_database;
    int m_iFormerMs = 0;
};
