#pragma once

#include <settings/SettingsBase.h>

#include <QList>
#include <QSharedPointer>
#include <QTimer>

class CPlayerModel;

/// The user's settings, which are stored in CSettingsDB and loaded from it.
///
/// A change is queued and written 250 ms after the last change of its burst. All are written in one transaction, with
/// the server's time; until that is known, only a change of the login writes them. A change by a logged-in user is
/// written to the user's row and to the global row, which thus holds the last choice on this machine. A row that
/// already holds the value isn't changed, nor is its time. While another program keeps the file locked, or the disk
/// is full, the changes wait and are tried again after 1 s and then at growing intervals of up to 30 s. If the file
/// isn't open, the changes last until the process ends.
///
/// When the login state changes, and when the own player is replaced or destroyed without such a change, the pending
/// changes are written, and the global rows and the user's rows are applied. At a user's first login the global rows
/// apply. A setting without a row keeps its value.
///
/// Each write for a logged-in user starts the timer of CSettingsSync.
///
/// CSettingsDB and CConfigDB must be initialised before the object is created. It writes nothing when it is
/// destroyed; the host calls `slot_SaveSettings(true)` before. Main thread.
class PLUGININTERFACE_EXPORT CSettings : public CSettingsBase
{
    Q_OBJECT

public:
    /// A stored or pending row. User, area and key are lower case in the file.
    struct SSetting
    {
        QString strUser;       ///< The nickname, empty for a row of the installation.
        QString strArea;       ///< The group of settings.
        QString strKey;        ///< "key", or "key[subkey]" of a keyed setting.
        QVariant vValue;       ///< The value, stored as text.
        qint64 iTimestamp = 0; ///< Seconds since 1970 UTC; negative for the time of writing.
    };

    /// Returns the object, creating it on first use; the library owns it.
    static CSettings *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

    /// Queues a row, and with a \a user a second row without one, unless the setting has the scope Global.
    void Save(const QString &user, const QString &area, const QString &key, const QVariant &value,
              qint64 timestamp) override;

    /// Returns the time of the user's newest row, or 0 if there is none.
    static unsigned int GetLastTimestamp(const QString &user);
    /// Returns all rows of the user.
    static QList<SSetting> GetSettingList(const QString &user);

    /// Returns the user, the hash of the password and the user's settings as JSON, without those of the installation.
    QByteArray GetOptionJSON() const;
    /// Applies and stores the settings in \a json, see GetOptionJSON(). Ignores everything else, and invalid JSON.
    void SetOptionJSON(const QByteArray &json);

    /// Returns whether animations are off, by the user's choice or, if the operator allows none, by the operator's.
    bool GetAnimationOff() const;

public Q_SLOTS:
    /// Writes the queue. Without \a force nothing is written until the server's time is known; with it, the time is 0
    /// until then. If the file is locked or its disk is full, the queue is kept and tried again later. With \a force
    /// the function waits up to 5 s for the lock, otherwise 0.1 s.
    void slot_SaveSettings(bool force = false);

private Q_SLOTS:
    void slot_LoginStateChanged();

private:
    CSettings();

    friend class CSettingsSync;

    void FollowOwnPlayer(const CPlayerModel *player);
    bool IsStored(const QString &user, const QString &area, const QString &key, const QVariant &value) const;
    bool HasUnwrittenChange(const QString &key) const;
    void NumberUnwrittenChanges() const;
    bool YieldsToChange(const SSetting &fromServer, quint64 known);
    bool IsOlder(const SSetting &fromServer) const;
    void StampAnew(const QStringList &keys, qint64 notOlder);
    QHash<QString, QVariant> GetValues(const QString &user) const;

    QList<SSetting> m_lstPending; // oldest first
    QTimer m_SaveTimer;
    bool m_bLoading = false;                 // the setters are called with stored values
    int m_iPauseMs = 0;                      // until the next attempt to write, while the file can't be used
    QMetaObject::Connection m_ownPlayerEnds; // invalid without an own player

    static QSharedPointer<CSettings> m_Instance;
};
