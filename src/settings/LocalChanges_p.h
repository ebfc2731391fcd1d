#pragma once

#include <QString>
#include <QStringList>

/// What the user has changed of settings and players, each with a number that counts the changes of this login. A
/// request to the server remembers the number of the last change that it can have told of; its answer knows nothing
/// of what came later and would undo it. Main thread.
class CLocalChanges
{
public:
    /// Numbers a change of \a user. Another user's changes are forgotten. \a key in any case.
    /// @{
    static void AddSetting(const QString &user, const QString &key);
    static void AddPlayer(const QString &user, const QString &nickname);
    /// @}
    /// The number of the last change.
    static quint64 GetLast();
    /// Whether \a user has changed it since the change of that number.
    /// @{
    static bool IsSettingLater(const QString &user, const QString &key, quint64 number);
    static bool IsPlayerLater(const QString &user, const QString &nickname, quint64 number);
    /// @}
    /// The players that \a user has changed since.
    static QStringList GetLaterPlayers(const QString &user, quint64 number);
    static QStringList GetLaterSettings(const QString &user, quint64 number);
    /// The login has ended.
    static void Forget();
    /// How many logins have ended: an answer to a request of an earlier one knows nothing of what was changed in it.
    static quint64 GetEndedLogins();
};
