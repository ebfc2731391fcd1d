#pragma once

#include <QtGlobal>

class CLocalDB;

/// For its lifetime, how long a statement of the database waits where another connection keeps the file locked. What
/// a timer tries is to wait shortly, and to come again: the event loop stands still meanwhile.
class CBusyWait
{
public:
    static constexpr int RETRY_MS = 100; ///< How long what a timer tries may wait.

    /// Milliseconds until what couldn't be written is tried again, after the pause before: from 1 s on each time
    /// twice as long, up to 30 s.
    static int GetNextPause(int pauseMs);

    CBusyWait(CLocalDB &database, int ms);
    ~CBusyWait();
    Q_DISABLE_COPY_MOVE(CBusyWait)

private:
    CLocalDB &m_database;
    int m_iFormerMs = 0;
};
