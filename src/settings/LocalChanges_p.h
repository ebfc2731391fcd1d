#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

/// Numbers the user's changes of settings and players during a login. A request to the server remembers the number of
/// the last change that it can include. Its answer doesn't know later changes and would undo them.
///
/// The shared CSettingsSync, which makes the requests, owns the object. Main thread.
class CLocalChanges
{
public:
    CLocalChanges();
    ~CLocalChanges();
    CLocalChanges(const CLocalChanges &) = delete;
    CLocalChanges &operator=(const CLocalChanges &) = delete;

    /// Returns the object of the shared CSettingsSync, or null while there is none and so no request.
    static CLocalChanges *Get();

    /// Gives a number to a change by \a user. Forgets the changes of any other user. \a key may be in any case.
    /// @{
    void AddSetting(const QString &user, const QString &key);
    void AddPlayer(const QString &user, const QString &nickname);
    /// @}
    /// Returns the number of the last change.
    quint64 GetLast() const { return m_iLast; }
    /// Returns whether \a user has changed the setting or player after the change \a number.
    /// @{
    bool IsSettingLater(const QString &user, const QString &key, quint64 number) const;
    bool IsPlayerLater(const QString &user, const QString &nickname, quint64 number) const;
    /// @}
    /// Returns the players, or the keys of the settings, that \a user has changed after the change \a number.
    /// @{
    QStringList GetLaterPlayers(const QString &user, quint64 number) const;
    QStringList GetLaterSettings(const QString &user, quint64 number) const;
    /// @}
    /// Forgets all changes when the login has ended.
    void Forget();
    /// Returns how many logins have ended. An answer to a request of an earlier login doesn't know what was changed
    /// in this one.
    quint64 GetEndedLogins() const { return m_iEndedLogins; }

private:
    using TNumbers = QHash<QString, quint64>;

    void Add(TNumbers &numbers, const QString &user, const QString &name);
    bool IsLater(const TNumbers &numbers, const QString &user, const QString &name, quint64 number) const;
    QStringList GetLater(const TNumbers &numbers, const QString &user, quint64 number) const;

    QString m_strUser;
    TNumbers m_settings; // by lower-case keys
    TNumbers m_players;
    quint64 m_iLast = 0;
    quint64 m_iEndedLogins = 0;
};
