#pragma once

#include <QString>

/// What the user changes while an exchange with the server is under way: its answer knows nothing of that and would
/// undo it. Main thread.
class CLocalChanges
{
public:
    /// Forgets what was noted, and notes what comes until End().
    static void Begin();
    static void End();

    /// \a key in any case.
    static void AddSetting(const QString &key);
    static void AddPlayer(const QString &nickname);
    static bool HasSetting(const QString &key);
    static bool HasPlayer(const QString &nickname);
};
