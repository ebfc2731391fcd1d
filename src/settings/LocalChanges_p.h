#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

/// What the user has changed of settings and players, each with a number that counts the changes of this login. A
/// request to the server remembers the number of the last change that it can have told of; its answer knows nothing
/// of what came later and would undo it.
///
/// It belongs to the shared CSettingsSync, which makes the requests. Main thread.
class CLocalChanges
{
public:
    CLocalChanges();
    ~CLocalChanges();
    CLocalChanges(const CLocalChanges &) = delete;
    CLocalChanges &operator=(const CLocalChanges &) = delete;

    /// That of the shared CSettingsSync; null while there is none, and so no request either.
    static CLocalChanges *Get();

    /// Numbers a change of \a user. Another user's changes are forgotten. \a key in any case.
    /// @{
    void AddSetting(const QString &user, const QString &key);
    void AddPlayer(const QString &user, const QString &nickname);
    /// @}
    /// The number of the last change.
    quint64 GetLast() const { return m_iLast; }
    /// Whether \a user has changed it since the change of that number.
    /// @{
    bool IsSettingLater(const QString &user, const QString &key, quint64 number) const;
    bool IsPlayerLater(const QString &user, const QString &nickname, quint64 number) const;
    /// @}
    /// The players, and the keys of the settings, that \a user has changed since.
    /// @{
    QStringList GetLaterPlayers(const QString &user, quint64 number) const;
    QStringList GetLaterSettings(const QString &user, quint64 number) const;
    /// @}
    /// Forgets all changes: the login has ended.
    void Forget();
    /// How many logins have ended: an answer to a request of an earlier one knows nothing of what was changed in it.
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
