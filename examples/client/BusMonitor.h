#pragma once

#include "Host.h"
#include "LogTable.h"

class QCheckBox;

/// The latest events that have crossed the bus since it was made, at most 5000 with 4 MiB of payload, and the bytes
/// of the one that has the cursor. Of a payload that is larger by itself the front is kept.
class CBusMonitor : public CLogTable
{
public:
    /// \a host outlives it.
    explicit CBusMonitor(CHost &host);

private:
    void Record(const CEvent &event, const CPluginInterface *sender);
    void ShowPassed(int count);

    QCheckBox *m_pPause; // a child
    int m_iPassed = 0;
    int m_iBytes = 0;
};
