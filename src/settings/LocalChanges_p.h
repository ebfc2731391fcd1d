#pragma once

#include <QString>

/// What a user changes while an exchange with the server is under way: its answer knows nothing of that and would
/// undo it. What others change meanwhile is no concern of that exchange. Main thread.
class CLocalChanges
{
public:
    /// Forgets what was noted, and notes what \a user changes until End().
    static void Begin(const QString &user);
    static void End();

    /// \a key in any case.
    static void AddSetting(const QString &user, const QString &key);
    static void AddPlayer(const QString &user, const QString &nickname);
    static bool HasSetting(const QString &user, const QString &key);
    static bool HasPlayer(const QString &user, const QString &nickname);
};
